#include "wizard/InstallPage.h"

#include <shellapi.h>

#include "BoundedText.h"
#include "Program.h"
#include "resources/resource.h"

CInstallPage::~CInstallPage()
{
    if (hwnd && IsWindow(hwnd)) DestroyWindow(hwnd);
}

void CInstallPage::create(CInstallWizard* owner, HWND parent, int left, int top, int right, int bottom)
{
    wizard = owner;
    if (!hwnd)
        CreateDialogParamA(moduleInstance, MAKEINTRESOURCEA(dialogId), parent, installDialogProc,
                           reinterpret_cast<LPARAM>(static_cast<CInstallDialog*>(this)));
    if (!hwnd) return;
    SetParent(hwnd, parent);
    SetWindowPos(hwnd, nullptr, left, top, right - left, bottom - top, SWP_NOZORDER | SWP_SHOWWINDOW);
}

int CInstallPage::canGoNext(CInstallWizard*) { return 1; }
int CInstallPage::canGoBack(CInstallWizard*) { return 1; }
int CInstallPage::closeKind() { return 0; }
int CInstallPage::nextPageId(CInstallWizard*) { return -1; }
int CInstallPage::previousPageId(CInstallWizard*) { return -1; }
int CInstallPage::skipCheck(CInstallWizard*) { return 0; }
int CInstallPage::onNext(CInstallWizard*) { return 1; }
int CInstallPage::onBack(CInstallWizard*) { return 1; }
void CInstallPage::onShown(CInstallWizard*) {}

namespace {
bool cursorOver(HWND control)
{
    POINT cursor;
    RECT rect;
    GetCursorPos(&cursor);
    GetWindowRect(control, &rect);
    return PtInRect(&rect, cursor) != FALSE;
}
}  // namespace

INT_PTR CInstallFormPage::onMouseMove(unsigned, unsigned)
{
    HWND link = GetDlgItem(hwnd, IDC_FORM_LINK);
    if (!link) return 0;
    HCURSOR cursor = cursorOver(link) ? LoadCursorA(moduleInstance, MAKEINTRESOURCEA(IDC_HAND_CURSOR))
                                      : LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    InvalidateRect(link, nullptr, TRUE);
    SetCursor(cursor);
    return 0;
}

INT_PTR CInstallFormPage::onLButtonDown(unsigned, unsigned, WPARAM)
{
    HWND link = GetDlgItem(hwnd, IDC_FORM_LINK);
    if (!link || !cursorOver(link)) return 0;
    char address[1024];
    GetWindowTextA(link, address, sizeof address);
    ShellExecuteA(hwnd, "open", address, nullptr, nullptr, SW_SHOW);
    return 0;
}

INT_PTR CInstallFormPage::onCtlColorStatic(HDC deviceContext, HWND control)
{
    char text[256];
    GetWindowTextA(control, text, sizeof text);
    COLORREF colour;
    if (lstrcmpA(text, "*") == 0)
        colour = RGB(255, 0, 0);
    else if (startsWithNoCase(text, "www."))
        colour = RGB(0, 0, 255);
    else {
        SetTextColor(deviceContext, RGB(0, 0, 0));
        return 0;
    }
    SetTextColor(deviceContext, colour);
    SetBkMode(deviceContext, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

int CInstallFormPage::isFieldValid(int) { return 0; }
