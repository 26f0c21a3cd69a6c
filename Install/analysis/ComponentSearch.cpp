#include "analysis/ComponentSearch.h"

#include <cstring>

#include "BoundedText.h"
#include "analysis/RequirementChecks.h"
#include "description/PathHelpers.h"
#include "description/VersionInfo.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

CSearchIntroPage::CSearchIntroPage() : CInstallPage(IDD_PAGE_SEARCH_INTRO) {}

int CSearchIntroPage::skipCheck(CInstallWizard* owner)
{
    auto* search = dynamic_cast<CSearchPage*>(owner->findPage(103));
    if (!search || search->searched) return 1;
    search->skipRequested = 0;
    return 0;
}

INT_PTR CSearchIntroPage::onCommand(int id, int)
{
    if (id == IDC_SEARCH_SKIP) {
        skipChosen = 1;
        if (auto* search = dynamic_cast<CSearchPage*>(wizard->findPage(103))) search->skipRequested = 1;
        wizard->nextPage();
    }
    return 1;
}

CSearchPage::CSearchPage() : CInstallPage(IDD_PAGE_SEARCH) {}

int CSearchPage::skipCheck(CInstallWizard*) { return searched || skipRequested ? 1 : 0; }

INT_PTR CSearchPage::onInitDialog()
{
    startReadyTimer();
    return 1;
}

void CSearchPage::showText(int controlId, const char* text)
{
    if (hwnd) SetWindowTextA(GetDlgItem(hwnd, controlId), text);
}

void CSearchPage::onDlgReady()
{
    wizard->lockNavigation(true);
    showText(IDC_SEARCH_ACTIVITY, "Checking Registry Settings...");
    if (!checkRequirements(wizard)) {
        EndDialog(wizard->hwnd, 0);
        return;
    }
    searchDrives();
    // Marked before the move: the move pumps messages, and a Back handled
    // there must find the analysis done. After a confirmed Cancel the move
    // runs on a frame that is already ending.
    searched = 1;
    wizard->lockNavigation(false);
    wizard->nextPage();
}

void CSearchPage::searchDrives()
{
    showText(IDC_SEARCH_ACTIVITY, "Searching for components...");
    // The drive loop does not look at `cancelled`: after a Cancel each drive
    // left gets one short visit, as every level of the walk stops at once.
    for (char letter = 'C'; letter <= 'Z'; ++letter) {
        const char drive[3] = {letter, ':', 0};
        if (!SetCurrentDirectoryA(drive)) continue;
        const char root[4] = {letter, ':', '\\', 0};
        if (GetDriveTypeA(root) == DRIVE_FIXED) searchFolder(root);
    }
}

void CSearchPage::searchFolder(const char* folder)
{
    // The working directory stays at the last folder visited; nothing later needs it.
    if (!SetCurrentDirectoryA(folder)) return;
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA("*.*", &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    showText(IDC_SEARCH_FOLDER, folder);
    const size_t folderLength = std::strlen(folder);
    do {
        if (entry.cFileName[0] == '.') continue;
        // A link is neither entered nor taken for a copy: a junction leads to a
        // drive walked anyway, or round to a parent of its own.
        const WalkEntry kind = walkEntryOf(entry.dwFileAttributes);
        if (kind == WalkEntry::folder) {
            // A path that does not fit the buffer would be cut to one of its own
            // parents and walked again without end: such a folder is left out.
            char path[MAX_PATH];
            const size_t separator = folderLength && folder[folderLength - 1] == '\\' ? 0 : 1;
            if (folderLength + separator + std::strlen(entry.cFileName) < sizeof path)
                searchFolder(joinPath(folder, entry.cFileName, path, sizeof path));
        } else if (kind == WalkEntry::file) {
            for (const CInstallFile& file : wizard->settings.files) {
                if (!file.upgradeCheck) continue;
                char name[MAX_PATH];
                copyText(name, file.fileName.c_str(), sizeof name);
                if (equalsNoCase(name, entry.cFileName)) recordFoundFile(file, folder);
            }
        }
        pumpMessages();
        if (wizard->cancelled) break;
    } while (FindNextFileA(search, &entry));
    FindClose(search);
}

void CSearchPage::recordFoundFile(const CInstallFile& file, const char* folder)
{
    CInstallFile copy = file;
    copy.sourceFolder = folder;
    copy.destFolder = folder;
    char path[MAX_PATH];
    joinPath(folder, copy.fileName.c_str(), path, sizeof path);
    HANDLE handle = CreateFileA(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        copy.writable = false;
    else
        CloseHandle(handle);
    readVersionInfo(copy);
    // A file of the same name from another maker is no component of ours.
    if (equalsNoCase(file.company.c_str(), copy.company.c_str()))
        wizard->settings.foundFiles.push_back(copy);
}
