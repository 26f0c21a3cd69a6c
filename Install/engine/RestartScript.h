#pragma once
#include <windows.h>

#include <string>
#include <vector>

#include "description/InstallSettings.h"

class CInstallWizard;

// tavrin.rss: what the file pass could not finish because a file was in use,
// carried out by "SETUP.EXE -restart <script>" at the next logon.
struct CRestartCommand {
    enum Kind { destination, source, copy, regsvr32 } kind;
    std::string first;   // the folder, the copy's source, or the path to register
    std::string second;  // the copy's target
};

// The writer, used by the file pass. The header: the title line, then the
// destination and the extraction folder. Replaces what `restartScript` held.
void startRestartScript(std::string& restartScript, const CInstallWizard& wizard);
// The copy line and the regsvr32 line for a file that was in use.
void appendRestartEntry(const CInstallFile& file, std::string& restartScript);
// tavrin.rss in the extraction folder, and the RunOnce value of the current user
// that starts this program on it at the next logon. Failures pass unreported.
void writeRestartScript(CInstallWizard* wizard, const std::string& restartScript);

// The commands of a script text in order. Lines are cut at every CR and LF;
// lines that are none of the four commands, and copy lines without a blank
// behind their source, are passed over. Every path is cut to 259 characters.
std::vector<CRestartCommand> readRestartCommands(const char* text);

// True when `folder` is the folder that holds `scriptPath`, both taken as full
// paths, and no drive's root. Only then does the restart run remove the
// Source= folder: a damaged line must not take another folder along.
bool isScriptFolder(const char* folder, const char* scriptPath);

// The restart run. False when a line failed: the failure box has been shown and
// the caller must stop at once, leaving the script and its folder in place.
// True otherwise, also when the script does not open (then nothing is done).
bool runRestartScript(const char* scriptPath);
