#pragma once
#include "description/InstallSettings.h"
#include "wizard/InstallPage.h"

// Troubleshooting mode (/T) only: the analysis of the computer. Page 102 asks
// whether to run it; page 103 repeats the requirement checks and walks every
// fixed drive for copies of the product's files, which the file pass then
// consults for targets in use (foundFiles).

// Page 102: the question. Next runs the analysis, Skip passes it over; coming
// back to the page takes an earlier Skip back.
class CSearchIntroPage : public CInstallPage {
public:
    CSearchIntroPage();
    INT_PTR onCommand(int id, int notifyCode) override;
    int skipCheck(CInstallWizard* wizard) override;

    int analysisChosen = 0;
    int skipChosen = 0;
};

// Page 103: the analysis itself, run once, after which it moves the wizard on.
class CSearchPage : public CInstallPage {
public:
    CSearchPage();
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int skipCheck(CInstallWizard* wizard) override;

    // Drives C to Z, the fixed ones only.
    void searchDrives();
    // The folder and everything below it, except names that begin with a point.
    void searchFolder(const char* folder);
    // One copy of `file` seen in `folder`: kept in foundFiles if its maker is ours.
    void recordFoundFile(const CInstallFile& file, const char* folder);

    int searched = 0;
    int skipRequested = 0;

private:
    void showText(int controlId, const char* text);
};
