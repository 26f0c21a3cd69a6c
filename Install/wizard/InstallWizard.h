#pragma once
#include <windows.h>

#include "description/InstallSettings.h"

// The run and its frame window in one object. It owns the settings of the
// setup description for the whole run.
class CInstallWizard {
public:
    explicit CInstallWizard(bool quiet);
    virtual ~CInstallWizard();
    CInstallWizard(const CInstallWizard&) = delete;
    CInstallWizard& operator=(const CInstallWizard&) = delete;

    // Text macros (%TITLE%, %PROGRAMFILES%, %WINSYSDIR%), expanded in place.
    char* expandMacros(char* text, size_t size);
    int lookupMacro(const char* name, char* value, size_t capacity);
    void expandControlText(HWND control);
    // Copies `source` into `buffer` (at most `size` bytes), then expands it.
    char* expandCopy(const char* source, char* buffer, size_t size);

    CInstallSettings settings;
    HWND hwnd = nullptr;
    bool quiet;
};
