#pragma once
// Running the real frame in a test: the frame's modal loop on the main thread,
// the user on a second thread.
#include <windows.h>

#include <functional>

#include "TestThread.h"
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
    if (process == GetCurrentProcessId() && window != reinterpret_cast<HWND>(frame) && IsWindowVisible(window) &&
        lstrcmpA(className, "#32770") == 0)
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
    for (int i = 0; i < tries; ++i, Sleep(30))
        if (condition()) return true;
    return false;
}
inline bool onPage(CInstallWizard& w, int id)
{
    return w.currentPage < int(w.pages.size()) && w.pages[w.currentPage]->id == id;
}

// The page is the current one and stands on the screen (its window comes after).
inline bool shown(CInstallWizard& wizard, int id)
{
    HWND page = onPage(wizard, id) ? wizard.pages[wizard.currentPage]->hwnd : nullptr;
    return page && IsWindowVisible(page);
}
inline HWND shownPage(CInstallWizard& wizard, int id)
{
    return eventually([&] { return shown(wizard, id); }, 300) ? wizard.findPage(id)->hwnd : nullptr;
}

// Presses a button of the frame (Back 1000, Next 1001, Cancel).
inline void press(CInstallWizard& wizard, int id) { PostMessageA(wizard.hwnd, WM_COMMAND, id, 0); }
inline bool nextEnabled(CInstallWizard& wizard) { return IsWindowEnabled(GetDlgItem(wizard.hwnd, 1001)) != FALSE; }

}  // namespace wizardtest
