#include "wizard/InstallPage.h"

#include <shellapi.h>

#include <cstring>

#include "BoundedText.h"
#include "Program.h"
#include "resources/resource.h"
#include "wizard/Painting.h"

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

BOOL CALLBACK makeOwnerDrawn(HWND child, LPARAM)
{
    char className[16];
    if (GetClassNameA(child, className, sizeof className) && equalsNoCase(className, "STATIC")) {
        // SS_OWNERDRAW is a kind of static, not a flag: it takes the place of
        // the kind the dialog gave.
        LONG style = GetWindowLongA(child, GWL_STYLE);
        SetWindowLongA(child, GWL_STYLE, (style & ~SS_TYPEMASK) | SS_OWNERDRAW);
    }
    return TRUE;
}

int textWidth(HDC deviceContext, const char* text, int length)
{
    RECT measured = {0, 0, 0, 0};
    DrawTextA(deviceContext, text, length, &measured, DT_CALCRECT | DT_SINGLELINE);
    return measured.right - measured.left;
}

// The note "Note:  Fields marked with * are mandatory.": the star in red, and
// 3 pixels in place of the blank behind it.
void drawNote(HDC deviceContext, const char* text, RECT rect)
{
    const UINT format = DT_VCENTER | DT_SINGLELINE;
    const char* star = strchr(text, '*');
    int before = star ? static_cast<int>(star - text) : lstrlenA(text);
    DrawTextA(deviceContext, text, before, &rect, format);
    rect.left += textWidth(deviceContext, text, before);
    if (!star) return;
    COLORREF old = SetTextColor(deviceContext, RGB(255, 0, 0));
    DrawTextA(deviceContext, "*", 1, &rect, format);
    rect.left += textWidth(deviceContext, "*", 1) + 3;
    SetTextColor(deviceContext, old);
    const char* rest = star[1] ? star + 2 : star + 1;
    DrawTextA(deviceContext, rest, -1, &rect, format);
}
}  // namespace

INT_PTR CInstallFormPage::onInitDialog()
{
    EnumChildWindows(hwnd, makeOwnerDrawn, 0);
    startReadyTimer();
    for (int id : {IDC_LOGIN_USER, IDC_LOGIN_PASSWORD, IDC_LOGIN_REPEAT})
        SendDlgItemMessageA(hwnd, id, EM_LIMITTEXT, 20, 0);
    for (int id : {IDC_LOGIN_HINT, IDC_LOGIN_EMAIL}) SendDlgItemMessageA(hwnd, id, EM_LIMITTEXT, 100, 0);
    return 1;
}

INT_PTR CInstallFormPage::onDrawItem(WPARAM controlId, LPARAM drawItem)
{
    const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(drawItem);
    if (!item || item->CtlType != ODT_STATIC) return 0;
    return drawStatic(static_cast<int>(controlId), *item);
}

int CInstallFormPage::drawStatic(int controlId, const DRAWITEMSTRUCT& item)
{
    // Typing alone changes nothing: the state shown is the one of the last Next.
    bool bold = validated && !isFieldValid(controlId);
    HDC deviceContext = item.hDC;
    HFONT font = createWizardFont(bold);
    HGDIOBJ oldFont = SelectObject(deviceContext, font);
    char text[1024];
    GetWindowTextA(item.hwndItem, text, sizeof text);
    RECT rect = item.rcItem;
    if (controlId == IDC_FORM_NOTE) {
        drawNote(deviceContext, text, rect);
    } else if (!startsWithNoCase(text, "www.")) {
        // Word breaks let a heading run over two lines.
        DrawTextA(deviceContext, text, -1, &rect, DT_VCENTER | DT_WORDBREAK);
    } else {
        FillRect(deviceContext, &rect, GetSysColorBrush(COLOR_BTNFACE));
        DrawTextA(deviceContext, text, -1, &rect, DT_VCENTER | DT_SINGLELINE);
        POINT cursor;
        GetCursorPos(&cursor);
        ScreenToClient(item.hwndItem, &cursor);
        if (PtInRect(&rect, cursor)) {
            HPEN pen = CreatePen(PS_SOLID, 1, RGB(0, 0, 255));
            HGDIOBJ oldPen = SelectObject(deviceContext, pen);
            MoveToEx(deviceContext, rect.left, rect.bottom - 1, nullptr);
            LineTo(deviceContext, rect.right, rect.bottom - 1);
            SelectObject(deviceContext, oldPen);
            DeleteObject(pen);
        }
    }
    SelectObject(deviceContext, oldFont);
    DeleteObject(font);
    return 1;
}

void CInstallFormPage::repaint()
{
    RECT client;
    GetClientRect(hwnd, &client);
    InvalidateRect(hwnd, &client, TRUE);
    UpdateWindow(hwnd);
}

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
