#include "AdministratorCheck.h"

#include <windows.h>

#include <vector>

bool isWindowsNT()
{
    OSVERSIONINFOA info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExA(&info)) return false;
    return info.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

bool isUserAdministrator()
{
    if (!isWindowsNT()) return true;
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;

    bool result = false;
    DWORD size = 0;
    GetTokenInformation(token, TokenGroups, nullptr, 0, &size);
    std::vector<BYTE> buffer(size ? size : 1);
    PSID administrators = nullptr;
    SID_IDENTIFIER_AUTHORITY ntAuthority = SECURITY_NT_AUTHORITY;
    if (size && GetTokenInformation(token, TokenGroups, buffer.data(), size, &size) &&
        AllocateAndInitializeSid(&ntAuthority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                 DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators)) {
        const TOKEN_GROUPS* groups = reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
        // Every group is looked at, and a deny-only group counts as membership;
        // a match whose name cannot be looked up does not.
        for (DWORD i = 0; i < groups->GroupCount; ++i) {
            if (!EqualSid(groups->Groups[i].Sid, administrators)) continue;
            char name[256], domain[256];
            DWORD nameSize = sizeof name, domainSize = sizeof domain;
            SID_NAME_USE use;
            if (LookupAccountSidA(nullptr, groups->Groups[i].Sid, name, &nameSize, domain,
                                  &domainSize, &use))
                result = true;
        }
        FreeSid(administrators);
    }
    CloseHandle(token);
    return result;
}
