#pragma once
#include "account/ConnectionState.h"
#include "wizard/InstallPage.h"

// Page 116: where the account is made and the Favorites go to the service. It
// has no button of its own to press: the work starts once the page stands on
// the screen, a bar runs meanwhile, and the page moves the wizard by the result.
class CInstallAccountPage : public CInstallPage {
public:
    CInstallAccountPage();
    ~CInstallAccountPage() override;
    INT_PTR onInitDialog() override;
    INT_PTR onPaint(HWND window) override;
    void onTimer(UINT_PTR timerId) override;
    void onShown(CInstallWizard* wizard) override;
    int canGoNext(CInstallWizard*) override { return 0; }
    int canGoBack(CInstallWizard*) override { return backTarget != 0; }
    int previousPageId(CInstallWizard*) override { return backTarget; }
    int skipCheck(CInstallWizard* wizard) override;
    // Back, live on a visit after a failure, waits for the end of the work.
    int onBack(CInstallWizard*) override { return !working; }
    // Puts `text` in the status line and lets it be painted before the next step.
    void setStatus(const char* text);

    int barOffset = 0;
    HBITMAP barBitmap = nullptr;
    // What Back leads to: 0 before any failure, else a page id, or -1 for the page before.
    int backTarget = 0;
    // How the page tests the connection; the system's unless a test hands in its own.
    const CConnectionCalls* connection = &systemConnectionCalls();

private:
    enum Outcome { done, noConnection, validationRefused, signUpRefused };
    Outcome runAccountWork(CInstallWizard* wizard);
    RECT barRect();

    int working = 0;
};

const UINT_PTR barTimerId = 2048;
