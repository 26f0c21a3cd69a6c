#pragma once
#include <windows.h>

#include <string>

// Drops the characters typed into an edit control that are not in an allowed
// set. It takes the control's window procedure over for its own life; text
// that arrives by paste, and keys with Ctrl held, pass unfiltered.
class CInputFilter {
public:
    // An empty set lets everything through.
    CInputFilter(HWND control, const char* allowedSet);
    ~CInputFilter();
    CInputFilter(const CInputFilter&) = delete;
    CInputFilter& operator=(const CInputFilter&) = delete;

private:
    static LRESULT CALLBACK filterProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

    HWND control;
    WNDPROC previous;
    std::string allowed;
};
