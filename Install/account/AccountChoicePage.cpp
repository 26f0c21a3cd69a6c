#include "account/AccountChoicePage.h"

#include "InstallLog.h"
#include "account/CookieStore.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

namespace {
// The store's cookie of that name under the service's root: only whether it
// is there counts, not its value.
bool cookieKnown(CInstallWizard* wizard, const char* name)
{
    DWORD size = 0;
    readCookie(wizard->settings.serverRoot.c_str(), name, nullptr, size);
    return size > 0;
}

bool checked(HWND page, int id) { return IsDlgButtonChecked(page, id) == BST_CHECKED; }

// Past the account pages: the close page, or in a wizard without one the page
// that follows the confirmation page.
int pageAfterAccount(CInstallWizard* wizard)
{
    if (wizard->findPage(101)) return 101;
    for (size_t i = 0; i + 1 < wizard->pages.size(); ++i)
        if (wizard->pages[i]->id == 118) return wizard->pages[i + 1]->id;
    return 101;
}
}  // namespace

CInstallAccountChoicePage::CInstallAccountChoicePage() : CInstallPage(IDD_PAGE_CHOICE_NEW) {}

int CInstallAccountChoicePage::skipCheck(CInstallWizard* owner)
{
    hasAccount = cookieKnown(owner, "passport") ? 1 : 0;
    dialogId = hasAccount ? IDD_PAGE_CHOICE_EXISTING : IDD_PAGE_CHOICE_NEW;
    return 0;
}

INT_PTR CInstallAccountChoicePage::onInitDialog()
{
    startReadyTimer();
    return 1;
}

void CInstallAccountChoicePage::onDlgReady()
{
    // A user quicker than the ready timer has chosen already: the choice stands.
    bool chosen = checked(hwnd, IDC_CHOICE_NEW) || checked(hwnd, IDC_CHOICE_EXISTING);
    if (!hasAccount) {
        // No choice yet: Next waits for one of the radios.
        if (!chosen) wizard->enableNext(false);
        return;
    }
    if (!chosen) {
        CheckDlgButton(hwnd, IDC_CHOICE_EXISTING, BST_CHECKED);
        if (!cookieKnown(wizard, "RegistrationInfo")) CheckDlgButton(hwnd, IDC_CHOICE_IMPORT, BST_UNCHECKED);
    }
    installLog.write("Account Already Exists", true);
    ShowWindow(GetDlgItem(hwnd, IDC_CHOICE_DETECTED), SW_SHOW);
}

INT_PTR CInstallAccountChoicePage::onCtlColorStatic(HDC deviceContext, HWND control)
{
    if (GetDlgCtrlID(control) != IDC_CHOICE_DETECTED) return 0;
    SetTextColor(deviceContext, RGB(255, 0, 0));
    SetBkMode(deviceContext, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

INT_PTR CInstallAccountChoicePage::onCommand(int id, int)
{
    if (id != IDC_CHOICE_NEW && id != IDC_CHOICE_EXISTING) return 0;
    bool existing = checked(hwnd, IDC_CHOICE_EXISTING), fresh = checked(hwnd, IDC_CHOICE_NEW);
    if (!existing && !fresh) return 0;
    wizard->enableNext(true);
    HWND importBox = GetDlgItem(hwnd, IDC_CHOICE_IMPORT);
    EnableWindow(importBox, TRUE);
    if (existing) {
        // Without a passport the service could not tell whose Favorites they are.
        EnableWindow(importBox, hasAccount);
        if (!hasAccount) CheckDlgButton(hwnd, IDC_CHOICE_IMPORT, BST_UNCHECKED);
    }
    if (fresh) CheckDlgButton(hwnd, IDC_CHOICE_IMPORT, BST_CHECKED);
    return 0;
}

int CInstallAccountChoicePage::onNext(CInstallWizard*)
{
    if (!hasAccount || !checked(hwnd, IDC_CHOICE_NEW)) return 1;
    if (MessageBoxA(hwnd,
                    "TavRin has detected that you already have an account.\nDo you wish to use the existing "
                    "account?",
                    "TavRin Account", MB_YESNO | MB_ICONINFORMATION) == IDYES) {
        CheckDlgButton(hwnd, IDC_CHOICE_EXISTING, BST_CHECKED);
        CheckDlgButton(hwnd, IDC_CHOICE_NEW, BST_UNCHECKED);
        SetFocus(GetDlgItem(hwnd, IDC_CHOICE_EXISTING));
    }
    return 1;
}

int CInstallAccountChoicePage::nextPageId(CInstallWizard* owner)
{
    // Set here, never cleared here: a choice once made stays made.
    if (checked(hwnd, IDC_CHOICE_IMPORT)) owner->settings.importRequested = 1;
    if (checked(hwnd, IDC_CHOICE_NEW)) {
        owner->settings.createAccount = 1;
        return -1;  // the agreement, and on through the forms
    }
    return owner->settings.importRequested ? 116 : pageAfterAccount(owner);
}
