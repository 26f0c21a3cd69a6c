#include "engine/FinishPages.h"

#include <shellapi.h>

#include <cstring>

#include "BoundedText.h"
#include "DeploymentConfig.h"
#include "Program.h"
#include "RegistryKey.h"
#include "description/PathHelpers.h"
#include "engine/ComponentRegistration.h"
#include "engine/FileCopy.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

const char* const installedClassKey = "CLSID\\{16C7C243-7FA0-11D3-A0E4-0A02B9000000}";

INT_PTR CInstallUpdatePage::onInitDialog()
{
    CheckDlgButton(hwnd, IDC_UPDATE_UPDATE, BST_CHECKED);
    return 1;
}

int CInstallUpdatePage::skipCheck(CInstallWizard* owner)
{
    CRegistryKey key(HKEY_CLASSES_ROOT);
    if (!key.open(installedClassKey, false, KEY_READ)) return 1;
    if (!key.open("InprocServer32", false, KEY_READ)) return 0;
    char folder[MAX_PATH] = "";
    key.readString(nullptr, folder, sizeof folder);
    if (char* slash = std::strrchr(folder, '\\')) *slash = 0;
    if (!folderExists(folder)) return 1;
    owner->setDestination(folder);
    return 0;
}

int CInstallUpdatePage::nextPageId(CInstallWizard* owner)
{
    if (IsDlgButtonChecked(hwnd, IDC_UPDATE_UNINSTALL) != BST_CHECKED) {
        owner->askDestination = 0;
        return -1;
    }
    int page = 113;
    CRegistryKey key(HKEY_LOCAL_MACHINE);
    char command[4096];
    if (key.open("Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin", false, KEY_READ) &&
        key.readString("UninstallString", command, sizeof command)) {
        WinExec(commandFromSystemFolder(command).c_str(), SW_SHOW);
        owner->copyReadmeOnFinish = 0;
        page = 111;
    }
    EndDialog(owner->hwnd, 0);
    return page;
}

INT_PTR CInstallFinishPage::onInitDialog()
{
    CheckDlgButton(hwnd, IDC_FINISH_README, BST_CHECKED);
    CheckDlgButton(hwnd, IDC_FINISH_BROWSER, BST_CHECKED);
    startReadyTimer();
    return 1;
}

void CInstallFinishPage::onDlgReady()
{
    if (!wizard->restartNeeded) return;
    char text[256];
    loadString(IDS_RESTART_QUESTION, text, sizeof text);
    wizard->expandMacros(text, sizeof text);
    if (MessageBoxA(hwnd, text, "Installation Complete", MB_YESNO | MB_ICONINFORMATION) != IDYES) return;
    CheckDlgButton(hwnd, IDC_FINISH_README, BST_UNCHECKED);
    CheckDlgButton(hwnd, IDC_FINISH_BROWSER, BST_UNCHECKED);
    if (!(GetVersion() & 0x80000000)) {
        HANDLE token = nullptr;
        if (OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) {
            TOKEN_PRIVILEGES privileges = {};
            privileges.PrivilegeCount = 1;
            LookupPrivilegeValueA(nullptr, "SeShutdownPrivilege", &privileges.Privileges[0].Luid);
            privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
            AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
            CloseHandle(token);
        }
    }
    PostMessageA(GetParent(hwnd), WM_CLOSE, 0, 0);
    EndDialog(hwnd, 0);
    if (!ExitWindowsEx(EWX_REBOOT, 0)) showLastSystemError(hwnd);
}

int CInstallFinishPage::onNext(CInstallWizard* owner)
{
    if (!owner->copyReadmeOnFinish) return 1;
    const char* readme = owner->settings.readme.c_str();
    char source[MAX_PATH], target[MAX_PATH];
    joinPath(owner->sourceFolder, readme, source, sizeof source);
    joinPath(owner->settings.destination.c_str(), readme, target, sizeof target);
    const int noCancel = 0;
    copyFileBlocks(source, target, noCancel, nullptr, nullptr);
    if (hwnd && IsDlgButtonChecked(hwnd, IDC_FINISH_README) == BST_CHECKED)
        ShellExecuteA(hwnd, "open", target, nullptr, nullptr, SW_SHOW);
    if (hwnd && IsDlgButtonChecked(hwnd, IDC_FINISH_BROWSER) == BST_CHECKED) {
        CRegistryKey key(HKEY_LOCAL_MACHINE);
        if (key.open("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE", false,
                     KEY_ALL_ACCESS)) {
            char command[MAX_PATH + 64] = "";
            char browser[MAX_PATH] = "";
            key.readString(nullptr, browser, sizeof browser);
            copyText(command, quotedProgram(browser).c_str(), sizeof command);
            appendText(command, " " TAVRIN_WELCOME_URL, sizeof command);
            WinExec(command, SW_SHOW);
        } else {
            ShellExecuteA(hwnd, "open", TAVRIN_WELCOME_URL, nullptr, nullptr, SW_SHOW);
        }
    }
    return 1;
}
