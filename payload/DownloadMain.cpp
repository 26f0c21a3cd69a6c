// tvdownload.exe of the add-on: a Windows program with no window that starts
// and ends at once. SETUP.EXE copies it and compares its version; it never runs it.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    return 0;
}
