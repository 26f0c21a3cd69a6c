#pragma once
#include <windows.h>

#include <string>
#include <vector>

#include "UiDriver.h"

std::string setupPath();
// A test variant of SETUP.EXE: the same program with another cabinet.
std::string variantPath(const std::string& variant);

// SETUP.EXE started as a user would start it, and what it leaves behind.
class SetupProcess {
public:
    explicit SetupProcess(const std::string& arguments, const std::string& program = setupPath());
    ~SetupProcess();
    // Waits for the end; returns the exit code, or -1 if it did not end in time.
    int wait(DWORD timeoutMs = 20000);
    // The visible window of this process with that caption, or null after the wait.
    HWND window(const std::string& caption, DWORD timeoutMs = 10000);
    void kill();
    DWORD id() const { return info.dwProcessId; }

private:
    PROCESS_INFORMATION info = {};
};

std::string testFolder();  // the folder of the test program, with a trailing backslash
std::string readLog();     // TavRinInstall.log of the Windows directory
// The log's lines without their "DD-MM-YYYY HH:MM:SS- " stamps; a line whose
// stamp is malformed is kept whole, so that a comparison shows it.
std::vector<std::string> logLines();
bool hasLine(const std::vector<std::string>& lines, const std::string& text);
// The head every run's log opens with: its two header lines, the system report
// (each value as this machine gives it), "Begin Installation".
void expectLogHead(const std::vector<std::string>& lines);
std::string tempFolder();  // GetTempPathA, with its trailing backslash
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& data);
// The InstallInProcess flag under HKCU\SOFTWARE\Tavrin; "(none)" if missing.
std::string readFlag();
void writeFlag(const char* value);

bool exists(const std::string& path);
// Deletes everything below `folder` (names that begin with a point too), not the folder.
void emptyFolder(const std::string& folder);
// A string value of the registry; "(none)" when it cannot be read.
std::string readValue(HKEY root, const char* key, const char* name);

// The wizard's page on show that holds a visible control with this id, or a
// static with this text; null when none comes within the time.
HWND pageShowing(HWND frame, int id, const char* text = nullptr, DWORD timeoutMs = 20000);
// Page 117 as a user without a new account passes it: "I already have an
// account" (or "I want to use my existing account"), then Next. False when no
// such page came up.
bool keepExistingAccount(HWND frame);
// Unticks the finish page's two boxes, so that Finish opens nothing, and presses Finish.
void finishOpeningNothing(HWND frame, HWND finishPage);
// From the folder page on show: into its folder (made when the wizard asks),
// past the ready page and the copy, to a Finish that opens nothing. Empty when
// the run then ends with 0, else what went otherwise.
std::string installFromFolderPage(SetupProcess& setup, HWND frame);
// Runs a command line to its end, as Windows runs a RunOnce value; false if it
// did not start or did not end in time.
bool runToEnd(std::string commandLine, DWORD timeoutMs = 30000);

// The product's default folder, which a quiet run needs to exist.
extern const std::string installFolder;
// A machine without the product: no folder, files, registrations or entries.
void removeInstallation();

// For the length of a test the browser is the recorder: App Paths\IEXPLORE.EXE
// names it, and what it is started with lands in `output` (through the
// environment, which the program and its children inherit).
class BrowserStandIn {
public:
    explicit BrowserStandIn(const std::string& output);
    ~BrowserStandIn();
    std::string seen() const { return readFile(output); }

private:
    std::string output;
    std::string previous;
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
    ~WindowHost();
    bool ended(DWORD timeoutMs) { return WaitForSingleObject(info.hProcess, timeoutMs) == WAIT_OBJECT_0; }

private:
    PROCESS_INFORMATION info = {};
};
