#include "AdministratorCheck.h"

#include <vector>

bool isWindowsNT()
{
    OSVERSIONINFOA info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExA(&info)) return false;
    return info.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

bool holdsAdministrators(const TOKEN_GROUPS& groups)
{
    PSID administrators = nullptr;
    SID_IDENTIFIER_AUTHORITY ntAuthority = SECURITY_NT_AUTHORITY;
    if (!AllocateAndInitializeSid(&ntAuthority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS,
                                  0, 0, 0, 0, 0, 0, &administrators))
        return false;
    bool result = false;
    // The attributes are not read: a group marked for deny only counts too.
    for (DWORD i = 0; i < groups.GroupCount; ++i) {
        if (!EqualSid(groups.Groups[i].Sid, administrators)) continue;
        char name[256], domain[256];
        DWORD nameSize = sizeof name, domainSize = sizeof domain;
        SID_NAME_USE use;
        if (LookupAccountSidA(nullptr, groups.Groups[i].Sid, name, &nameSize, domain, &domainSize, &use))
            result = true;
    }
    FreeSid(administrators);
    return result;
}

bool isTokenAdministrator(HANDLE token)
{
    DWORD size = 0;
    GetTokenInformation(token, TokenGroups, nullptr, 0, &size);
    if (size < sizeof(TOKEN_GROUPS)) return false;
    std::vector<BYTE> buffer(size);
    if (!GetTokenInformation(token, TokenGroups, buffer.data(), size, &size)) return false;
    return holdsAdministrators(*reinterpret_cast<const TOKEN_GROUPS*>(buffer.data()));
}

bool isUserAdministrator()
{
    if (!isWindowsNT()) return true;
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    bool result = isTokenAdministrator(token);
    CloseHandle(token);
    return result;
}
