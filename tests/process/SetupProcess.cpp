#include "SetupProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

SetupProcess::SetupProcess(const std::string& arguments, const std::string& program)
{
    std::string commandLine = "\"" + program + "\"";
    if (!arguments.empty()) commandLine += " " + arguments;
    std::vector<char> buffer(commandLine.begin(), commandLine.end());
    buffer.push_back(0);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    if (!CreateProcessA(nullptr, buffer.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &info))
        ADD_FAILURE() << "cannot start " << program << ": error " << GetLastError();
}

SetupProcess::~SetupProcess()
{
    if (info.hProcess) {
        if (WaitForSingleObject(info.hProcess, 0) == WAIT_TIMEOUT) kill();
        CloseHandle(info.hProcess);
        CloseHandle(info.hThread);
    }
}

int SetupProcess::wait(DWORD timeoutMs)
{
    if (!info.hProcess) return -1;
    if (WaitForSingleObject(info.hProcess, timeoutMs) != WAIT_OBJECT_0) return -1;
    DWORD code = 0;
    GetExitCodeProcess(info.hProcess, &code);
    return static_cast<int>(code);
}

HWND SetupProcess::window(const std::string& caption, DWORD timeoutMs)
{
    uidriver::WindowQuery query;
    query.caption = caption;
    query.processId = info.dwProcessId;
    return uidriver::waitForWindow(query, timeoutMs);
}

void SetupProcess::kill()
{
    TerminateProcess(info.hProcess, 9);
    WaitForSingleObject(info.hProcess, 5000);
}

std::string testFolder()
{
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, sizeof path);
    std::string folder(path);
    return folder.substr(0, folder.find_last_of('\\') + 1);
}

std::string setupPath()
{
    // build/x64/tests/process/<test>.exe beside build/x64/SETUP.EXE
    return testFolder() + "..\\..\\SETUP.EXE";
}

std::string variantPath(const std::string& variant)
{
    return testFolder() + "..\\..\\variants\\SETUP_" + variant + ".EXE";
}

std::string tempFolder()
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    return temp;
}

std::string readFile(const std::string& path)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "";
    std::string data;
    char chunk[65536];
    DWORD got = 0;
    while (ReadFile(file, chunk, sizeof chunk, &got, nullptr) && got) data.append(chunk, got);
    CloseHandle(file);
    return data;
}

void writeFile(const std::string& path, const std::string& data)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << path;
    DWORD written = 0;
    WriteFile(file, data.data(), static_cast<DWORD>(data.size()), &written, nullptr);
    CloseHandle(file);
}

std::string readLog()
{
    char windows[MAX_PATH];
    GetWindowsDirectoryA(windows, sizeof windows);
    return readFile(std::string(windows) + "\\TavRinInstall.log");
}

std::vector<std::string> logLines()
{
    std::vector<std::string> lines;
    std::string log = readLog();
    size_t start = 0;
    for (size_t end; (end = log.find("\r\n", start)) != std::string::npos; start = end + 2) {
        std::string line = log.substr(start, end - start);
        bool stamped = line.size() >= 21 && line[2] == '-' && line[5] == '-' && line[10] == ' ' &&
                       line[13] == ':' && line[16] == ':' && line.compare(19, 2, "- ") == 0;
        lines.push_back(stamped ? line.substr(21) : line);
    }
    EXPECT_EQ(start, log.size()) << "the log ends with an unterminated line";
    return lines;
}

bool hasLine(const std::vector<std::string>& lines, const std::string& text)
{
    for (const std::string& line : lines)
        if (line == text) return true;
    return false;
}

void expectLogHead(const std::vector<std::string>& lines)
{
    ASSERT_GE(lines.size(), 15u);
    EXPECT_EQ(lines[0], "TavRin Installation Log");
    EXPECT_EQ(lines[1], "If you experience any problems during the installation, please forward "
                        "this log to support@tavrin.example");
    EXPECT_EQ(lines[2], std::string(30, '-') + " System Information " + std::string(30, '-'));
    char windows[MAX_PATH] = "", system[MAX_PATH] = "";
    GetWindowsDirectoryA(windows, sizeof windows);
    GetSystemDirectoryA(system, sizeof system);
    OSVERSIONINFOA os = {};
    os.dwOSVersionInfoSize = sizeof os;
    GetVersionExA(&os);
    SYSTEM_INFO machine = {};
    GetSystemInfo(&machine);
    const std::string fixed[] = {
        std::string("Windows Directory: ") + windows,
        std::string("System Directory: ") + system,
        "Windows OS: Windows NT",
        "Windows Version: " + std::to_string(os.dwMajorVersion) + "." + std::to_string(os.dwMinorVersion),
        std::string("Service Packs: ") + os.szCSDVersion,
        "Internet Explorer Version: " +
            readValue(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Internet Explorer", "Version"),
    };
    for (int i = 0; i < 6; ++i) EXPECT_EQ(lines[3 + i], fixed[i]);
    // A 64-bit processor has a type of its own, which the report leaves empty.
    EXPECT_TRUE(lines[9] == "Processor: " || lines[9] == "Processor: Intel Pentium Processor" ||
                lines[9] == "Processor: Intel 486 Processor" || lines[9] == "Processor: Intel 386 Processor")
        << lines[9];
    EXPECT_EQ(lines[10], "Processor Count: " + std::to_string(machine.dwNumberOfProcessors));
    // The version of the system's wininet.dll, not its path (which stands there on failure).
    EXPECT_EQ(lines[11].rfind("Wininet version: ", 0), 0u);
    EXPECT_EQ(std::count(lines[11].begin(), lines[11].end(), '.'), 3) << lines[11];
    EXPECT_EQ(lines[11].find('\\'), std::string::npos) << lines[11];
    EXPECT_EQ(lines[12], "Connection Type: Lan") << "Wine reports a LAN";
    EXPECT_EQ(lines[13], std::string(80, '-'));
    EXPECT_EQ(lines[14], "Begin Installation");
}

std::string readFlag()
{
    char value[256] = "";
    DWORD size = sizeof value - 1;
    if (RegGetValueA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin", "InstallInProcess", RRF_RT_REG_SZ,
                     nullptr, value, &size) != ERROR_SUCCESS)
        return "(none)";
    return value;
}

void writeFlag(const char* value)
{
    HKEY key;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin", 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegSetValueExA(key, "InstallInProcess", 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                   static_cast<DWORD>(strlen(value) + 1));
    RegCloseKey(key);
}

std::string answerBox(SetupProcess& process, const std::string& caption, int button)
{
    HWND box = process.window(caption);
    if (!box) {
        ADD_FAILURE() << "no box \"" << caption << "\"";
        return "";
    }
    std::string text = uidriver::messageText(box);
    uidriver::pressButton(box, button);
    uidriver::WindowQuery gone;
    gone.caption = caption;
    gone.processId = process.id();
    uidriver::waitForWindowGone(gone, 5000);
    return text;
}

void cancelWizard(SetupProcess& process)
{
    HWND frame = process.window(wizardCaption);
    ASSERT_TRUE(frame) << "no wizard frame";
    uidriver::pressButton(frame, IDCANCEL);
    answerBox(process, "Abort Install", IDYES);
}

namespace {
const char* const appPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE";

void setBrowser(const std::string& command)
{
    RegSetKeyValueA(HKEY_LOCAL_MACHINE, appPaths, nullptr, REG_SZ, command.c_str(),
                    static_cast<DWORD>(command.size() + 1));
}
}  // namespace

BrowserStandIn::BrowserStandIn(const std::string& file) : output(file)
{
    char old[1024] = "";
    DWORD size = sizeof old;
    if (RegGetValueA(HKEY_LOCAL_MACHINE, appPaths, nullptr, RRF_RT_REG_SZ, nullptr, old, &size) == ERROR_SUCCESS)
        previous = old;
    DeleteFileA(output.c_str());
    SetEnvironmentVariableA("TAVRIN_RECORDER_OUT", output.c_str());
    // Where the browser is on Windows: in a folder with a blank. Started
    // unquoted, it would be C:\Program.exe, which someone has left there and
    // which records nothing (the add-on's tvdownload.exe, which ends at once).
    const std::string folder = "C:\\Program Files\\Browser Stand-In";
    CreateDirectoryA(folder.c_str(), nullptr);
    CopyFileA((testFolder() + "recorder.exe").c_str(), (folder + "\\recorder.exe").c_str(), FALSE);
    CopyFileA((testFolder() + "..\\..\\payload\\tvdownload.exe").c_str(), "C:\\Program.exe", FALSE);
    setBrowser(folder + "\\recorder.exe");
}

BrowserStandIn::~BrowserStandIn()
{
    setBrowser(previous);
    DeleteFileA("C:\\Program.exe");
}

bool exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::string readValue(HKEY root, const char* key, const char* name)
{
    char value[4096] = "";
    DWORD size = sizeof value - 1;
    if (RegGetValueA(root, key, name, RRF_RT_REG_SZ, nullptr, value, &size) != ERROR_SUCCESS) return "(none)";
    return value;
}

const std::string installFolder = "C:\\Program Files\\TavRin";

void removeInstallation()
{
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((installFolder + "\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            std::string path = installFolder + "\\" + found.cFileName;
            SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileA(path.c_str());
        } while (FindNextFileA(search, &found));
        FindClose(search);
    }
    RemoveDirectoryA(installFolder.c_str());
    for (const char* guid : {"{16C7C243-7FA0-11D3-A0E4-0A02B9000000}", "{16C7C244-7FA0-11D3-A0E4-0A02B9000000}",
                             "{16C7C245-7FA0-11D3-A0E4-0A02B9000000}"})
        RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + guid).c_str());
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin");
    RegDeleteKeyValueA(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "TavRin");
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "TavRinUninstall");
    char windows[MAX_PATH];
    GetWindowsDirectoryA(windows, sizeof windows);
    DeleteFileA((std::string(windows) + "\\INF\\tvuninst.inf").c_str());
    // What a run that was killed, or left with a box open by a failed test, kept.
    const std::string extraction = tempFolder() + "tavrin";
    emptyFolder(extraction);
    RemoveDirectoryA(extraction.c_str());
    writeFlag("0");
}

namespace {
bool eventually(const std::function<bool()>& condition, DWORD timeoutMs = 10000)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 50, Sleep(50))
        if (condition()) return true;
    return false;
}
}  // namespace

HWND pageShowing(HWND frame, int id, const char* text, DWORD timeoutMs)
{
    HWND found = nullptr;
    eventually([&] {
        for (HWND page = FindWindowExA(frame, nullptr, nullptr, nullptr); page && !found;
             page = FindWindowExA(frame, page, nullptr, nullptr)) {
            HWND control = text ? FindWindowExA(page, nullptr, "Static", text) : GetDlgItem(page, id);
            if (control && IsWindowVisible(control) && IsWindowVisible(page)) found = page;
        }
        return found != nullptr;
    }, timeoutMs);
    return found;
}

bool keepExistingAccount(HWND frame)
{
    HWND page = pageShowing(frame, 1017), next = GetDlgItem(frame, 1001);
    auto checked = [&] { return IsDlgButtonChecked(page, 1031) == BST_CHECKED; };
    // Ready once it has checked the radio of a known account, or held Next back without one.
    if (!page || !eventually([&] { return checked() || !IsWindowEnabled(next); })) return false;
    PostMessageA(GetDlgItem(page, 1031), BM_CLICK, 0, 0);
    return eventually([&] { return checked() && IsWindowEnabled(next); }) && uidriver::pressButton(frame, 1001);
}

void finishOpeningNothing(HWND frame, HWND finishPage)
{
    PostMessageA(GetDlgItem(finishPage, 1018), BM_CLICK, 0, 0);
    PostMessageA(GetDlgItem(finishPage, 1031), BM_CLICK, 0, 0);
    Sleep(200);
    uidriver::pressButton(frame, IDCANCEL);
}

std::string installFromFolderPage(SetupProcess& setup, HWND frame)
{
    if (!pageShowing(frame, 1005)) return "no folder page";
    uidriver::pressButton(frame, 1001);
    answerBox(setup, "Create Folder", IDYES);
    if (!pageShowing(frame, 0, "TavRin Personal Installation is almost complete!")) return "no ready page";
    uidriver::pressButton(frame, 1001);
    HWND finish = pageShowing(frame, 1018);
    if (!finish) return "no finish page";
    finishOpeningNothing(frame, finish);
    int code = setup.wait();
    return code == 0 ? "" : "exit code " + std::to_string(code);
}

namespace {
// The program Windows starts for an unquoted command line: the text up to each
// blank in turn, with ".exe" when it has no extension, the first that is a file.
std::string programOf(const std::string& commandLine)
{
    for (size_t end = commandLine.find(' ');; end = commandLine.find(' ', end + 1)) {
        std::string candidate = commandLine.substr(0, end);
        size_t name = candidate.find_last_of('\\') + 1;
        if (candidate.find('.', name) == std::string::npos) candidate += ".exe";
        DWORD attributes = GetFileAttributesA(candidate.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY)) return candidate;
        if (end == std::string::npos) return "";
    }
}
}  // namespace

bool runToEnd(std::string commandLine, DWORD timeoutMs)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info = {};
    // Windows hands the line to the program unchanged. Wine's CreateProcessA
    // puts the program it found in quotes, which would hide a line that Windows
    // cuts: the program is found here, as Windows finds it, and named.
    std::string program = commandLine[0] == '"' ? "" : programOf(commandLine);
    if (!CreateProcessA(program.empty() ? nullptr : program.c_str(), &commandLine[0], nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &startup, &info))
        return false;
    bool ended = WaitForSingleObject(info.hProcess, timeoutMs) == WAIT_OBJECT_0;
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
    return ended;
}

WindowHost::WindowHost(const std::string& record, const std::vector<std::string>& windows)
{
    std::string program = testFolder() + "windowhost.exe";
    if (!exists(program)) program = testFolder() + "..\\process\\windowhost.exe";
    std::string commandLine = "\"" + program + "\" \"" + record + "\"";
    for (const std::string& window : windows) commandLine += " \"" + window + "\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    if (!CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info))
        ADD_FAILURE() << "cannot start windowhost.exe: error " << GetLastError();
    else
        WaitForInputIdle(info.hProcess, 10000);
}

WindowHost::~WindowHost()
{
    if (!info.hProcess) return;
    TerminateProcess(info.hProcess, 0);
    WaitForSingleObject(info.hProcess, 5000);
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
}

void emptyFolder(const std::string& folder)
{
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        std::string name = found.cFileName, path = folder + "\\" + name;
        if (name == "." || name == "..") continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            emptyFolder(path);
            RemoveDirectoryA(path.c_str());
        } else {
            SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileA(path.c_str());
        }
    } while (FindNextFileA(search, &found));
    FindClose(search);
}
