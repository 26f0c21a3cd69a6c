#include "analysis/RequirementChecks.h"

#include <cstdio>
#include <cstring>

#include "BoundedText.h"
#include "Program.h"
#include "RegistryKey.h"
#include "analysis/Versions.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"

int checkRegistryEntry(HWND owner, CInstallWizard* wizard, const CRegistryCheck& check)
{
    char path[MAX_PATH];
    copyText(path, check.keyPath.c_str(), sizeof path);
    char* rootName = path;
    while (*rootName == '\\') ++rootName;
    char* subKey = std::strchr(rootName, '\\');
    if (subKey)
        *subKey++ = 0;
    else
        subKey = rootName + std::strlen(rootName);

    HKEY root = *rootName ? rootKeyByName(rootName) : nullptr;
    if (!root) return 1;
    CRegistryKey key(root);
    if (!key.open(subKey, false, KEY_ALL_ACCESS)) return 1;

    // A key that opens but holds no readable value says nothing about the
    // installed version: the entry passes, as a missing key does.
    char installed[1024];
    if (!key.readString(check.valueName.empty() ? nullptr : check.valueName.c_str(), installed,
                        sizeof installed))
        return 1;

    const char* name = check.name.c_str();
    const char* title = wizard->settings.title.c_str();
    const char* bound = check.version.c_str();
    char format[256];
    char message[1024];
    if (equalsNoCase(check.comparison.c_str(), "VERGREATER")) {
        if (compareVersions(installed, bound) >= 0) return 1;
        loadString(IDS_VERSION_TOO_OLD, format, sizeof format);
        formatText(message, sizeof message, format, name, title, name, bound);
    } else if (equalsNoCase(check.comparison.c_str(), "VERLESSER")) {
        if (compareVersions(installed, bound) <= 0) return 1;
        loadString(IDS_VERSION_TOO_NEW, format, sizeof format);
        formatText(message, sizeof message, format, name, title, name, title, bound);
    } else {
        return 1;
    }
    MessageBoxA(owner, message, "Incorrect Version", MB_OK | MB_ICONINFORMATION);
    return 0;
}

int checkRequirements(CInstallWizard* wizard)
{
    for (const CRegistryCheck& check : wizard->settings.registryChecks)
        if (!checkRegistryEntry(nullptr, wizard, check)) return 0;
    return 1;
}
