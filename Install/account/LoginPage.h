#pragma once
#include <memory>
#include <vector>

#include "account/InputFilter.h"
#include "wizard/InstallPage.h"

// Page 114: the login of a new account (user name, password twice, hint,
// e-mail), stored in the account record and checked on Next.
class CInstallLoginPage : public CInstallFormPage {
public:
    CInstallLoginPage();
    void onDlgReady() override;
    int skipCheck(CInstallWizard* wizard) override;
    int onNext(CInstallWizard* wizard) override;
    int isFieldValid(int controlId) override;

private:
    std::vector<std::unique_ptr<CInputFilter>> filters;
};

// The characters a user name may be typed with; backspace keeps working.
extern const char userNameCharacters[];
