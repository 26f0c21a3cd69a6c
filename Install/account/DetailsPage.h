#pragma once
#include "wizard/InstallPage.h"

// Page 115: the facts about the person (dialog 139) or, for a trial of the
// business edition, the company (dialog 153) behind a new account. One class
// serves both forms: it asks the dialog for each control whether it has it.
class CInstallDetailsPage : public CInstallFormPage {
public:
    CInstallDetailsPage();
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int skipCheck(CInstallWizard* wizard) override;
    int onNext(CInstallWizard* wizard) override;
    int isFieldValid(int controlId) override;

private:
    bool isBusinessForm() const;
    bool has(int controlId) const { return GetDlgItem(hwnd, controlId) != nullptr; }
    int selectedRow(int comboId) const;
};
