// The wizard's load of the setup description from the extraction folder, and
// the checks of the payload against it.
#include "BoundedText.h"
#include "Program.h"
#include "RegistryKey.h"
#include "analysis/Versions.h"
#include "description/PathHelpers.h"
#include "description/VersionInfo.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

namespace {
// Puts the working directory back on every road out of the load, so that the
// extraction folder is never the working directory when it is to be removed.
class CWorkingDirectory {
public:
    explicit CWorkingDirectory(const char* folder)
    {
        if (!GetCurrentDirectoryA(sizeof saved, saved)) saved[0] = 0;
        SetCurrentDirectoryA(folder);
    }
    ~CWorkingDirectory()
    {
        if (saved[0]) SetCurrentDirectoryA(saved);
    }

private:
    char saved[MAX_PATH];
};

bool inCabinet(const CCabinetFile& cabinet, const std::string& fileName)
{
    char wanted[MAX_PATH];
    copyText(wanted, fileName.c_str(), sizeof wanted);
    for (const CCabinetEntry& entry : cabinet.entries) {
        char name[MAX_PATH];
        copyText(name, entry.name.c_str(), sizeof name);
        if (equalsNoCase(wanted, name)) return true;
    }
    return false;
}
}  // namespace

int corruptInstallation()
{
    char text[256];
    loadString(IDS_CORRUPT_INSTALL, text, sizeof text);
    MessageBoxA(GetActiveWindow(), text, "Corrupt Installation", MB_OK | MB_ICONINFORMATION);
    return 0;
}

int CInstallWizard::loadSettings()
{
    CWorkingDirectory workingDirectory(sourceFolder);
    if (!fileExists(sourceFolder, "setup.ini")) return corruptInstallation();
    char path[MAX_PATH];
    settings.load(this, joinPath(sourceFolder, "setup.ini", path, sizeof path));

    for (CInstallFile& file : settings.files) {
        if (cabinet.fileCount() == 0 || !inCabinet(cabinet, file.fileName))
            return corruptInstallation();
        // Extraction writes no member outside the folder, nor one whose path
        // there would be cut: the file the description names is not there.
        if (!isPlainMemberName(file.fileName.c_str()) ||
            joinedLength(sourceFolder, file.fileName.c_str()) >= MAX_PATH)
            return corruptInstallation();
        if (!file.fixedDestination) file.destFolder = settings.destination;
        file.sourceFolder = sourceFolder;
        file.size = fileSizeOf(joinPath(sourceFolder, file.fileName.c_str(), path, sizeof path));
        readVersionInfo(file);
    }

    // Never replace a newer server registered on this machine without asking.
    for (const CInstallFile& file : settings.files) {
        if (file.regGuid.empty()) continue;
        CRegistryKey key(HKEY_CLASSES_ROOT);
        std::string keyPath = "CLSID\\" + file.regGuid + "\\InprocServer32";
        if (!key.open(keyPath.c_str(), false, KEY_ALL_ACCESS)) continue;
        char server[MAX_PATH] = "";
        key.readString(nullptr, server, sizeof server);
        char registered[1024];
        getFileVersionText(server, registered, sizeof registered);
        if (compareVersions(registered, file.version.c_str()) <= 0) continue;
        char text[256];
        loadString(IDS_NEWER_VERSION, text, sizeof text);
        if (MessageBoxA(hwnd, text, "Found Newer Version", MB_YESNO | MB_ICONINFORMATION) == IDNO)
            return 0;
    }
    // The cookie needs the service's host, which only the description names.
    return setPartnerCookie();
}
