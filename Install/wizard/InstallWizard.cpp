#include "wizard/InstallWizard.h"

CInstallWizard::CInstallWizard(bool quietRun) : quiet(quietRun) {}

CInstallWizard::~CInstallWizard() {}
