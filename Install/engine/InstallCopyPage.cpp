#include "engine/InstallCopyPage.h"

#include <commctrl.h>
#include <shlobj.h>

#include <cstdio>

#include "BoundedText.h"
#include "InstallLog.h"
#include "Program.h"
#include "RegistryKey.h"
#include "analysis/Versions.h"
#include "description/PathHelpers.h"
#include "description/VersionInfo.h"
#include "engine/ComponentRegistration.h"
#include "engine/FileCopy.h"
#include "engine/RestartScript.h"
#include "engine/UninstallScript.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

INT_PTR CInstallCopyPage::onInitDialog()
{
    startReadyTimer();
    return 1;
}

void CInstallCopyPage::onDlgReady() { runFilePass(false, wizard); }

void CInstallCopyPage::setStatus(const char* text)
{
    if (!quietRun && hwnd) SetWindowTextA(GetDlgItem(hwnd, IDC_COPY_STATUS), text);
}

void CInstallCopyPage::setupProgress(CInstallWizard* owner)
{
    long long total = 0;
    registerCount = 0;
    for (const CInstallFile& file : owner->settings.files) {
        total += file.size;
        if (file.autoReg || file.acmReg) ++registerCount;
    }
    totalBytes = static_cast<int>(total);
    registerAllowance = static_cast<int>((total * 10 / 100) * registerCount);
    // The bar's range is 16 bits: a payload too large for steps of 100 bytes
    // gets larger steps, so the bar still runs from 0 to its top.
    unsigned long long top = static_cast<unsigned long long>(total) + registerAllowance;
    scale = 100;
    while (top / scale > 0xFFFF) scale *= 2;
    if (hwnd)
        SendDlgItemMessageA(hwnd, IDC_COPY_PROGRESS, PBM_SETRANGE, 0,
                            MAKELPARAM(0, static_cast<WORD>(top / scale)));
}

void CInstallCopyPage::moveBar(unsigned bytes)
{
    if (quietRun || !hwnd) return;
    SendDlgItemMessageA(hwnd, IDC_COPY_PROGRESS, PBM_SETPOS, bytes / scale, 0);
    pumpMessages();
}

void CInstallCopyPage::onCopyProgress(const char*, DWORD, DWORD doneBytes, int kind, void* context)
{
    auto* page = static_cast<CInstallCopyPage*>(context);
    if (kind == copyBlock) page->moveBar(static_cast<unsigned>(page->copiedBytes) + doneBytes);
}

void CInstallCopyPage::stopOnFailure(CInstallWizard* owner)
{
    failed = 1;
    if (!quietRun) {
        owner->lockNavigation(false);
        owner->nextPage();
    }
}

bool CInstallCopyPage::runFilePass(bool quiet, CInstallWizard* owner)
{
    quietRun = quiet;
    copiedBytes = 0;
    registeredCount = 0;
    std::string restartScript;
    startRestartScript(restartScript, *owner);
    if (!quiet) {
        owner->lockNavigation(true);
        setupProgress(owner);
    }

    for (CInstallFile& file : owner->settings.files) {
        FileOutcome outcome = processFile(owner, file, restartScript);
        if (outcome == fileFailed) {
            stopOnFailure(owner);
            return false;
        }
        if (outcome == passCancelled) return false;
    }

    installLog.write("Registering files", true);
    setStatus("Registering Files...");
    if (!registerFiles(owner)) return false;

    SendMessageA(GetDesktopWindow(), 0x45A, 0, 0);
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_FLUSH, nullptr, nullptr);

    for (const CInstallFile& file : owner->settings.files) {
        if (file.writable && !file.done) {
            owner->restartNeeded = 1;
            owner->removeSourceOnExit = 0;
            installLog.write("Reboot Required", true);
            break;
        }
    }
    writeUninstallEntry(owner);
    if (owner->restartNeeded) writeRestartScript(owner, restartScript);
    if (!quiet) {
        owner->lockNavigation(false);
        owner->nextPage();
    }
    return true;
}

CInstallCopyPage::FileOutcome CInstallCopyPage::processFile(CInstallWizard* owner, CInstallFile& file,
                                                            std::string& restartScript)
{
    installLog.writef("Processing file %s", file.fileName.c_str());
    setStatus(file.fileName.c_str());
    if (!quietRun) pumpMessages();

    bool needCopy = true;
    char target[MAX_PATH];
    joinPath(file.destFolder.c_str(), file.fileName.c_str(), target, sizeof target);
    if (fileExists(target, nullptr)) {
        file.shortPath = shortPathOf(target);
        char installed[256];
        getFileVersionText(target, installed, sizeof installed);
        if (compareVersions(file.version.c_str(), installed) == 0 && file.upgradeCheck) {
            file.done = true;
            return fileDone;
        }
        if (!canOpenForWrite(target)) {
            // In use: the restart script replaces it after Windows has restarted.
            appendRestartEntry(file, restartScript);
            unregisterComponent(target);
            owner->restartNeeded = 1;
            owner->removeSourceOnExit = 0;
            return fileLeft;
        }
    }
    for (CInstallFile& found : owner->settings.foundFiles) {
        if (!equalsNoCase(found.fileName.c_str(), file.fileName.c_str()) ||
            !equalsNoCase(found.destFolder.c_str(), file.destFolder.c_str()))
            continue;
        if (found.writable) {
            found.done = true;
        } else if (compareVersions(file.version.c_str(), found.version.c_str()) != 0) {
            owner->restartNeeded = 1;
            owner->removeSourceOnExit = 0;
            appendRestartEntry(file, restartScript);
            needCopy = false;
        } else {
            found.writable = true;
            found.done = true;
            file.done = true;
            needCopy = false;
        }
        break;
    }
    int cancelFlag = owner->cancelled;
    if (!needCopy) return file.done ? fileDone : fileLeft;
    // A Cancel confirmed before this file stops the pass before the file is touched.
    if (cancelFlag) return passCancelled;

    char source[MAX_PATH];
    joinPath(file.sourceFolder.c_str(), file.fileName.c_str(), source, sizeof source);
    int copied = copyFileBlocks(source, target, cancelFlag, this, quietRun ? nullptr : onCopyProgress);
    if (copied == copyCompleted) {
        file.done = true;
        copiedBytes += static_cast<int>(file.size);
        file.shortPath = shortPathOf(target);
        installLog.writef("%s copied", file.fileName.c_str());
        return fileDone;
    }
    if (copied == copyCancelled) return passCancelled;
    char text[1024];
    formatText(text, sizeof text,
             "Error creating file '%s'.  Please check you have enough disk space and permission to "
             "modify this directory.",
             target);
    ERRORMSG(text, false);
    installLog.writef("Error copying %s", file.fileName.c_str());
    return fileFailed;
}

bool CInstallCopyPage::registerFiles(CInstallWizard* owner)
{
    for (const CInstallFile& file : owner->settings.files) {
        if (!file.autoReg && !file.acmReg) continue;
        if (!file.done) continue;  // the restart script registers it
        bool registered = true;
        if (file.autoReg) {
            char path[MAX_PATH];
            joinPath(owner->settings.destination.c_str(), file.fileName.c_str(), path, sizeof path);
            registered = registerComponent(hwnd, path);
            if (registered) installLog.writef("Registered file %s", file.fileName.c_str());
        }
        if (registered && file.acmReg) {
            std::string key = "msacm." + file.fileName.substr(0, file.fileName.find('.'));
            registered = WritePrivateProfileStringA("drivers32", key.c_str(), file.fileName.c_str(),
                                                    "system.ini") != 0;
            if (registered) installLog.writef("Registered file %s", file.fileName.c_str());
        }
        if (!registered) {
            char text[256];
            loadString(IDS_REGISTER_FAILED, text, sizeof text);
            MessageBoxA(hwnd, text, "Error Registering Components", MB_OK | MB_ICONINFORMATION);
            stopOnFailure(owner);
            return false;
        }
        // Each registered file uses its share of the allowance; the last one ends at the top.
        ++registeredCount;
        if (registerCount)
            moveBar(static_cast<unsigned>(copiedBytes) +
                    static_cast<unsigned>(static_cast<long long>(registerAllowance) * registeredCount / registerCount));
    }
    return true;
}

void CInstallCopyPage::writeUninstallEntry(CInstallWizard* owner)
{
    char windows[MAX_PATH] = "", infPath[MAX_PATH];
    GetWindowsDirectoryA(windows, sizeof windows);
    // The script's path goes on two command lines (the uninstall entry's and
    // the second stage's RunOnce value) that name it unquoted: the short form
    // of the folder, when the Windows folder's long form holds a blank.
    joinPath(windows, "INF", infPath, sizeof infPath);
    std::string infFolder = strchr(infPath, ' ') ? shortPathOf(infPath) : "";
    joinPath(infFolder.empty() ? infPath : infFolder.c_str(), "tvuninst.inf", infPath, sizeof infPath);
    std::string script;
    buildUninstallScript(owner, script, infPath);
    HANDLE file = CreateFileA(infPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        WriteFile(file, script.data(), static_cast<DWORD>(script.size()), &written, nullptr);
        CloseHandle(file);
    }
    CRegistryKey key(HKEY_LOCAL_MACHINE);
    if (key.open("Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin", true, KEY_ALL_ACCESS)) {
        key.writeString("DisplayName", owner->settings.title.c_str());
        key.writeString("UninstallString", uninstallCommandLine(infPath).c_str());
        key.close();
    }
}
