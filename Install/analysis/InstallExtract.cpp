#include "analysis/InstallExtract.h"

#include <commctrl.h>

#include "InstallLog.h"
#include "Program.h"
#include "description/PathHelpers.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

std::string makeExtractionFolder(const char* folder)
{
    // Bounded: a temporary folder that takes no new folder at all (gone, full,
    // read-only) would otherwise be tried for ever.
    for (unsigned long number = 0; number < 1000; ++number) {
        std::string name = number ? "tavrin" + std::to_string(number) : "tavrin";
        char path[MAX_PATH];
        if (joinedLength(folder, name.c_str()) >= sizeof path) return "";
        joinPath(folder, name.c_str(), path, sizeof path);
        // A name taken in any form is passed over; and the folder must be made
        // by this call: one that appeared since the look (a file, a link, a
        // folder planted with files of its own) makes CreateDirectoryA fail.
        if (!fileExists(path, nullptr) && CreateDirectoryA(path, nullptr)) return path;
    }
    return "";
}

namespace {
// The cabinet written whole and closed, or false.
bool writeCabinet(const char* path, const void* bytes, DWORD size)
{
    HANDLE file =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool whole = WriteFile(file, bytes, size, &written, nullptr) && written == size;
    return CloseHandle(file) && whole;
}
}  // namespace

INT_PTR CInstallExtract::onInitDialog()
{
    startReadyTimer();
    SendMessageA(GetDlgItem(hwnd, IDC_EXTRACT_PROGRESS), PBM_SETRANGE, 0, MAKELPARAM(0, 100));
    return 1;
}

INT_PTR CInstallExtract::onCommand(int id, int)
{
    if (id == IDCANCEL) EndDialog(hwnd, 0);
    return 1;
}

void CInstallExtract::onDlgReady()
{
    installLog.write("Extracting Install Files", true);
    HRSRC resource = FindResourceA(moduleInstance, MAKEINTRESOURCEA(IDR_PAYLOAD), MAKEINTRESOURCEA(10));
    if (!resource) return;  // the dialog waits, idle, for Cancel
    HGLOBAL loaded = LoadResource(moduleInstance, resource);
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    DWORD size = SizeofResource(moduleInstance, resource);
    if (!bytes) return;

    HWND status = GetDlgItem(hwnd, IDC_EXTRACT_STATUS);
    HWND progress = GetDlgItem(hwnd, IDC_EXTRACT_PROGRESS);
    SetWindowTextA(status, "Extracting Installation Files...");
    installLog.write("Extracting Data", true);

    char temp[MAX_PATH] = "", cabinetFile[MAX_PATH] = "";
    bool haveFile = GetTempPathA(sizeof temp, temp) && GetTempFileNameA(temp, "tv", 0, cabinetFile);
    bool written = haveFile && writeCabinet(cabinetFile, bytes, size);
    SendMessageA(progress, PBM_DELTAPOS, 10, 0);
    SetWindowTextA(status, "Decompressing Installation Files...");
    if (written) cabinet->listFiles(cabinetFile);

    if (written && cabinet->fileCount() != 0) {
        tempFolder = makeExtractionFolder(temp);
        written = !tempFolder.empty();
        int step = static_cast<int>(90 / cabinet->fileCount());
        for (size_t index = 0; written && index < cabinet->fileCount(); ++index) {
            written = cabinet->extractFile(index, tempFolder.c_str()) != 0;
            SendMessageA(progress, PBM_DELTAPOS, step, 0);
        }
    }
    if (haveFile) DeleteFileA(cabinetFile);
    if (!written) {
        // A file cut short by a full disk would pass for the program's own:
        // the run ends here and leaves nothing behind.
        if (!tempFolder.empty()) removeTree(tempFolder.c_str());
        tempFolder.clear();
        corruptInstallation();
        EndDialog(hwnd, 0);
        return;
    }
    EndDialog(hwnd, 1);
}
