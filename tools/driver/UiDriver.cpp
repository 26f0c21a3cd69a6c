#include "UiDriver.h"

namespace uidriver {
namespace {
struct Search {
    const WindowQuery* query;
    HWND found;
};

BOOL CALLBACK matchWindow(HWND window, LPARAM parameter)
{
    Search* search = reinterpret_cast<Search*>(parameter);
    if (!IsWindowVisible(window)) return TRUE;
    if (search->query->processId) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner != search->query->processId) return TRUE;
    }
    if (search->query->ownedOnly && !GetWindow(window, GW_OWNER)) return TRUE;
    if (windowText(window) != search->query->caption) return TRUE;
    search->found = window;
    return FALSE;
}

BOOL CALLBACK collectControl(HWND control, LPARAM parameter)
{
    auto* controls = reinterpret_cast<std::vector<Control>*>(parameter);
    char className[256] = "";
    GetClassNameA(control, className, sizeof className);
    RECT rect = {0, 0, 0, 0};
    GetWindowRect(control, &rect);
    controls->push_back({GetDlgCtrlID(control), className, windowText(control),
                         IsWindowVisible(control) != FALSE, IsWindowEnabled(control) != FALSE, rect});
    return TRUE;
}

std::string withoutAmpersands(const std::string& text)
{
    std::string plain;
    for (char c : text)
        if (c != '&') plain += c;
    return plain;
}
}  // namespace

HWND findWindow(const WindowQuery& query)
{
    Search search = {&query, nullptr};
    EnumWindows(matchWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND waitForWindow(const WindowQuery& query, DWORD timeoutMs)
{
    DWORD start = GetTickCount();
    for (;;) {
        if (HWND window = findWindow(query)) return window;
        if (GetTickCount() - start >= timeoutMs) return nullptr;
        Sleep(50);
    }
}

bool waitForWindowGone(const WindowQuery& query, DWORD timeoutMs)
{
    DWORD start = GetTickCount();
    while (findWindow(query)) {
        if (GetTickCount() - start >= timeoutMs) return false;
        Sleep(50);
    }
    return true;
}

std::string windowText(HWND window)
{
    if (!window) return "";
    // WM_GETTEXT works across processes, GetWindowTextA only in our own.
    LRESULT length = SendMessageA(window, WM_GETTEXTLENGTH, 0, 0);
    if (length <= 0) return "";
    std::string text(static_cast<size_t>(length) + 1, '\0');
    LRESULT got = SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(&text[0]));
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    return text;
}

std::string controlText(HWND dialog, int id)
{
    HWND control = GetDlgItem(dialog, id);
    return control ? windowText(control) : "";
}

std::string messageText(HWND box) { return controlText(box, 0xFFFF); }

std::vector<Control> listControls(HWND dialog)
{
    std::vector<Control> controls;
    EnumChildWindows(dialog, collectControl, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

bool pressButton(HWND dialog, int id)
{
    HWND button = GetDlgItem(dialog, id);
    return PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                        reinterpret_cast<LPARAM>(button)) != FALSE;
}

bool pressButtonByLabel(HWND dialog, const std::string& label)
{
    for (const Control& control : listControls(dialog))
        if (lstrcmpiA(control.className.c_str(), "Button") == 0 &&
            lstrcmpiA(withoutAmpersands(control.text).c_str(), withoutAmpersands(label).c_str()) == 0)
            return pressButton(dialog, control.id);
    return false;
}

bool setControlText(HWND dialog, int id, const std::string& text)
{
    HWND control = GetDlgItem(dialog, id);
    if (!control) return false;
    return SendMessageA(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str())) != FALSE;
}

}  // namespace uidriver
