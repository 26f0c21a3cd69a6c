#include "description/InstallSettings.h"

#include <cstdio>

#include "BoundedText.h"
#include "RegistryKey.h"
#include "description/ProfileLists.h"
#include "wizard/InstallWizard.h"

namespace {
const DWORD valueSize = 1024;

// One value of the description, cut at 1,023 characters.
std::string readValue(const char* path, const char* section, const char* key, const char* fallback)
{
    char value[valueSize];
    GetPrivateProfileStringA(section, key, fallback, value, valueSize, path);
    return value;
}

std::vector<std::string> readKeys(const char* path, const char* section)
{
    char list[valueSize] = {};
    GetPrivateProfileStringA(section, nullptr, "", list, valueSize, path);
    return walkKeyList(list, sizeof list);
}

std::string expandedValue(CInstallWizard* wizard, const char* path, const char* section,
                          const char* key)
{
    char value[valueSize];
    GetPrivateProfileStringA(section, key, "", value, valueSize, path);
    wizard->expandMacros(value, sizeof value);
    return value;
}

// The development override of the two service addresses.
void applyDebugOverride(CInstallSettings& settings)
{
    CRegistryKey key(HKEY_CURRENT_USER);
    if (!key.open("SOFTWARE\\Tavrin\\Debug", false, KEY_ALL_ACCESS)) return;
    char value[valueSize];
    bool replaced = false;
    if (key.readString("RegoServer", value, sizeof value)) {
        settings.regoServer = value;
        replaced = true;
    }
    if (key.readString("ImportServer", value, sizeof value)) {
        settings.importServer = value;
        replaced = true;
    }
    if (!replaced) return;
    char text[1024];
    formatText(text, sizeof text, "Registration Server: %s\nImport Server: %s",
             settings.regoServer.c_str(), settings.importServer.c_str());
    MessageBoxA(GetActiveWindow(), text, "Server Override", MB_OK);
}
}  // namespace

int CInstallSettings::load(CInstallWizard* wizard, const char* path)
{
    title = readValue(path, "INSTALL", "TITLE", "");
    company = readValue(path, "INSTALL", "COMPANY", "");
    copyright = readValue(path, "INSTALL", "COPYRIGHT", "");
    panel = readValue(path, "INSTALL", "PANEL", "");
    agreement = readValue(path, "INSTALL", "AGREEMENT", "");
    readme = readValue(path, "INSTALL", "README", "");
    regoServer = readValue(path, "INSTALL", "regoserver", "");
    regoCommand = readValue(path, "INSTALL", "regocommand", "Add");
    importServer = readValue(path, "INSTALL", "importserver", "");

    applyDebugOverride(*this);

    destination = expandedValue(wizard, path, "DEFAULTS", "DEFAULTDIR");

    for (const std::string& key : readKeys(path, "FILES")) {
        const char* section = key.c_str();
        CInstallFile file;
        file.autoReg = profileBool(readValue(path, section, "AUTOREG", "FALSE").c_str());
        file.acmReg = profileBool(readValue(path, section, "ACMREG", "FALSE").c_str());
        file.fixedDestination = file.acmReg;
        file.signedFile = profileBool(readValue(path, section, "SIGNED", "FALSE").c_str());
        file.destFolder = expandedValue(wizard, path, section, "DESTINATION");
        file.regGuid = readValue(path, section, "REGGUID", "");
        file.upgradeCheck = profileBool(readValue(path, section, "UpgradeCheck", "").c_str());
        file.company = readValue(path, section, "Company", "");
        file.fileName = key;
        files.push_back(file);
    }

    for (const std::string& key : readKeys(path, "DetectKill")) {
        CDetectKill kill;
        kill.windowClass = key;
        std::vector<std::string> fields =
            splitCommaList(readValue(path, "DetectKill", key.c_str(), "").c_str());
        if (fields.size() > 0) kill.windowTitle = fields[0];
        if (fields.size() > 1) kill.flagA = profileBool(fields[1].c_str());
        if (fields.size() > 2) kill.flagB = profileBool(fields[2].c_str());
        detectKills.push_back(kill);
    }

    for (const std::string& key : readKeys(path, "CHECKREGISTRY")) {
        CRegistryCheck check;
        std::vector<std::string> fields =
            splitCommaList(readValue(path, "CHECKREGISTRY", key.c_str(), "").c_str());
        std::string* members[] = {&check.name, &check.keyPath, &check.valueName, &check.comparison,
                                  &check.version};
        for (size_t i = 0; i < 5 && i < fields.size(); ++i) *members[i] = fields[i];
        if (fields.size() > 5) check.flag = profileBool(fields[5].c_str());
        registryChecks.push_back(check);
    }

    // "http://host/path" gives "http://host": the first slash behind the scheme.
    size_t slash = regoServer.find('/', 7);
    serverRoot = slash == std::string::npos ? regoServer : regoServer.substr(0, slash);
    return 1;
}
