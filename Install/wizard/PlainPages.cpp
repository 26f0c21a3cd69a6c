#include "wizard/PlainPages.h"

#include <shlobj.h>

#include <cstdio>
#include <string>

#include "BoundedText.h"
#include "Program.h"
#include "account/AccountChoicePage.h"
#include "account/AccountPage.h"
#include "account/ConfirmPage.h"
#include "account/DetailsPage.h"
#include "account/LoginPage.h"
#include "analysis/CloseWindowsPage.h"
#include "analysis/ComponentSearch.h"
#include "description/PathHelpers.h"
#include "engine/FinishPages.h"
#include "engine/InstallCopyPage.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

INT_PTR CInstallAgreementPage::onInitDialog()
{
    char path[MAX_PATH];
    joinPath(wizard->sourceFolder, wizard->settings.agreement.c_str(), path, sizeof path);
    HANDLE file = CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        DWORD size = GetFileSize(file, nullptr);
        if (size != INVALID_FILE_SIZE) {
            std::string text(size, '\0');
            DWORD total = 0, got = 0;
            while (total < size && ReadFile(file, &text[total], size - total, &got, nullptr) && got)
                total += got;
            text.resize(total);
            SetWindowTextA(GetDlgItem(hwnd, IDC_AGREEMENT_TEXT), text.c_str());
        }
        CloseHandle(file);
    }
    startReadyTimer();
    return 1;
}

void CInstallAgreementPage::onDlgReady() { SetFocus(GetDlgItem(hwnd, IDC_AGREEMENT_TEXT)); }

INT_PTR CInstallAgreementPage::onCommand(int id, int)
{
    if (id == IDC_AGREEMENT_ACCEPT || id == IDC_AGREEMENT_REFUSE) wizard->refreshButtons();
    return 0;
}

int CInstallAgreementPage::canGoNext(CInstallWizard*)
{
    return hwnd && IsDlgButtonChecked(hwnd, IDC_AGREEMENT_ACCEPT) == BST_CHECKED;
}

int CInstallAgreementPage::skipCheck(CInstallWizard* owner)
{
    return owner->settings.createAccount == 0 ? 1 : 0;
}

INT_PTR CInstallDestinationPage::onInitDialog()
{
    char folder[MAX_PATH];
    wizard->expandCopy(wizard->settings.destination.c_str(), folder, sizeof folder);
    SetDlgItemTextA(hwnd, IDC_DESTINATION_FOLDER, folder);
    return 1;
}

INT_PTR CInstallDestinationPage::onCommand(int id, int)
{
    if (id != IDC_DESTINATION_BROWSE) return 0;
    BROWSEINFOA browse = {};
    browse.hwndOwner = hwnd;
    browse.lpszTitle = "Select Destination Folder";
    browse.ulFlags = BIF_DONTGOBELOWDOMAIN;
    LPITEMIDLIST chosen = SHBrowseForFolderA(&browse);
    if (!chosen) return 0;
    char path[MAX_PATH];
    if (SHGetPathFromIDListA(chosen, path)) SetDlgItemTextA(hwnd, IDC_DESTINATION_FOLDER, path);
    CoTaskMemFree(chosen);
    return 0;
}

int CInstallDestinationPage::skipCheck(CInstallWizard* owner) { return owner->askDestination ? 0 : 1; }

bool isFullDrivePath(const char* path) { return path[0] && path[1] == ':' && path[2] == '\\'; }

int CInstallDestinationPage::onNext(CInstallWizard* owner)
{
    char path[MAX_PATH] = "";
    GetDlgItemTextA(hwnd, IDC_DESTINATION_FOLDER, path, sizeof path);
    char text[1024];
    if (!isFullDrivePath(path)) {
        formatText(text, sizeof text, "The directory '%s' is invalid", path);
        MessageBoxA(hwnd, text, "Error", MB_ICONINFORMATION);
        return 0;
    }
    if (!folderExists(path)) {
        char format[256];
        loadString(IDS_CREATE_FOLDER, format, sizeof format);
        formatText(text, sizeof text, format, path);
        if (MessageBoxA(hwnd, text, "Create Folder", MB_YESNO | MB_ICONINFORMATION) == IDNO) return 0;
        if (!createFolderPath(path)) {
            ERRORMSG("TavRin Installation was unable to create the folder. Please ensure you have "
                     "sufficient permissions",
                     false);
            return 0;
        }
    }
    owner->setDestination(path);
    return 1;
}

void registerPages(CInstallWizard& wizard, bool troubleshooting)
{
    // The page order is the road of the wizard: Next goes to the following page
    // that does not pass itself over, Back to the one before.
    wizard.addPage(100, new CInstallWelcomePage);
    wizard.addPage(108, new CInstallUpdatePage);
    wizard.addPage(117, new CInstallAccountChoicePage);
    wizard.addPage(110, new CInstallAgreementPage);
    wizard.addPage(115, new CInstallDetailsPage);
    wizard.addPage(114, new CInstallLoginPage);
    wizard.addPage(116, new CInstallAccountPage);
    wizard.addPage(118, new CInstallConfirmPage);
    wizard.addPage(101, new CCloseWindowsPage);
    // The analysis of the computer exists in troubleshooting mode only.
    if (troubleshooting) {
        wizard.addPage(102, new CSearchIntroPage);
        wizard.addPage(103, new CSearchPage);
    }
    wizard.addPage(104, new CInstallDestinationPage);
    wizard.addPage(105, new CInstallPage(IDD_PAGE_READY));
    wizard.addPage(106, new CInstallCopyPage);
    wizard.addPage(107, new CInstallFinishPage(IDD_PAGE_FINISHED));
    wizard.addPage(111, new CInstallFinishPage(IDD_PAGE_UNINSTALLED));
    wizard.addPage(112, new CInstallFinishPage(IDD_PAGE_INSTALL_FAILED));
    wizard.addPage(113, new CInstallFinishPage(IDD_PAGE_UNINSTALL_FAILED));
}
