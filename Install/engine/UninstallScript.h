#pragma once
#include <string>

class CInstallWizard;

// tvuninst.inf: an advanced INF script that advpack.dll carries out in two
// stages, unregistering and setting a RunOnce value first, then deleting the
// files and the folder after the restart. Built anew on every run.

// Replaces `uninstallScript` with the whole script text, CR LF line ends. Runs
// after the file loop: it names each file by the short path the loop left.
// `infPath` is where the script is written, as UninstallString names it.
void buildUninstallScript(CInstallWizard* wizard, std::string& uninstallScript, const char* infPath);

// The UninstallString value that starts the first stage of the script.
std::string uninstallCommandLine(const char* infPath);
