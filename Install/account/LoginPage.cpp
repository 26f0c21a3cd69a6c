#include "account/LoginPage.h"

#include "resources/resource.h"
#include "wizard/InstallWizard.h"

const char userNameCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ1234567890_-\b";

CInstallLoginPage::CInstallLoginPage() : CInstallFormPage(IDD_PAGE_LOGIN) {}

void CInstallLoginPage::onDlgReady()
{
    HWND userName = GetDlgItem(hwnd, IDC_LOGIN_USER);
    filters.push_back(std::make_unique<CInputFilter>(userName, userNameCharacters));
    SetFocus(userName);
}

int CInstallLoginPage::skipCheck(CInstallWizard* owner) { return owner->settings.createAccount == 0 ? 1 : 0; }

namespace {
std::string fieldText(HWND page, int id)
{
    char text[255] = "";
    GetDlgItemTextA(page, id, text, sizeof text);
    return text;
}
}  // namespace

int CInstallLoginPage::onNext(CInstallWizard* owner)
{
    validated = 1;
    AccountDetails& details = owner->settings.AccountDetails;
    // Stored whether or not they pass: the progress page sends what stands here.
    details.UserCode = fieldText(hwnd, IDC_LOGIN_USER);
    details.Password = fieldText(hwnd, IDC_LOGIN_PASSWORD);
    details.RepeatPassword = fieldText(hwnd, IDC_LOGIN_REPEAT);
    details.PasswordHint = fieldText(hwnd, IDC_LOGIN_HINT);
    details.Email = fieldText(hwnd, IDC_LOGIN_EMAIL);
    bool valid = details.checkLoginFields();
    if (!valid) MessageBoxA(hwnd, details.errorText.c_str(), "Validation Errors", MB_OK | MB_ICONINFORMATION);
    repaint();
    return valid ? 1 : 0;
}

int CInstallLoginPage::isFieldValid(int controlId)
{
    if (!wizard) return 1;
    const AccountDetails& details = wizard->settings.AccountDetails;
    switch (controlId) {
    case IDC_LOGIN_USER_LABEL: return !details.UserCode.empty();
    case IDC_LOGIN_PASSWORD_LABEL:
    case IDC_LOGIN_REPEAT_LABEL: return details.isPasswordValid();
    case IDC_LOGIN_HINT_LABEL: return !details.PasswordHint.empty();
    case IDC_LOGIN_EMAIL_LABEL: return details.isEmailValid();
    default: return 1;
    }
}
