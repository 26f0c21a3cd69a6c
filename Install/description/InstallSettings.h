#pragma once
#include <windows.h>

#include <string>
#include <vector>

#include "account/AccountDetails.h"

// What the setup description holds. One CInstallFile per payload file; the
// same record describes a copy found on the machine by the component search.
struct CInstallFile {
    std::string fileName;
    std::string destFolder;
    std::string sourceFolder;
    bool autoReg = false;
    bool signedFile = false;
    bool done = false;
    bool upgradeCheck = false;
    DWORD size = 0;
    std::string regGuid;
    std::string company;
    std::string version = "0.0.0.0";
    bool writable = true;
    bool acmReg = false;
    std::string shortPath;
    bool fixedDestination = false;
};

// A window class whose windows are asked to close before the files are copied.
// Only the class is used to find them.
struct CDetectKill {
    int flagA = 1;
    std::string windowClass;
    std::string windowTitle;
    bool flagB = false;
    std::vector<HWND> windows;
};

// One prerequisite: the version stored at keyPath\valueName against a bound.
struct CRegistryCheck {
    std::string name;
    std::string keyPath;
    std::string valueName;
    std::string comparison;
    std::string version;
    int flag = 0;
};

class CInstallWizard;

class CInstallSettings {
public:
    // Reads the setup description at `path`; what is missing keeps its default.
    // `wizard` expands the macros of the folder values.
    int load(CInstallWizard* wizard, const char* path);

    std::vector<CInstallFile> files;
    std::vector<CInstallFile> foundFiles;
    std::vector<CDetectKill> detectKills;
    std::vector<CRegistryCheck> registryChecks;
    // The account form, which is also the internet session: opened with the wizard.
    ::AccountDetails AccountDetails;
    std::string title, company, copyright, panel, agreement, readme, destination;
    int createAccount = 0;
    int importRequested = 0;
    std::string regoServer, regoCommand = "Add", importServer, serverRoot;
};
