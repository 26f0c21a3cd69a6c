// A DLL or a program with the name of a system one, left in a download folder
// by someone else: all it does is leave "<its path>.loaded" when it is loaded
// or started.
#include <windows.h>

namespace {
void leaveMarker(HMODULE module)
{
    char marker[MAX_PATH + 8] = "";
    DWORD length = GetModuleFileNameA(module, marker, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return;
    lstrcatA(marker, ".loaded");
    HANDLE file = CreateFileA(marker, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}
}  // namespace

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) leaveMarker(instance);
    return TRUE;
}

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    leaveMarker(nullptr);
    return 0;
}
