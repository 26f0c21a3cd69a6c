#pragma once
// Running the real frame in a test: the frame's modal loop on the main thread,
// the user on a second thread, and the frame's pixels read back.
#include <windows.h>

#include <functional>
#include "TestThread.h"
#include <vector>

#include "UiDriver.h"
#include "wizard/InstallPage.h"
#include "wizard/InstallWizard.h"

namespace wizardtest {

// A message box that a failed test left open would keep the frame's loop
// waiting for ever: each is answered with OK, or No where it has no OK.
inline BOOL CALLBACK answerLeftBox(HWND window, LPARAM frame)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    char className[16] = "";
    GetClassNameA(window, className, sizeof className);
    if (process != GetCurrentProcessId() || window == reinterpret_cast<HWND>(frame) || !IsWindowVisible(window) ||
        lstrcmpA(className, "#32770") != 0)
        return TRUE;
    uidriver::pressButton(window, GetDlgItem(window, IDOK) ? IDOK : IDNO);
    return TRUE;
}

// Runs the frame here and `user` on a second thread; the frame is cancelled at
// the end if the user left it open. The frame's result.
inline INT_PTR runWizard(CInstallWizard& wizard, const std::function<void()>& user)
{
    CTestThread thread([&] {
        HWND frame = nullptr;
        for (int i = 0; i < 200 && !(frame = wizard.hwnd); ++i) Sleep(25);
        if (frame) user();
        if (IsWindow(frame)) {
            EnumWindows(answerLeftBox, reinterpret_cast<LPARAM>(frame));
            Sleep(100);
            wizard.finishing = 0;
            PostMessageA(frame, WM_COMMAND, IDCANCEL, 0);
            uidriver::WindowQuery box{"Abort Install", GetCurrentProcessId(), false};
            if (HWND question = uidriver::waitForWindow(box, 5000)) uidriver::pressButton(question, IDYES);
        }
    });
    INT_PTR result = wizard.showFrame();
    thread.join();
    return result;
}

// Polls until the condition holds (the frame moves through posted messages).
inline bool eventually(const std::function<bool()>& condition, int tries = 100)
{
    for (int i = 0; i < tries; ++i) {
        if (condition()) return true;
        Sleep(30);
    }
    return false;
}

inline bool onPage(CInstallWizard& wizard, int id)
{
    return wizard.currentPage < static_cast<int>(wizard.pages.size()) && wizard.pages[wizard.currentPage]->id == id;
}

// The page is the current one and stands on the screen (the current page is
// set before its window is made).
inline bool shown(CInstallWizard& wizard, int id)
{
    if (!onPage(wizard, id)) return false;
    HWND page = wizard.pages[wizard.currentPage]->hwnd;
    return page && IsWindowVisible(page);
}

// Presses a button of the frame (Back 1000, Next 1001, Cancel).
inline void press(CInstallWizard& wizard, int id) { PostMessageA(wizard.hwnd, WM_COMMAND, id, 0); }

inline bool nextEnabled(CInstallWizard& wizard) { return IsWindowEnabled(GetDlgItem(wizard.hwnd, 1001)) != FALSE; }

// A window's client area as it stands on the screen.
struct Capture {
    int width = 0, height = 0;
    std::vector<DWORD> pixels;
    COLORREF at(int x, int y) const
    {
        DWORD p = pixels[static_cast<size_t>(y) * width + x];
        return RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF);
    }
};

inline Capture capture(HWND window)
{
    Capture shot;
    RECT client;
    GetClientRect(window, &client);
    shot.width = client.right;
    shot.height = client.bottom;
    HDC screen = GetDC(window);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), shot.width, -shot.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, shot.width, shot.height, screen, 0, 0, SRCCOPY);
    GdiFlush();
    shot.pixels.assign(static_cast<DWORD*>(bits), static_cast<DWORD*>(bits) + shot.width * shot.height);
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, screen);
    return shot;
}

// The rectangle of a control in its parent's client coordinates.
inline RECT clientRectOf(HWND parent, int id)
{
    RECT rect;
    GetWindowRect(GetDlgItem(parent, id), &rect);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

}  // namespace wizardtest
