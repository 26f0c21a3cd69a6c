#include "account/ConfirmPage.h"

#include "resources/resource.h"
#include "wizard/InstallWizard.h"

CInstallConfirmPage::CInstallConfirmPage() : CInstallFormPage(IDD_PAGE_CONFIRM) {}

INT_PTR CInstallConfirmPage::onInitDialog()
{
    CInstallFormPage::onInitDialog();  // what the form pages share
    startReadyTimer();
    return 1;
}

void CInstallConfirmPage::onDlgReady()
{
    // The password is not shown.
    const AccountDetails& details = wizard->settings.AccountDetails;
    SetDlgItemTextA(hwnd, IDC_CONFIRM_USER, details.UserCode.c_str());
    SetDlgItemTextA(hwnd, IDC_CONFIRM_EMAIL, details.Email.c_str());
    SetDlgItemTextA(hwnd, IDC_CONFIRM_ZIP, details.Zip.c_str());
}

// createAccount is set whenever the page comes up; it is cleared just after.
int CInstallConfirmPage::canGoBack(CInstallWizard* owner) { return owner->settings.createAccount == 0; }

int CInstallConfirmPage::skipCheck(CInstallWizard* owner) { return owner->settings.createAccount == 0 ? 1 : 0; }
