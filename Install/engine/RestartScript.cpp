#include "engine/RestartScript.h"

#include <cstring>

#include "BoundedText.h"
#include "DeploymentConfig.h"
#include "InstallLog.h"
#include "RegistryKey.h"
#include "description/PathHelpers.h"
#include "engine/ComponentRegistration.h"
#include "wizard/InstallWizard.h"

#include <shellapi.h>

namespace {
std::string cutPath(const char* start, size_t count)
{
    char path[MAX_PATH];
    copyTextPart(path, start, count, sizeof path);
    return path;
}

bool readCommand(const char* line, size_t length, CRestartCommand& command)
{
    if (startsWithNoCase(line, "Destination=")) {
        command = {CRestartCommand::destination, cutPath(line + 12, length - 12), ""};
    } else if (startsWithNoCase(line, "Source=")) {
        command = {CRestartCommand::source, cutPath(line + 7, length - 7), ""};
    } else if (startsWithNoCase(line, "copy")) {
        // The source starts behind the word and one separator and ends at the
        // next blank, so it can hold none; the target is the whole rest.
        if (length <= 5) return false;
        const char* source = line + 5;
        const char* blank = static_cast<const char*>(std::memchr(source, ' ', length - 5));
        if (!blank) return false;
        command = {CRestartCommand::copy, cutPath(source, blank - source),
                   cutPath(blank + 1, line + length - blank - 1)};
    } else if (startsWithNoCase(line, "regsvr32")) {
        // A line with no path behind the word still names a registration: an
        // empty path, which fails and stops the run.
        command = {CRestartCommand::regsvr32, length > 9 ? cutPath(line + 9, length - 9) : "", ""};
    } else {
        return false;
    }
    return true;
}

void showFailure()
{
    MessageBoxA(GetActiveWindow(), "TavRin Installation has failed", "Installation Failed",
                MB_OK | MB_ICONINFORMATION);
}

void openWelcomePage()
{
    CRegistryKey key(HKEY_LOCAL_MACHINE);
    if (key.open("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE", false,
                 KEY_ALL_ACCESS)) {
        char browser[1024] = "";
        key.readString(nullptr, browser, sizeof browser);
        char command[1024];
        copyText(command, quotedProgram(browser).c_str(), sizeof command);
        appendText(command, " ", sizeof command);
        appendText(command, TAVRIN_WELCOME_URL, sizeof command);
        WinExec(command, SW_SHOW);
    } else {
        ShellExecuteA(GetActiveWindow(), "open", TAVRIN_WELCOME_URL, nullptr, nullptr, SW_SHOW);
    }
}

// The whole file as text, or false if it cannot be opened. A NUL byte in the
// file ends the text there, as it ends any text of the program.
bool readScript(const char* path, std::string& text)
{
    HANDLE file = CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                              nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD size = GetFileSize(file, nullptr);
    if (size == INVALID_FILE_SIZE) size = 0;
    std::string data(size, '\0');
    DWORD total = 0;
    while (total < size) {
        DWORD got = 0;
        if (!ReadFile(file, &data[total], size - total, &got, nullptr) || got == 0) break;
        total += got;
    }
    CloseHandle(file);
    data.resize(total);
    text.assign(data.c_str());
    return true;
}
}  // namespace

void startRestartScript(std::string& restartScript, const CInstallWizard& wizard)
{
    restartScript = "## TavRin Installation Reboot Script ##\r\n";
    restartScript += "Destination=" + wizard.settings.destination + "\r\n";
    restartScript += std::string("Source=") + wizard.sourceFolder + "\r\n";
}

void appendRestartEntry(const CInstallFile& file, std::string& restartScript)
{
    char source[MAX_PATH], target[MAX_PATH];
    joinPath(file.sourceFolder.c_str(), file.fileName.c_str(), source, sizeof source);
    joinPath(file.destFolder.c_str(), file.fileName.c_str(), target, sizeof target);
    // The reader ends a copy's source at its first blank, and the extraction
    // folder lies in the user's temp folder, whose long form holds one when the
    // user name does. The short form has none.
    std::string shortSource = shortPathOf(source);
    if (shortSource.empty()) shortSource = source;
    restartScript += "copy " + shortSource + " " + target + "\r\n";
    restartScript += std::string("regsvr32 ") + target + "\r\n";
}

void writeRestartScript(CInstallWizard* wizard, const std::string& restartScript)
{
    char scriptPath[MAX_PATH];
    joinPath(wizard->sourceFolder, "tavrin.rss", scriptPath, sizeof scriptPath);
    HANDLE file = CreateFileA(scriptPath, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        WriteFile(file, restartScript.data(), static_cast<DWORD>(restartScript.size()), &written, nullptr);
        CloseHandle(file);
    }

    CRegistryKey key(HKEY_CURRENT_USER);
    if (!key.open("Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", false, KEY_ALL_ACCESS)) return;
    char program[MAX_PATH];
    DWORD length = GetModuleFileNameA(nullptr, program, sizeof program);
    program[length < sizeof program ? length : sizeof program - 1] = 0;  // XP leaves a cut name open
    // Started from "C:\Documents and Settings\...", the value as it stands
    // would start no program, or one that takes "and" for its switch and runs
    // a new install. The program's short form holds no blank; the script's
    // short form keeps the value in its format (the script path is the rest of
    // the line, blanks and all, where the volume keeps no short names).
    // A volume without short names keeps the program's path in quotes.
    std::string shortProgram = shortPathOf(program), shortScript = shortPathOf(scriptPath);
    char command[1024];
    copyText(command, quotedProgram(shortProgram.empty() ? program : shortProgram.c_str()).c_str(),
             sizeof command);
    appendText(command, " -restart ", sizeof command);
    appendText(command, shortScript.empty() ? scriptPath : shortScript.c_str(), sizeof command);
    key.writeString("TavRin", command);
}

namespace {
// The full path without a trailing backslash (a root keeps its own), in its
// short form where it exists, or empty.
std::string fullFolderPath(const char* path, bool parentOfFile)
{
    char full[MAX_PATH];
    char* name = nullptr;
    DWORD length = GetFullPathNameA(path, sizeof full, full, &name);
    if (length == 0 || length >= sizeof full) return "";
    if (parentOfFile) {
        if (!name || name == full) return "";
        *name = 0;
        length = static_cast<DWORD>(name - full);
    }
    if (length > 3 && full[length - 1] == '\\') full[length - 1] = 0;
    // The RunOnce value names the script by its short form, the Source= line
    // the folder by its long one: both are compared in their short forms.
    std::string shortForm = shortPathOf(full);
    return shortForm.empty() ? full : shortForm;
}
}  // namespace

bool isScriptFolder(const char* folder, const char* scriptPath)
{
    if (!folder || !folder[0] || !scriptPath) return false;
    std::string own = fullFolderPath(folder, false);
    return own.size() > 3 && equalsNoCase(own.c_str(), fullFolderPath(scriptPath, true).c_str());
}

std::vector<CRestartCommand> readRestartCommands(const char* text)
{
    std::vector<CRestartCommand> commands;
    const char* p = text;
    while (*p) {
        while (*p == '\r' || *p == '\n') ++p;
        const char* end = p;
        while (*end && *end != '\r' && *end != '\n') ++end;
        CRestartCommand command;
        if (end > p && readCommand(p, end - p, command)) commands.push_back(command);
        p = end;
    }
    return commands;
}

bool runRestartScript(const char* scriptPath)
{
    std::string text;
    if (!readScript(scriptPath, text)) return true;
    std::string sourceFolder;
    for (const CRestartCommand& command : readRestartCommands(text.c_str())) {
        switch (command.kind) {
        case CRestartCommand::destination: break;
        case CRestartCommand::source: sourceFolder = command.first; break;
        case CRestartCommand::copy:
            if (!CopyFileA(command.first.c_str(), command.second.c_str(), FALSE)) {
                showLastSystemError(GetActiveWindow());
                showFailure();
                return false;
            }
            break;
        case CRestartCommand::regsvr32:
            if (!registerComponent(GetActiveWindow(), command.first.c_str())) {
                showFailure();
                return false;
            }
            break;
        }
    }
    openWelcomePage();
    text.clear();
    if (isScriptFolder(sourceFolder.c_str(), scriptPath))
        removeTree(sourceFolder.c_str());
    else if (!sourceFolder.empty())
        installLog.writef("Source folder %s does not hold the script; left in place", sourceFolder.c_str());
    return true;
}
