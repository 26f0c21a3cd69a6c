#include "wizard/InstallWizard.h"

#include <commctrl.h>

#include "BoundedText.h"
#include "Program.h"
#include "analysis/InstallExtract.h"
#include "analysis/RequirementChecks.h"
#include "description/PathHelpers.h"
#include "resources/resource.h"

CInstallWizard::CInstallWizard(bool quietRun) : quiet(quietRun) { InitCommonControls(); }

CInstallWizard::~CInstallWizard()
{
    if (removeSourceOnExit && sourceFolder[0]) removeTree(sourceFolder);
}

int CInstallWizard::run()
{
    if (!extractPayload()) return 0;
    if (!loadSettings()) return 0;
    // The quiet run installs at once, without pages and without the checks.
    if (quiet) return 1;
    if (!checkRequirements(this)) return 0;
    return 1;
}

int CInstallWizard::extractPayload()
{
    CInstallExtract extract(&cabinet);
    INT_PTR result = DialogBoxParamA(moduleInstance, MAKEINTRESOURCEA(IDD_EXTRACT), nullptr,
                                     installDialogProc,
                                     reinterpret_cast<LPARAM>(static_cast<CInstallDialog*>(&extract)));
    copyText(sourceFolder, extract.tempFolder.c_str(), sizeof sourceFolder);
    return result == 1;
}

void CInstallWizard::setDestination(const char* path)
{
    settings.destination = path;
    for (CInstallFile& file : settings.files)
        if (!file.fixedDestination) file.destFolder = path;
}
