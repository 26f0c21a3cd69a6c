#pragma once
#include <windows.h>

#include "description/InstallSettings.h"

class CInstallWizard;

// 1 if the entry passes; 0 after its "Incorrect Version" box has been shown.
int checkRegistryEntry(HWND owner, CInstallWizard* wizard, const CRegistryCheck& check);
// Every check of the description in order, stopping at the first that fails.
int checkRequirements(CInstallWizard* wizard);
