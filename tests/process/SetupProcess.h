#pragma once
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "UiDriver.h"

std::string testFolder();  // the folder of the test program, with a trailing backslash
std::string setupPath();
std::string variantPath(const std::string& variant);  // SETUP.EXE with another cabinet
std::string built(const std::string& path);  // a file below build/<arch>, as the build made it

// SETUP.EXE (or `program`) started as a user starts it; killed if it outlives the test.
class SetupProcess {
public:
    explicit SetupProcess(const std::string& arguments, const std::string& program = setupPath());
    ~SetupProcess();
    int wait(DWORD timeoutMs = 20000);  // the exit code, or -1 if it did not end in time
    // The visible window of this process with that caption, or null after the wait.
    HWND window(const std::string& caption, DWORD timeoutMs = 10000);
    void kill();
    DWORD id() const { return info.dwProcessId; }
    HANDLE handle() const { return info.hProcess; }

private:
    PROCESS_INFORMATION info = {};
};

std::string readLog();  // TavRinInstall.log of the Windows directory
std::string tempFolder();  // GetTempPathA, with its trailing backslash
std::string windowsFolder();
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& data);
inline bool exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }
// Deletes everything below `folder` (names that begin with a point too), not the folder.
void emptyFolder(const std::string& folder);
// A string value of the registry; "(none)" when it cannot be read.
std::string readValue(HKEY root, const char* key, const char* name);
// The InstallInProcess flag under HKCU\SOFTWARE\Tavrin.
inline std::string readFlag() { return readValue(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin", "InstallInProcess"); }
void writeFlag(const char* value);
std::string registeredServer(int index);  // the file of the product's class 0, 1 or 2

// The wizard's page on show that holds a visible control with this id, or a
// static with this text; null when none comes within the time.
HWND pageShowing(HWND frame, int id, const char* text = nullptr, DWORD timeoutMs = 20000);
// Page 117 passed without a new account: "I already have an account", then Next.
bool keepExistingAccount(HWND frame);
// Unticks the finish page's two boxes, so that Finish opens nothing, and presses Finish.
void finishOpeningNothing(HWND frame, HWND finishPage);
// From the folder page on: into its folder (made when asked), past the ready page
// and the copy, to a Finish that opens nothing. Empty when the run then ends with 0.
std::string installFromFolderPage(SetupProcess& setup, HWND frame);
// A run walked to the start of the copy: into the default folder, or into
// `newFolder`, made when asked. The frame, or null.
HWND startCopy(SetupProcess& setup, const std::string& newFolder = "");
bool runToEnd(std::string commandLine, DWORD timeoutMs = 30000);  // as Windows runs a RunOnce value

extern const std::string installFolder;  // the product's default folder
// A machine without the product: no folder, files, registrations, entries or flag.
void removeInstallation();
// A test on a machine without the product, nor a development override, but with
// its default folder (where quiet runs install).
class MachineTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// For the length of a test the recorder plays the browser (App Paths\IEXPLORE.EXE,
// in a folder with a blank), the shell's web links and text documents: what it
// is started with lands in `output`, through the environment.
class BrowserStandIn {
public:
    explicit BrowserStandIn(const std::string& output);
    ~BrowserStandIn();
    std::string seen() const { return readFile(output); }
    // What was opened once `awaited` is among it, or after 20 s.
    std::string seenOnce(const char* awaited) const;

private:
    std::string output;
    std::vector<std::pair<std::string, std::string>> previous;  // key, value
};

// The wizard's frame window: its caption holds the first file's version.
const char* const wizardCaption = "TavRin Installation - 3. 1. 0. 12";
// Cancel on the frame, Yes to "Abort Install": the run then ends in order.
void cancelWizard(SetupProcess& process);
// Presses `button` on the box with `caption` of `process` and returns its text.
std::string answerBox(SetupProcess& process, const std::string& caption, int button = IDOK);

// windowhost.exe (beside the test program, or in the process tests' folder)
// with these top-level windows, "[hidden:]<class>=<title>"; each SC_CLOSE that
// reaches one is written to `record`. Ready once its message loop waits for input.
class WindowHost {
public:
    WindowHost(const std::string& record, const std::vector<std::string>& windows);
    bool ended(DWORD timeoutMs) { return process.wait(timeoutMs) != -1; }

private:
    SetupProcess process;
};
