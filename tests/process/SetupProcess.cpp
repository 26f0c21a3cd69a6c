#include "SetupProcess.h"

#include <fstream>
#include <functional>
#include <iterator>

namespace {
bool eventually(const std::function<bool()>& condition, DWORD timeoutMs = 10000)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 50, Sleep(50))
        if (condition()) return true;
    return false;
}

bool start(const char* program, std::string commandLine, PROCESS_INFORMATION& info)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    return CreateProcessA(program, &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info);
}
}  // namespace

SetupProcess::SetupProcess(const std::string& arguments, const std::string& program)
{
    if (!start(nullptr, "\"" + program + "\"" + (arguments.empty() ? "" : " " + arguments), info))
        ADD_FAILURE() << "cannot start " << program << ": error " << GetLastError();
}

SetupProcess::~SetupProcess()
{
    if (!info.hProcess) return;
    if (WaitForSingleObject(info.hProcess, 0) == WAIT_TIMEOUT) kill();
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
}

int SetupProcess::wait(DWORD timeoutMs)
{
    DWORD code = 0;
    if (!info.hProcess || WaitForSingleObject(info.hProcess, timeoutMs) != WAIT_OBJECT_0) return -1;
    GetExitCodeProcess(info.hProcess, &code);
    return static_cast<int>(code);
}

HWND SetupProcess::window(const std::string& caption, DWORD timeoutMs)
{
    return uidriver::waitForWindow({caption, info.dwProcessId}, timeoutMs);
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

// build/x64/tests/process/<test>.exe beside build/x64/SETUP.EXE
std::string setupPath() { return testFolder() + "..\\..\\SETUP.EXE"; }
std::string variantPath(const std::string& variant)
{
    return testFolder() + "..\\..\\variants\\SETUP_" + variant + ".EXE";
}
std::string built(const std::string& path) { return readFile(testFolder() + "..\\..\\" + path); }

std::string windowsFolder()
{
    char windows[MAX_PATH];
    GetWindowsDirectoryA(windows, sizeof windows);
    return windows;
}

std::string tempFolder()
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    return temp;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, const std::string& data)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    ASSERT_TRUE(out << data) << path;
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

std::string readLog() { return readFile(windowsFolder() + "\\TavRinInstall.log"); }

std::string readValue(HKEY root, const char* key, const char* name)
{
    char value[4096] = "";
    DWORD size = sizeof value - 1;
    if (RegGetValueA(root, key, name, RRF_RT_REG_SZ, nullptr, value, &size) != ERROR_SUCCESS) return "(none)";
    return value;
}

void writeFlag(const char* value)
{
    ASSERT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin", "InstallInProcess", REG_SZ, value,
                              static_cast<DWORD>(strlen(value) + 1)), ERROR_SUCCESS);
}

namespace {
const char* const classIds[] = {"{16C7C243-7FA0-11D3-A0E4-0A02B9000000}", "{16C7C244-7FA0-11D3-A0E4-0A02B9000000}",
                                "{16C7C245-7FA0-11D3-A0E4-0A02B9000000}"};
}

std::string registeredServer(int index)
{
    return readValue(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + classIds[index] + "\\InprocServer32").c_str(),
                     nullptr);
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
    uidriver::waitForWindowGone({caption, process.id()}, 5000);
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
const char* const standIns[] = {"http\\shell\\open\\command", "txtfile\\shell\\open\\command", ".txt"};
void setDefault(HKEY root, const std::string& key, const std::string& value)
{
    RegSetKeyValueA(root, key.c_str(), nullptr, REG_SZ, value.c_str(), static_cast<DWORD>(value.size() + 1));
}
}  // namespace

// Started unquoted, the browser would be C:\Program.exe, which someone has left
// there and which records nothing (the add-on's tvdownload.exe, which ends at once).
BrowserStandIn::BrowserStandIn(const std::string& file) : output(file)
{
    DeleteFileA(output.c_str());
    SetEnvironmentVariableA("TAVRIN_RECORDER_OUT", output.c_str());
    const std::string folder = "C:\\Program Files\\Browser Stand-In",
                      recorder = "\"" + folder + "\\recorder.exe\" \"%1\"";
    CreateDirectoryA(folder.c_str(), nullptr);
    CopyFileA((testFolder() + "recorder.exe").c_str(), (folder + "\\recorder.exe").c_str(), FALSE);
    CopyFileA((testFolder() + "..\\..\\payload\\tvdownload.exe").c_str(), "C:\\Program.exe", FALSE);
    for (const char* key : standIns) previous.emplace_back(key, readValue(HKEY_CLASSES_ROOT, key, nullptr));
    previous.emplace_back(appPaths, readValue(HKEY_LOCAL_MACHINE, appPaths, nullptr));
    setDefault(HKEY_CLASSES_ROOT, standIns[0], recorder);
    setDefault(HKEY_CLASSES_ROOT, standIns[1], recorder);
    setDefault(HKEY_CLASSES_ROOT, standIns[2], "txtfile");
    setDefault(HKEY_LOCAL_MACHINE, appPaths, folder + "\\recorder.exe");
}

BrowserStandIn::~BrowserStandIn()
{
    for (auto& kept : previous)
        setDefault(kept.first == appPaths ? HKEY_LOCAL_MACHINE : HKEY_CLASSES_ROOT, kept.first,
                   kept.second == "(none)" ? "" : kept.second);
    DeleteFileA("C:\\Program.exe");
}

std::string BrowserStandIn::seenOnce(const char* awaited) const
{
    std::string opened;
    eventually([&] { return (opened = seen()).find(awaited) != std::string::npos; }, 20000);
    return opened;
}

const std::string installFolder = "C:\\Program Files\\TavRin";

void removeInstallation()
{
    emptyFolder(installFolder);
    RemoveDirectoryA(installFolder.c_str());
    for (const char* guid : classIds) RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + guid).c_str());
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin");
    RegDeleteKeyValueA(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "TavRin");
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "TavRinUninstall");
    DeleteFileA((windowsFolder() + "\\INF\\tvuninst.inf").c_str());
    // What a run that was killed, or left with a box open by a failed test, kept.
    emptyFolder(tempFolder() + "tavrin");
    RemoveDirectoryA((tempFolder() + "tavrin").c_str());
    writeFlag("0");
}

void MachineTest::SetUp()
{
    TearDown();
    CreateDirectoryA(installFolder.c_str(), nullptr);
}

void MachineTest::TearDown()
{
    SetEnvironmentVariableA("TMP", nullptr);  // one a test moved: GetTempPathA falls back on TEMP
    RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug");
    removeInstallation();
}

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

namespace {
// From the folder page on show (given `newFolder`, made when asked) past the ready page.
bool copyFromFolderPage(SetupProcess& setup, HWND frame, const std::string& newFolder, bool madeWhenAsked)
{
    HWND page = pageShowing(frame, 1005);
    if (!page) return false;
    if (!newFolder.empty()) uidriver::setControlText(page, 1005, newFolder);
    uidriver::pressButton(frame, 1001);
    if (madeWhenAsked) answerBox(setup, "Create Folder", IDYES);
    if (!pageShowing(frame, 0, "TavRin Personal Installation is almost complete!")) return false;
    return uidriver::pressButton(frame, 1001);  // ready: the copy starts
}
}  // namespace

std::string installFromFolderPage(SetupProcess& setup, HWND frame)
{
    HWND finish = copyFromFolderPage(setup, frame, "", true) ? pageShowing(frame, 1018) : nullptr;
    if (!finish) return "no finish page";
    finishOpeningNothing(frame, finish);
    int code = setup.wait();
    return code == 0 ? "" : "exit code " + std::to_string(code);
}

HWND startCopy(SetupProcess& setup, const std::string& newFolder)
{
    HWND frame = setup.window(wizardCaption, 20000);
    if (!frame || !uidriver::pressButton(frame, 1001) || !keepExistingAccount(frame)) return nullptr;
    return copyFromFolderPage(setup, frame, newFolder, !newFolder.empty()) ? frame : nullptr;
}

namespace {
// The program Windows starts for an unquoted command line: the text up to each
// blank in turn, with ".exe" when it has no extension, the first that is a file.
std::string programOf(const std::string& commandLine)
{
    for (size_t end = commandLine.find(' ');; end = commandLine.find(' ', end + 1)) {
        std::string candidate = commandLine.substr(0, end);
        if (candidate.find('.', candidate.find_last_of('\\') + 1) == std::string::npos) candidate += ".exe";
        DWORD attributes = GetFileAttributesA(candidate.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY)) return candidate;
        if (end == std::string::npos) return "";
    }
}
}  // namespace

bool runToEnd(std::string commandLine, DWORD timeoutMs)
{
    // Windows hands the line to the program unchanged. Wine's CreateProcessA puts
    // the program it found in quotes, which would hide a line that Windows cuts:
    // the program is found here, as Windows finds it, and named.
    std::string program = commandLine[0] == '"' ? "" : programOf(commandLine);
    PROCESS_INFORMATION info = {};
    if (!start(program.empty() ? nullptr : program.c_str(), commandLine, info)) return false;
    bool ended = WaitForSingleObject(info.hProcess, timeoutMs) == WAIT_OBJECT_0;
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
    return ended;
}

WindowHost::WindowHost(const std::string& record, const std::vector<std::string>& windows)
    : process([&] {
          std::string arguments = "\"" + record + "\"";
          for (const std::string& window : windows) arguments += " \"" + window + "\"";
          return arguments;
      }(), exists(testFolder() + "windowhost.exe") ? testFolder() + "windowhost.exe"
                                                   : testFolder() + "..\\process\\windowhost.exe")
{
    WaitForInputIdle(process.handle(), 10000);
}
