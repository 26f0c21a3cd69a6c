#include "wizard/InstallDialog.h"

#include "InstallLog.h"
#include "Program.h"
#include "resources/resource.h"

INT_PTR CALLBACK installDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CInstallDialog* dialog;
    if (message == WM_INITDIALOG) {
        dialog = reinterpret_cast<CInstallDialog*>(lParam);
        dialog->attach(hwnd);
        SetWindowLongPtrA(hwnd, GWLP_USERDATA, lParam);
    } else {
        dialog = reinterpret_cast<CInstallDialog*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
    }
    // A dialog procedure answers FALSE for what it does not handle; the dialog
    // manager then does the default work itself.
    if (!dialog) return FALSE;
    return dialog->dialogProc(message, wParam, lParam);
}

void CInstallDialog::attach(HWND window) { hwnd = window; }

INT_PTR CInstallDialog::dialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_DESTROY: return 0;
    case WM_PAINT: return onPaint(hwnd);
    case WM_CLOSE: return onClose();
    case WM_QUIT: EndDialog(hwnd, 0); return 0;
    case WM_DRAWITEM: return onDrawItem(wParam, lParam);
    case WM_NOTIFY: return onNotify(wParam, lParam);
    case WM_INITDIALOG: return onInitDialog();
    case WM_COMMAND: return onCommand(LOWORD(wParam), HIWORD(wParam));
    case WM_TIMER:
        if (wParam == readyTimerId) {
            KillTimer(hwnd, readyTimerId);
            onDlgReady();
        }
        onTimer(wParam);
        return 0;
    case WM_CTLCOLORSTATIC:
        return onCtlColorStatic(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_MOUSEMOVE: return onMouseMove(LOWORD(lParam), HIWORD(lParam));
    case WM_LBUTTONDOWN: return onLButtonDown(LOWORD(lParam), HIWORD(lParam), wParam);
    default: return 0;
    }
}

INT_PTR CInstallDialog::onPaint(HWND) { return 0; }
void CInstallDialog::destroy()
{
    if (hwnd) DestroyWindow(hwnd);
    hwnd = nullptr;
}
INT_PTR CInstallDialog::onCommand(int, int) { return 0; }
INT_PTR CInstallDialog::onInitDialog() { return 0; }
INT_PTR CInstallDialog::onClose() { return 0; }
INT_PTR CInstallDialog::onMouseMove(unsigned, unsigned) { return 0; }
INT_PTR CInstallDialog::onLButtonDown(unsigned, unsigned, WPARAM) { return 0; }
INT_PTR CInstallDialog::onNotify(WPARAM, LPARAM) { return 0; }
void CInstallDialog::onDlgReady() {}
INT_PTR CInstallDialog::onCtlColorStatic(HDC, HWND) { return 0; }
INT_PTR CInstallDialog::onDrawItem(WPARAM, LPARAM) { return 0; }
void CInstallDialog::onTimer(UINT_PTR) {}

void CInstallDialog::startReadyTimer() { SetTimer(hwnd, readyTimerId, 100, nullptr); }

bool pumpMessagesCheckingQuit()
{
    bool noQuit = true;
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) noQuit = false;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return noQuit;
}

bool pumpMessages()
{
    pumpMessagesCheckingQuit();
    return true;
}

CInstallErrorListDialog::CInstallErrorListDialog(HWND parent, const std::string& listText)
    : text(listText)
{
    DialogBoxParamA(moduleInstance, MAKEINTRESOURCEA(IDD_ERROR_LIST), parent, installDialogProc,
                    reinterpret_cast<LPARAM>(static_cast<CInstallDialog*>(this)));
}

INT_PTR CInstallErrorListDialog::onInitDialog()
{
    SetWindowTextA(GetDlgItem(hwnd, IDC_ERROR_LIST_TEXT), withShortLines(text).c_str());
    return 1;
}

std::string withShortLines(const std::string& text)
{
    // The edit control lays out a line in time that grows with the square of
    // its length: a server's text of one long line (or of lines ended by LF
    // alone, which the control does not break) held the wizard for minutes.
    const size_t longest = 256;
    std::string out;
    out.reserve(text.size() + text.size() / longest * 2);
    size_t lineStart = 0;  // in `out`
    for (char c : text) {
        if (c != '\r' && c != '\n' && out.size() - lineStart == longest) {
            // Behind the last blank of the line if it has one near, else here.
            size_t cut = out.size();
            for (size_t i = out.size(); i > lineStart + longest / 2; --i)
                if (out[i - 1] == ' ') {
                    cut = i;
                    break;
                }
            out.insert(cut, "\r\n");
            lineStart = cut + 2;
        }
        out += c;
        if (c == '\n' && out.size() >= 2 && out[out.size() - 2] == '\r') lineStart = out.size();
    }
    return out;
}

INT_PTR CInstallErrorListDialog::onCommand(int id, int)
{
    if (id == IDOK || id == IDCANCEL) EndDialog(hwnd, id);
    return 0;
}

void ERRORMSG(const char* text, bool useList)
{
    if (!text || !*text) return;
    installLog.writef("ERRORMSG: %s", text);
    if (!useList)
        MessageBoxA(GetActiveWindow(), text, "Error", MB_ICONINFORMATION);
    else
        CInstallErrorListDialog(GetActiveWindow(), std::string(text));
}
