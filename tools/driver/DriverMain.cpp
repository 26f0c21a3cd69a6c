// driver.exe: acts as a user from a shell script.
//   driver wait   <caption> [seconds]            waits for the window, prints its texts
//   driver answer <caption> <button> [seconds]   waits, prints its texts, presses the button
//                                                (an id, or a label such as OK or Yes)
//   driver type   <caption> <id> <text>          types into an edit control
//   driver run    <scenario> [--shots <folder>]  starts SETUP.EXE and plays a scenario (Scenario.h)
// Exit code 0 on success, 1 when the window did not appear or a step failed,
// 2 on bad arguments.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Scenario.h"
#include "UiDriver.h"

using namespace uidriver;

namespace {
void printWindow(HWND window)
{
    std::printf("caption: %s\n", windowText(window).c_str());
    std::string message = messageText(window);
    if (!message.empty()) std::printf("message: %s\n", message.c_str());
    for (const Control& control : listControls(window))
        std::printf("control %d %s%s%s [%ld,%ld %ldx%ld]: %s\n", control.id, control.className.c_str(),
                    control.visible ? "" : " (hidden)", control.enabled ? "" : " (disabled)",
                    control.rect.left, control.rect.top, control.rect.right - control.rect.left,
                    control.rect.bottom - control.rect.top, control.text.c_str());
}

bool isNumber(const char* text)
{
    if (!*text) return false;
    for (; *text; ++text)
        if (*text < '0' || *text > '9') return false;
    return true;
}

int usage()
{
    std::fprintf(stderr, "usage: driver wait <caption> [seconds] | answer <caption> <button> "
                         "[seconds] | type <caption> <id> <text> | run <scenario> [--shots <folder>]\n");
    return 2;
}

// ctest hands over Unix paths; Wine shows the Unix root as drive Z:.
std::string windowsPath(std::string path)
{
    if (!path.empty() && path[0] == '/') path = "Z:" + path;
    for (char& c : path)
        if (c == '/') c = '\\';
    char full[MAX_PATH];
    DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length && length < sizeof full ? full : path;
}

std::string readText(const std::string& path, bool& ok)
{
    std::string text;
    FILE* file = std::fopen(path.c_str(), "rb");
    ok = file != nullptr;
    if (!file) return text;
    char chunk[4096];
    for (size_t got; (got = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text.append(chunk, got);
    std::fclose(file);
    return text;
}

// Makes the folder and its parents, and clears the shots of an earlier run.
bool prepareShots(const std::string& folder)
{
    for (size_t at = folder.find('\\', 3); at != std::string::npos; at = folder.find('\\', at + 1))
        CreateDirectoryA(folder.substr(0, at).c_str(), nullptr);
    CreateDirectoryA(folder.c_str(), nullptr);
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((folder + "\\?" "?-*.bmp").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do DeleteFileA((folder + "\\" + found.cFileName).c_str());
        while (FindNextFileA(search, &found));
        FindClose(search);
    }
    DWORD attributes = GetFileAttributesA(folder.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

int runScenarioFile(int argc, char** argv)
{
    if (argc != 3 && !(argc == 5 && std::strcmp(argv[3], "--shots") == 0)) return usage();
    std::string path = windowsPath(argv[2]);
    bool read = false;
    std::string text = readText(path, read);
    if (!read) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return 2;
    }
    std::string error;
    std::vector<scenario::Step> steps = scenario::parseScenario(text, error);
    if (!error.empty()) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), error.c_str());
        return 2;
    }
    scenario::RunOptions options;
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    // driver.exe lives in build/<arch>/tools, SETUP.EXE one folder up.
    options.program = windowsPath(std::string(self).substr(0, std::string(self).find_last_of('\\')) +
                                  "\\..\\SETUP.EXE");
    if (argc == 5) {
        options.shotsFolder = windowsPath(argv[4]);
        if (!prepareShots(options.shotsFolder)) {
            std::fprintf(stderr, "cannot make %s\n", options.shotsFolder.c_str());
            return 2;
        }
    }
    std::printf("scenario %s\n", path.c_str());
    bool passed = scenario::runScenario(steps, options);
    if (!options.shotsFolder.empty()) std::printf("screenshots in %s\n", options.shotsFolder.c_str());
    std::printf("%s\n", passed ? "passed" : "FAILED");
    return passed ? 0 : 1;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return usage();
    if (std::strcmp(argv[1], "run") == 0) return runScenarioFile(argc, argv);
    std::string verb = argv[1];
    WindowQuery query;
    query.caption = argv[2];
    if (verb == "type") {
        if (argc != 5) return usage();
        HWND window = waitForWindow(query, 10000);
        if (!window) return 1;
        return setControlText(window, std::atoi(argv[3]), argv[4]) ? 0 : 1;
    }
    int secondsArg = verb == "wait" ? 3 : 4;
    if (verb == "answer" && argc < 4) return usage();
    DWORD seconds = argc > secondsArg ? std::strtoul(argv[secondsArg], nullptr, 10) : 10;
    HWND window = waitForWindow(query, seconds * 1000);
    if (!window) {
        std::fprintf(stderr, "no window \"%s\" within %lu s\n", argv[2],
                     static_cast<unsigned long>(seconds));
        return 1;
    }
    printWindow(window);
    std::fflush(stdout);
    if (verb == "wait") return 0;
    if (verb != "answer") return usage();
    bool pressed = isNumber(argv[3]) ? pressButton(window, std::atoi(argv[3]))
                                     : pressButtonByLabel(window, argv[3]);
    return pressed ? 0 : 1;
}
