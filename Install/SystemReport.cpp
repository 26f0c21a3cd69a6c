#include "SystemReport.h"

#include <wininet.h>

#include <cstdio>
#include <vector>

#include "BoundedText.h"
#include "InstallLog.h"
#include "RegistryKey.h"
#include "SystemLibraries.h"
#include "description/PathHelpers.h"

CFileVersionInfo::CFileVersionInfo()
    : module(nullptr), getFileVersionInfoSize(nullptr), getFileVersionInfo(nullptr),
      verQueryValue(nullptr)
{
}

CFileVersionInfo::~CFileVersionInfo()
{
    if (module) FreeLibrary(module);
}

template <typename T> static T entryPoint(HMODULE module, const char* name)
{
    return reinterpret_cast<T>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool CFileVersionInfo::read(const char* path, char* text, size_t capacity)
{
    if (!module) {
        module = loadSystemLibrary("version.dll");
        if (!module) return false;
        getFileVersionInfoSize = entryPoint<SizeFunction>(module, "GetFileVersionInfoSizeA");
        getFileVersionInfo = entryPoint<InfoFunction>(module, "GetFileVersionInfoA");
        verQueryValue = entryPoint<QueryFunction>(module, "VerQueryValueA");
    }
    if (!getFileVersionInfoSize || !getFileVersionInfo || !verQueryValue) return false;
    DWORD handle = 0;
    DWORD size = getFileVersionInfoSize(path, &handle);
    if (size == 0) return false;
    std::vector<BYTE> block(size);
    if (!getFileVersionInfo(path, 0, size, block.data())) return false;
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    if (!verQueryValue(block.data(), "\\", reinterpret_cast<void**>(&fixed), &length) || !fixed ||
        length < sizeof(VS_FIXEDFILEINFO))
        return false;
    char version[64];
    formatText(version, sizeof version, "%d.%d.%d.%d", HIWORD(fixed->dwFileVersionMS),
             LOWORD(fixed->dwFileVersionMS), HIWORD(fixed->dwFileVersionLS),
             LOWORD(fixed->dwFileVersionLS));
    copyText(text, version, capacity);
    return true;
}

const char* connectionTypeText(DWORD flags, char* out, size_t capacity)
{
    copyText(out, "", capacity);
    if (flags & INTERNET_CONNECTION_MODEM) copyText(out, "Modem", capacity);
    if (flags & INTERNET_CONNECTION_LAN) copyText(out, "Lan", capacity);
    if (flags & INTERNET_CONNECTION_PROXY) appendText(out, " -- Proxy ", capacity);
    return out;
}

static const char* platformName(DWORD platformId)
{
    if (platformId == VER_PLATFORM_WIN32_WINDOWS) return "Windows 9x";
    if (platformId == VER_PLATFORM_WIN32_NT) return "Windows NT";
    return "Unknown";
}

static const char* processorName(DWORD type)
{
    switch (type) {
    case 386: return "Intel 386 Processor";
    case 486: return "Intel 486 Processor";
    case 586: return "Intel Pentium Processor";
    default: return "";
    }
}

void CInstallLog::writeSystemReport()
{
    write("------------------------------ System Information ------------------------------", true);

    char windowsDirectory[MAX_PATH] = "", systemDirectory[MAX_PATH] = "";
    if (!GetWindowsDirectoryA(windowsDirectory, sizeof windowsDirectory)) windowsDirectory[0] = 0;
    if (!GetSystemDirectoryA(systemDirectory, sizeof systemDirectory)) systemDirectory[0] = 0;
    writef("Windows Directory: %s", windowsDirectory);
    writef("System Directory: %s", systemDirectory);

    OSVERSIONINFOA os = {};
    os.dwOSVersionInfoSize = sizeof os;
    if (!GetVersionExA(&os)) os = OSVERSIONINFOA{};
    writef("Windows OS: %s", platformName(os.dwPlatformId));
    char number[32];
    formatText(number, sizeof number, "%lu.%lu", static_cast<unsigned long>(os.dwMajorVersion),
             static_cast<unsigned long>(os.dwMinorVersion));
    writef("Windows Version: %s", number);
    char servicePack[sizeof os.szCSDVersion + 1];
    copyTextPart(servicePack, os.szCSDVersion, sizeof os.szCSDVersion, sizeof servicePack);
    writef("Service Packs: %s", servicePack);

    char browserVersion[MAX_PATH] = "";
    CRegistryKey key;
    key.setRoot(HKEY_LOCAL_MACHINE);
    if (key.open("Software\\Microsoft\\Internet Explorer", false, KEY_READ)) {
        if (!key.readString("Version", browserVersion, sizeof browserVersion)) browserVersion[0] = 0;
        key.close();
    }
    writef("Internet Explorer Version: %s", browserVersion);

    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    writef("Processor: %s", processorName(system.dwProcessorType));
    writef("Processor Count: %d", static_cast<int>(system.dwNumberOfProcessors));

    // On failure the line shows the path in place of a version.
    char wininet[MAX_PATH];
    joinPath(systemDirectory, "wininet.dll", wininet, sizeof wininet);
    CFileVersionInfo versionInfo;
    versionInfo.read(wininet, wininet, sizeof wininet);
    writef("Wininet version: %s", wininet);

    DWORD flags = 0;
    systemDll::InternetGetConnectedState(&flags, 0);
    char connection[64];
    writef("Connection Type: %s", connectionTypeText(flags, connection, sizeof connection));

    write("--------------------------------------------------------------------------------", true);
}
