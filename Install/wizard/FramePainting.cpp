// The frame's own drawing: the etched product name on the divider, the sunken
// frame round the side panel, and the site link with its hover underline.
#include <windows.h>
#include <shellapi.h>

#include "DeploymentConfig.h"
#include "Program.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"
#include "wizard/Painting.h"

namespace {
RECT controlRect(HWND dialog, int id)
{
    RECT rect = {0, 0, 0, 0};
    HWND control = GetDlgItem(dialog, id);
    if (!control) return rect;
    GetWindowRect(control, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}
}  // namespace

INT_PTR CInstallWizard::onPaint(HWND)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    HFONT heading = createHeadingFont(), smallFont = createWizardFont(false);
    SetBkMode(dc, TRANSPARENT);
    RECT client;
    GetClientRect(hwnd, &client);
    int cancelTop = controlRect(hwnd, IDCANCEL).top;

    HGDIOBJ oldFont = SelectObject(dc, heading);
    int width = drawEtchedText(dc, 10, cancelTop - 25, "TavRin", true);
    drawEtchedLine(dc, width + 15, cancelTop - 15, client.right - 10, cancelTop - 15);
    RECT panel = controlRect(hwnd, IDC_WIZARD_PANEL);
    drawSunkenFrame(dc, panel.left, panel.top, panel.right, panel.bottom);

    SelectObject(dc, smallFont);
    const char* link = TAVRIN_WEB_HOST;
    RECT measure = {0, 0, 0, 0};
    DrawTextA(dc, link, -1, &measure, DT_CALCRECT | DT_NOPREFIX);
    int w = measure.right - measure.left, h = measure.bottom - measure.top;
    linkRect = {client.right - w - 10, cancelTop - h - 17, client.right - 10, cancelTop - 16};
    SetTextColor(dc, RGB(0, 0, 255));
    DrawTextA(dc, link, -1, &linkRect, DT_NOPREFIX);
    if (linkHover) {
        HPEN pen = CreatePen(PS_SOLID, 0, RGB(0, 0, 255));
        HGDIOBJ oldPen = SelectObject(dc, pen);
        MoveToEx(dc, linkRect.right - 1, linkRect.bottom - 2, nullptr);
        LineTo(dc, linkRect.left, linkRect.bottom - 2);
        SelectObject(dc, oldPen);
        DeleteObject(pen);
    }
    SelectObject(dc, oldFont);
    DeleteObject(heading);
    DeleteObject(smallFont);
    EndPaint(hwnd, &paint);
    return 0;
}

bool CInstallWizard::overControl(int id, unsigned x, unsigned y)
{
    RECT rect = controlRect(hwnd, id);
    POINT point = {static_cast<LONG>(x), static_cast<LONG>(y)};
    return PtInRect(&rect, point) != FALSE;
}

INT_PTR CInstallWizard::onMouseMove(unsigned x, unsigned y)
{
    HCURSOR hand = LoadCursorA(moduleInstance, MAKEINTRESOURCEA(IDC_HAND_CURSOR));
    HCURSOR cursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
    if (hasLogo() && overControl(IDC_WIZARD_LOGO, x, y)) cursor = hand;
    POINT point = {static_cast<LONG>(x), static_cast<LONG>(y)};
    int hover = PtInRect(&linkRect, point) ? 1 : 0;
    if (hover) cursor = hand;
    if (hover != linkHover) {
        linkHover = hover;
        InvalidateRect(hwnd, &linkRect, TRUE);
    }
    if (cursor != GetCursor()) SetCursor(cursor);
    return 0;
}

INT_PTR CInstallWizard::onLButtonDown(unsigned x, unsigned y, WPARAM)
{
    if (hasLogo() && overControl(IDC_WIZARD_LOGO, x, y))
        ShellExecuteA(hwnd, "open", branding.linkUrl.c_str(), nullptr, nullptr, SW_SHOW);
    POINT point = {static_cast<LONG>(x), static_cast<LONG>(y)};
    if (PtInRect(&linkRect, point))
        ShellExecuteA(hwnd, "open", TAVRIN_HOME_URL, nullptr, nullptr, SW_SHOW);
    return 0;
}
