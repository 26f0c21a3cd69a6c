#include "analysis/CloseWindowsPage.h"

#include "BoundedText.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

CCloseWindowsPage::CCloseWindowsPage() : CInstallPage(IDD_PAGE_CLOSE_WINDOWS) {}

namespace {
BOOL CALLBACK fileWindow(HWND window, LPARAM parameter)
{
    auto* entries = reinterpret_cast<std::vector<CDetectKill>*>(parameter);
    char className[255];
    if (!GetClassNameA(window, className, sizeof className)) return TRUE;
    for (CDetectKill& entry : *entries) {
        char wanted[255];
        copyText(wanted, entry.windowClass.c_str(), sizeof wanted);
        // An entry without a class, as from a missing section, names no window.
        if (wanted[0] && equalsNoCase(wanted, className)) {
            entry.windows.push_back(window);
            break;
        }
    }
    return TRUE;
}
}  // namespace

void CCloseWindowsPage::refreshWindowList(CInstallWizard* owner)
{
    for (CDetectKill& entry : owner->settings.detectKills) entry.windows.clear();
    EnumWindows(fileWindow, reinterpret_cast<LPARAM>(&owner->settings.detectKills));
}

void CCloseWindowsPage::fillWindowList()
{
    HWND list = GetDlgItem(hwnd, IDC_CLOSE_LIST);
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    for (const CDetectKill& entry : wizard->settings.detectKills) {
        for (HWND window : entry.windows) {
            char title[255] = "";
            if (!GetWindowTextA(window, title, sizeof title)) title[0] = 0;
            SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(title));
        }
    }
}

void CCloseWindowsPage::closeWindows(CDetectKill& entry)
{
    // A window that died since the scan makes these calls fail; nothing to do then.
    for (HWND window : entry.windows) {
        SetForegroundWindow(window);
        SetWindowPos(window, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
        PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
}

int CCloseWindowsPage::skipCheck(CInstallWizard* owner)
{
    refreshWindowList(owner);
    skipped = 0;
    // Before the first showing there is no list yet: onDlgReady fills it.
    if (hwnd) fillWindowList();
    size_t count = 0;
    for (const CDetectKill& entry : owner->settings.detectKills) count += entry.windows.size();
    return count == 0 ? 1 : 0;
}

INT_PTR CCloseWindowsPage::onInitDialog()
{
    startReadyTimer();
    return 1;
}

void CCloseWindowsPage::onDlgReady() { fillWindowList(); }

INT_PTR CCloseWindowsPage::onCommand(int id, int)
{
    if (id == IDC_CLOSE_SKIP) {
        skipped = 1;
        wizard->nextPage();
    }
    return 1;
}

int CCloseWindowsPage::onNext(CInstallWizard* owner)
{
    if (skipped) return 1;
    for (CDetectKill& entry : owner->settings.detectKills) closeWindows(entry);
    SendDlgItemMessageA(hwnd, IDC_CLOSE_LIST, LB_RESETCONTENT, 0, 0);
    return 1;
}
