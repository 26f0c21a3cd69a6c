#include "engine/UninstallScript.h"

#include <cstdio>

#include "BoundedText.h"
#include "description/PathHelpers.h"
#include "wizard/InstallWizard.h"

namespace {
void addLine(std::string& script, const std::string& line)
{
    script += line;
    script += "\r\n";
}

// The title is the one macro of the script; the other percent words are
// advpack.dll's own and must reach the file untouched.
void addTitleLine(CInstallWizard* wizard, std::string& script, const char* line)
{
    char expanded[4096];
    addLine(script, wizard->expandCopy(line, expanded, sizeof expanded));
}
}  // namespace

void buildUninstallScript(CInstallWizard* wizard, std::string& uninstallScript, const char* infPath)
{
    const CInstallSettings& settings = wizard->settings;
    std::string& s = uninstallScript;
    s.clear();

    addLine(s, "[version]");
    addLine(s, "signature = \"$CHICAGO$\"");
    addLine(s, "AdvancedINF = 2.5, \"%ERROR_WRONG_ADVPACK_VERSION%\"");
    addLine(s, "");
    addLine(s, "[CustTavRinDirs]");
    addLine(s, "49000,49001,49002,49003 = ProgFilesDir,5");
    addLine(s, "49100,49101,49102,49103 = TavRinFilesDir,5");
    addLine(s, "");
    addLine(s, "[ProgFilesDir]");
    addLine(s, "HKLM,'Software\\Microsoft\\Windows\\CurrentVersion','ProgramFilesDir',,\"%24%\"");
    addLine(s, "");
    addLine(s, "[TavRinFilesDir]");
    addLine(s, ",,,,\"" + shortPathOf(settings.destination.c_str()) + "\"");
    addLine(s, "");

    addLine(s, "[TavRinUninstall]");
    addLine(s, "BeginPrompt        = UninstallPrompt");
    addLine(s, "CustomDestination  = CustTavRinDirs");
    addLine(s, "DelReg             = uninstall.reg");
    addLine(s, "AddReg             = uninstall2.reg");
    addLine(s, "UnRegisterOCXs     = self.registering.dlls");
    addLine(s, "Reboot             = 1");
    addLine(s, "[TavRinUninstall2]");
    addLine(s, "CustomDestination  = CustTavRinDirs");
    addLine(s, "EndPrompt          = UninstallComplete");
    std::string delFiles = "DelFiles           = README.TXT";
    for (const CInstallFile& file : settings.files) delFiles += "," + file.fileName;
    addLine(s, delFiles);
    addLine(s, "DelDirs            = DelTavRinDir");
    addLine(s, "Cleanup            = 1");
    addLine(s, "");

    addLine(s, "[UninstallPrompt]");
    addLine(s, "Prompt             = \"%UNINSTALL_PROMPT%\"");
    addLine(s, "ButtonType         = YESNO");
    addLine(s, "Title              = \"%PRODUCT_TITLE%\"");
    addLine(s, "");
    addLine(s, "[UninstallComplete]");
    addLine(s, "Prompt             = \"%PRODUCT_TITLE% been uninstalled");
    addLine(s, "Title              = \"%PRODUCT_TITLE%\"");
    addLine(s, "");

    // Every file is deleted from the destination folder, also one that was
    // installed elsewhere: the script knows one folder only.
    addLine(s, "[DestinationDirs]");
    addLine(s, "README.TXT = 49100");
    for (const CInstallFile& file : settings.files) addLine(s, file.fileName + " = 49100");
    addLine(s, "");
    addLine(s, "[README.TXT]");
    addLine(s, settings.readme + ",,,32");
    for (const CInstallFile& file : settings.files) {
        addLine(s, "[" + file.fileName + "]");
        addLine(s, fileNameOf(file.shortPath) + ",,,32");
    }
    addLine(s, "");
    addLine(s, "[self.registering.dlls]");
    for (const CInstallFile& file : settings.files)
        if (file.autoReg) addLine(s, "%49100%\\" + fileNameOf(file.shortPath));
    addLine(s, "");
    addLine(s, "[DelTavRinDir]");
    addLine(s, "%49101%");
    addLine(s, "");

    addLine(s, "[uninstall.reg]");
    addLine(s, "HKLM,\"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin\"");
    addLine(s, "");
    addLine(s, "[uninstall2.reg]");
    addLine(s, std::string("HKLM,\"Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce\",\"TavRinUninstall\",,"
                           "\"RunDll32 %11%\\Advpack.dll,LaunchINFSection ") +
                   infPath + ",TavRinUninstall2");
    addLine(s, "");

    addLine(s, "[strings]");
    addTitleLine(wizard, s, "PRODUCT_TITLE      = \"%TITLE%\"");
    addTitleLine(wizard, s,
                 "UNINSTALL_PROMPT   = \"This will remove %TITLE% from your computer.  Do you wish to proceed?\"");
    addLine(s, "TAVRIN_DIR         = \"TavRin\"");
}

std::string uninstallCommandLine(const char* infPath)
{
    char command[4096];
    formatText(command, sizeof command, "rundll32 advpack.dll,LaunchINFSection %s,TavRinUninstall", infPath);
    return command;
}
