// Stands in for running browser and folder windows: opens one top-level window
// per argument "[hidden:]<class>=<title>" and ends when the last one is gone.
// Each SC_CLOSE that reaches a window is appended, as "closed <title>", to the
// file named by the first argument, before the window closes.
#include <windows.h>

#include <string>

namespace {
std::string record;
int openWindows = 0;

LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_SYSCOMMAND && (wParam & 0xFFF0) == SC_CLOSE) {
        char title[256] = "";
        GetWindowTextA(window, title, sizeof title);
        std::string line = std::string("closed ") + title + "\r\n";
        HANDLE file = CreateFileA(record.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
        DWORD written = 0;
        if (WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr)) CloseHandle(file);
    }
    if (message == WM_DESTROY && --openWindows == 0) PostQuitMessage(0);
    return DefWindowProcA(window, message, wParam, lParam);
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2) return 2;
    record = argv[1];
    for (int i = 2; i < argc; ++i) {
        std::string request = argv[i];
        bool hidden = request.rfind("hidden:", 0) == 0;
        if (hidden) request.erase(0, 7);
        size_t equals = request.find('=');
        if (equals == std::string::npos) return 2;
        std::string className = request.substr(0, equals), title = request.substr(equals + 1);
        WNDCLASSA windowClass = {0, windowProc, 0, 0, GetModuleHandleA(nullptr), nullptr, nullptr, nullptr, nullptr,
                                 className.c_str()};
        RegisterClassA(&windowClass);  // a second window of a class finds it registered
        HWND window = CreateWindowA(className.c_str(), title.c_str(), WS_OVERLAPPEDWINDOW, 10 + 20 * i,
                                    10 + 20 * i, 300, 200, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
        if (!window) return 1;
        ++openWindows;
        if (!hidden) ShowWindow(window, SW_SHOWNOACTIVATE);
    }
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    return 0;
}
