// Stands in for the browser: appends its command line to the file named by
// TAVRIN_RECORDER_OUT, so that a test can see what the program started.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int)
{
    char path[MAX_PATH];
    if (!GetEnvironmentVariableA("TAVRIN_RECORDER_OUT", path, sizeof path)) return 1;
    // Two starts at once (Help and a link, say) meet at the file: the later one
    // waits for the earlier to close it rather than lose its line.
    HANDLE file = INVALID_HANDLE_VALUE;
    for (int i = 0; i < 200 && file == INVALID_HANDLE_VALUE; ++i) {
        file = CreateFileA(path, FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            if (GetLastError() != ERROR_SHARING_VIOLATION) return 1;
            Sleep(25);
        }
    }
    if (file == INVALID_HANDLE_VALUE) return 1;
    DWORD written = 0;
    WriteFile(file, commandLine, lstrlenA(commandLine), &written, nullptr);
    WriteFile(file, "\r\n", 2, &written, nullptr);
    CloseHandle(file);
    return 0;
}
