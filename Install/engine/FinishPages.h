#pragma once
#include "wizard/InstallPage.h"

// Page 108: shown when the product's component is registered from a folder
// that still stands; Update installs over it, Uninstall hands over to the
// uninstall script and ends the wizard.
class CInstallUpdatePage : public CInstallPage {
public:
    CInstallUpdatePage() : CInstallPage(126) {}
    INT_PTR onInitDialog() override;
    int skipCheck(CInstallWizard* wizard) override;
    int nextPageId(CInstallWizard* wizard) override;
};

// Pages 107, 111, 112 and 113: the end of every road. They ask for the restart
// the file pass found necessary, and Finish copies the readme and opens what
// the user ticked.
class CInstallFinishPage : public CInstallPage {
public:
    explicit CInstallFinishPage(int dialogId) : CInstallPage(dialogId) {}
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int canGoNext(CInstallWizard*) override { return 0; }
    int canGoBack(CInstallWizard*) override { return 0; }
    int closeKind() override { return 1; }
    int previousPageId(CInstallWizard*) override { return 117; }
    int onNext(CInstallWizard* wizard) override;
};

// The class id whose registration marks an existing installation.
extern const char* const installedClassKey;
