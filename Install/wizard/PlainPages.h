#pragma once
#include "wizard/InstallPage.h"

// Page 100: the welcome. It opens the wizard, so there is no Back.
class CInstallWelcomePage : public CInstallPage {
public:
    CInstallWelcomePage() : CInstallPage(103) {}
    int canGoBack(CInstallWizard*) override { return 0; }
};

// Page 110: the licence agreement, shown to those who make a new account.
class CInstallAgreementPage : public CInstallPage {
public:
    CInstallAgreementPage() : CInstallPage(131) {}
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int canGoNext(CInstallWizard* wizard) override;
    int skipCheck(CInstallWizard* wizard) override;
};

// Page 104: the destination folder, checked and made on Next.
class CInstallDestinationPage : public CInstallPage {
public:
    CInstallDestinationPage() : CInstallPage(105) {}
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;
    int skipCheck(CInstallWizard* wizard) override;
    int onNext(CInstallWizard* wizard) override;
};

// The checks of a folder typed on page 104: a full path with a drive letter.
bool isFullDrivePath(const char* path);

void registerPages(CInstallWizard& wizard, bool troubleshooting);
