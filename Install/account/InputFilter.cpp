#include "account/InputFilter.h"

#include <cstring>

CInputFilter::CInputFilter(HWND edit, const char* allowedSet) : control(edit), previous(nullptr), allowed(allowedSet)
{
    if (!control) return;
    SetWindowLongPtrA(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CInputFilter::filterProc)));
}

CInputFilter::~CInputFilter()
{
    if (!control || !previous || !IsWindow(control)) return;
    SetWindowLongPtrA(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
    SetWindowLongPtrA(control, GWLP_USERDATA, 0);
}

LRESULT CALLBACK CInputFilter::filterProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* filter = reinterpret_cast<CInputFilter*>(GetWindowLongPtrA(control, GWLP_USERDATA));
    if (!filter) return DefWindowProcA(control, message, wParam, lParam);
    if (message == WM_CHAR && !filter->allowed.empty() && GetAsyncKeyState(VK_CONTROL) >= 0) {
        char typed = static_cast<char>(wParam);
        // The edit control ignores a character 0.
        if (typed == 0 || !memchr(filter->allowed.data(), typed, filter->allowed.size())) wParam = 0;
    }
    return CallWindowProcA(filter->previous, control, message, wParam, lParam);
}
