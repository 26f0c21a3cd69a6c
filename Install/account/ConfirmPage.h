#pragma once
#include "wizard/InstallPage.h"

// Page 118: after a new account, what the user should remember, and the link
// to the service's page for changing it. The account exists by then, so there
// is no way back to page 116.
class CInstallConfirmPage : public CInstallFormPage {
public:
    CInstallConfirmPage();
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int canGoBack(CInstallWizard* wizard) override;
    int skipCheck(CInstallWizard* wizard) override;
};
