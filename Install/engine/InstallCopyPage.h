#pragma once
#include <string>

#include "wizard/InstallPage.h"

struct CInstallFile;

// Page 106: the file pass, the one step of a run that changes the machine.
// In a quiet run the wizard calls runFilePass on this page, which then has no window.
class CInstallCopyPage : public CInstallPage {
public:
    CInstallCopyPage() : CInstallPage(117) {}
    INT_PTR onInitDialog() override;
    void onDlgReady() override;
    int canGoBack(CInstallWizard*) override { return 0; }
    int nextPageId(CInstallWizard*) override { return failed ? 112 : -1; }

    // True when the pass ran to its end; a failure has been shown when false.
    bool runFilePass(bool quiet, CInstallWizard* wizard);

    int totalBytes = 0;
    int copiedBytes = 0;
    int registerAllowance = 0;
    int failed = 0;

private:
    enum FileOutcome { fileDone, fileLeft, fileFailed, passCancelled };
    FileOutcome processFile(CInstallWizard* wizard, CInstallFile& file, std::string& restartScript);
    bool registerFiles(CInstallWizard* wizard);
    void stopOnFailure(CInstallWizard* wizard);
    void setStatus(const char* text);
    void setupProgress(CInstallWizard* wizard);
    void moveBar(unsigned bytes);
    static void onCopyProgress(const char* path, DWORD totalBytes, DWORD doneBytes, int kind, void* context);
    void writeUninstallEntry(CInstallWizard* wizard);

    bool quietRun = false;
    unsigned scale = 100;
    int registeredCount = 0;
    int registerCount = 0;
};
