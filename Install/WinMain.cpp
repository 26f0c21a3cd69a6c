// SETUP.EXE: the entry point and its three run modes (help box, restart run,
// normal run), and the InstallInProcess flag by which a run learns that an
// earlier one died half way.
#include <windows.h>

#include <cstdlib>

#include <exception>

#include "AdministratorCheck.h"
#include "CommandLine.h"
#include "DeploymentConfig.h"
#include "InstallLog.h"
#include "Program.h"
#include "RegistryKey.h"
#include "engine/RestartScript.h"
#include "wizard/InstallDialog.h"
#include "wizard/InstallWizard.h"
#include "wizard/PlainPages.h"

namespace {
const char* const flagKey = "SOFTWARE\\Tavrin";
const char* const flagName = "InstallInProcess";

void showHelp()
{
    char text[1024] = "";
    lstrcatA(text, "TavRin Installation\n\n");
    lstrcatA(text, "Command Options: \n");
    lstrcatA(text, "  /Q\t: Quite Mode\n");
    lstrcatA(text, "  /T\t: Troubleshooting Mode\n");
    lstrcatA(text, "  /?\t: Help (this screen)\n");
    MessageBoxA(GetActiveWindow(), text, "TavRin Installation", MB_ICONINFORMATION);
}

void closingStep(CRegistryKey& key)
{
    installLog.write("Installation Complete", true);
    if (key.open(flagKey, true, KEY_ALL_ACCESS)) {
        key.writeBool(flagName, false);
        key.close();
    }
}

void normalMode(CRegistryKey& key, const CCommandLine& command)
{
    if (key.open(flagKey, true, KEY_ALL_ACCESS)) {
        bool running = false;
        if (key.readBool(flagName, running) && running)
            ERRORMSG("TavRin Installation has detected that a previous instance of the installation "
                     "failed to complete.  Please review the TavRinInstall.log in your windows "
                     "directory or for more assistance send this file to our support department "
                     "at " TAVRIN_SUPPORT_EMAIL,
                     false);
        key.writeBool(flagName, true);
        key.close();
    }
    if (!isUserAdministrator()) {
        MessageBoxA(nullptr,
                    "TavRin has detected that your Windows account does not allow you to install "
                    "software.\nPlease contact your network administrator for access and then "
                    "re-run the TavRin Installation.",
                    "Insufficient Windows Privileges", MB_ICONWARNING);
        return;
    }
    CInstallWizard wizard(command.quiet);
    registerPages(wizard, command.troubleshooting);
    wizard.run();
}
}  // namespace

// An exception that escapes the guard of WinMain (on a thread of its own, say)
// ends the program here, with a line in the log. Standing in for the runtime's
// own handler also keeps its symbol demangler, some 45 KB, out of the program.
namespace __gnu_cxx {
void __verbose_terminate_handler()
{
    installLog.write("The installation stopped on an unexpected error", true);
    std::abort();
}
}  // namespace __gnu_cxx

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR commandLine, int)
{
    moduleInstance = instance;
    CRegistryKey key(HKEY_CURRENT_USER);
    try {
        char windowsDirectory[MAX_PATH] = "";
        GetWindowsDirectoryA(windowsDirectory, sizeof windowsDirectory);
        installLog.open(windowsDirectory);
        installLog.writeSystemReport();
        installLog.write("Begin Installation", true);

        CCommandLine command = parseCommandLine(commandLine);
        if (command.help) {
            showHelp();
            return 0;
        }
        if (command.restart) {
            if (!runRestartScript(command.scriptPath)) return 0;
        } else {
            normalMode(key, command);
        }
        closingStep(key);
    } catch (const std::exception& error) {
        installLog.write(error.what(), true);
        ERRORMSG(error.what(), false);
    } catch (...) {
        ERRORMSG("TavRin Installation has caught an exception.  For more information see the "
                 "TavRinInstall.log in your windows directory",
                 false);
    }
    return 0;
}
