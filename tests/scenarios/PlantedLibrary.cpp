// A DLL with the name of a system DLL, left in a download folder by someone
// else: all it does is leave "<its path>.loaded" when something loads it.
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    char marker[MAX_PATH + 8] = "";
    DWORD length = GetModuleFileNameA(instance, marker, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return TRUE;
    lstrcatA(marker, ".loaded");
    HANDLE file = CreateFileA(marker, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return TRUE;
}
