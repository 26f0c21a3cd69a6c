#pragma once
#include <windows.h>

#include "analysis/CabinetFile.h"
#include "description/InstallSettings.h"
#include "wizard/InstallDialog.h"

// The run and its frame window in one object. It owns everything of a run:
// the cabinet, the extraction folder and the settings of the setup description.
class CInstallWizard : public CInstallDialog {
public:
    explicit CInstallWizard(bool quiet);
    virtual ~CInstallWizard();
    CInstallWizard(const CInstallWizard&) = delete;
    CInstallWizard& operator=(const CInstallWizard&) = delete;

    // The whole run: extraction, setup description, then the quiet pass or the
    // requirement checks and the frame. 0 when a stage refused (it has said why).
    int run();
    // Dialog 106; `sourceFolder` holds the extraction folder afterwards.
    int extractPayload();
    // Reads setup.ini from the extraction folder and completes the file records.
    int loadSettings();
    void setDestination(const char* path);

    // Text macros (%TITLE%, %PROGRAMFILES%, %WINSYSDIR%), expanded in place.
    char* expandMacros(char* text, size_t size);
    int lookupMacro(const char* name, char* value, size_t capacity);
    void expandControlText(HWND control);
    // Copies `source` into `buffer` (at most `size` bytes), then expands it.
    char* expandCopy(const char* source, char* buffer, size_t size);

    CCabinetFile cabinet;
    char sourceFolder[MAX_PATH] = "";
    CInstallSettings settings;
    int cancelled = 0;
    int restartNeeded = 0;
    int finishing = 0;
    int removeSourceOnExit = 1;
    int quiet;
    int askDestination = 1;
    int copyReadmeOnFinish = 1;
};
