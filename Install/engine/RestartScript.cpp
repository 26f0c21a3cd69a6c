#include "engine/RestartScript.h"

#include <cstring>

#include "BoundedText.h"
#include "DeploymentConfig.h"
#include "RegistryKey.h"
#include "description/PathHelpers.h"
#include "engine/ComponentRegistration.h"

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
        if (length <= 9) return false;
        command = {CRestartCommand::regsvr32, cutPath(line + 9, length - 9), ""};
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
        char command[1024] = "";
        key.readString(nullptr, command, sizeof command);
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
    if (!sourceFolder.empty()) removeTree(sourceFolder.c_str());
    return true;
}
