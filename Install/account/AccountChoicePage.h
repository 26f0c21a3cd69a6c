#pragma once
#include "wizard/InstallPage.h"

// Page 117: a new account or the one the cookie store tells of, and the
// Favorites import. Its answer lies in the settings' createAccount and
// importRequested, which only this page sets and only page 116 clears, and in
// the page it names as the next one.
class CInstallAccountChoicePage : public CInstallPage {
public:
    CInstallAccountChoicePage();
    // Never passes the page over: looks for a passport cookie and picks the
    // page's dialog by it, which counts only until the window is made.
    int skipCheck(CInstallWizard* wizard) override;
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    INT_PTR onCtlColorStatic(HDC deviceContext, HWND control) override;
    INT_PTR onCommand(int id, int notifyCode) override;
    // Lets the page go; with an account known, a new one is asked about first.
    int onNext(CInstallWizard* wizard) override;
    int nextPageId(CInstallWizard* wizard) override;

    int hasAccount = 0;
};
