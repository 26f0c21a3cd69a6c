#pragma once
#include "description/InstallSettings.h"
#include "wizard/InstallPage.h"

// Page 101: the running windows of the classes named in [DetectKill], asked to
// close on Next. The page passes itself over when none is open, and scans
// afresh each time the wizard walks past it, in either direction.
class CCloseWindowsPage : public CInstallPage {
public:
    CCloseWindowsPage();
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int skipCheck(CInstallWizard* wizard) override;
    int onNext(CInstallWizard* wizard) override;

    // Empties every entry's window list, then files each top-level window,
    // hidden ones too, under the first entry of its class.
    void refreshWindowList(CInstallWizard* wizard);
    // The present titles of the windows found, into list box 1014.
    void fillWindowList();
    // Brings each window of the entry to the top and posts it SC_CLOSE; nobody
    // waits to see whether it goes.
    static void closeWindows(CDetectKill& entry);

    int skipped = 0;
};
