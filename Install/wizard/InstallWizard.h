#pragma once
#include <windows.h>

#include <vector>

#include "analysis/CabinetFile.h"
#include "description/Branding.h"
#include "description/InstallSettings.h"
#include "wizard/InstallDialog.h"

class CInstallPage;

// The run and its frame window (dialog 101) in one object. It owns everything
// of a run: the pages, the cabinet, the extraction folder and the settings.
// The frame decides nothing about the order of pages: it asks the page on show.
class CInstallWizard : public CInstallDialog {
public:
    explicit CInstallWizard(bool quiet);
    virtual ~CInstallWizard();
    CInstallWizard(const CInstallWizard&) = delete;
    CInstallWizard& operator=(const CInstallWizard&) = delete;

    INT_PTR dialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    INT_PTR onPaint(HWND window) override;
    INT_PTR onCommand(int id, int notifyCode) override;
    INT_PTR onInitDialog() override;
    INT_PTR onMouseMove(unsigned x, unsigned y) override;
    INT_PTR onLButtonDown(unsigned x, unsigned y, WPARAM keys) override;

    // The whole run: extraction, setup description, then the quiet pass or the
    // requirement checks and the frame. 0 when a stage refused (it has said why).
    int run();
    // Dialog 106; `sourceFolder` holds the extraction folder afterwards.
    int extractPayload();
    // Reads setup.ini from the extraction folder and completes the file records;
    // then sets the partner cookie.
    int loadSettings();
    // The partner's trailer behind the program file into `branding`, its logo
    // into the extraction folder. 1 when there is one.
    int readBranding();
    // Stores the partner numbers in the service's cookie; a plain copy stores
    // nothing. Always 1.
    int setPartnerCookie();
    // The modal frame, dialog 101, with the registered pages.
    int showFrame();
    // A trial of the business edition ("AddTrial") asks a company's details on
    // page 115 (dialog 153). Counts only before that page's window exists.
    void chooseDetailsForm();
    void setDestination(const char* path);

    bool addPage(int id, CInstallPage* page);
    CInstallPage* findPage(int id);
    void showPage(CInstallPage* page);
    void gotoPage(int index, bool forward);
    void nextPage();
    void previousPage();
    void refreshButtons();
    void enableNext(bool enabled);
    void enableBack(bool enabled);
    void lockNavigation(bool locked);

    // Text macros (%TITLE%, %PROGRAMFILES%, %WINSYSDIR%), expanded in place.
    char* expandMacros(char* text, size_t size);
    int lookupMacro(const char* name, char* value, size_t capacity);
    void expandControlText(HWND control);
    // Copies `source` into `buffer` (at most `size` bytes), then expands it.
    char* expandCopy(const char* source, char* buffer, size_t size);

    CBranding branding;
    std::vector<CInstallPage*> pages;
    int currentPage = 0;
    CCabinetFile cabinet;
    char sourceFolder[MAX_PATH] = "";
    CInstallSettings settings;
    int cancelled = 0;
    int restartNeeded = 0;
    int finishing = 0;
    int removeSourceOnExit = 1;
    int quiet;
    int askDestination = 1;
    int linkHover = 0;
    HBITMAP panelBitmap = nullptr;
    HBITMAP brandBitmap = nullptr;
    HPALETTE panelPalette = nullptr;
    HPALETTE brandPalette = nullptr;
    RECT linkRect = {0, 0, 0, 0};
    int copyReadmeOnFinish = 1;

private:
    bool hasLogo() const { return branding.present && branding.bitmapSize != 0; }
    bool overControl(int id, unsigned x, unsigned y);
};

// The "Corrupt Installation" box (string 3): the payload, or its way to the
// extraction folder, is broken. Always 0.
int corruptInstallation();
