// The smallest program of the kind SETUP.EXE is: one modal dialog from a
// resource, built with the same toolchain and flags. The benchmarks measure
// SETUP.EXE's size and its start to the first page beside this one.
#include <windows.h>

namespace {
INT_PTR CALLBACK dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) return TRUE;
    if (message == WM_CLOSE || (message == WM_COMMAND && (LOWORD(wParam) == IDCANCEL || LOWORD(wParam) == IDOK))) {
        EndDialog(dialog, 0);
        return TRUE;
    }
    return FALSE;
}
}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int)
{
    return static_cast<int>(DialogBoxParamA(instance, MAKEINTRESOURCEA(1), nullptr, dialogProc, 0));
}
