// The administrator check on Wine's real token, on a restricted copy of it, and
// on lists of groups made here, since Wine offers no token without the group.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "AdministratorCheck.h"

namespace {
struct Sid {
    explicit Sid(DWORD rid)
    {
        SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
        AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, rid, 0, 0, 0, 0, 0, 0, &sid);
    }
    ~Sid() { FreeSid(sid); }
    PSID sid = nullptr;
};

// A TOKEN_GROUPS of these groups, as GetTokenInformation lays it out.
std::vector<BYTE> groupList(const std::vector<SID_AND_ATTRIBUTES>& groups)
{
    std::vector<BYTE> buffer(offsetof(TOKEN_GROUPS, Groups) + groups.size() * sizeof(SID_AND_ATTRIBUTES));
    auto* list = reinterpret_cast<TOKEN_GROUPS*>(buffer.data());
    list->GroupCount = static_cast<DWORD>(groups.size());
    for (size_t i = 0; i < groups.size(); ++i) list->Groups[i] = groups[i];
    return buffer;
}

bool holds(const std::vector<SID_AND_ATTRIBUTES>& groups)
{
    std::vector<BYTE> buffer = groupList(groups);
    return holdsAdministrators(*reinterpret_cast<TOKEN_GROUPS*>(buffer.data()));
}
}  // namespace

TEST(AdministratorCheck, GoesByTheAdministratorsSidOfTheToken)
{
    ASSERT_TRUE(isWindowsNT()) << "the token is asked on NT only";
    EXPECT_TRUE(isUserAdministrator()) << "Wine's user is a member of S-1-5-32-544";

    HANDLE process = nullptr, restricted = nullptr, unreadable = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &process));
    Sid administrators(DOMAIN_ALIAS_RID_ADMINS);
    SID_AND_ATTRIBUTES disabled = {administrators.sid, 0};
    ASSERT_TRUE(CreateRestrictedToken(process, 0, 1, &disabled, 0, nullptr, 0, nullptr, &restricted));
    EXPECT_TRUE(isTokenAdministrator(restricted)) << "a group kept for deny only still counts";
    // A token whose groups may not be read gives no.
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), process, GetCurrentProcess(), &unreadable, TOKEN_QUERY_SOURCE,
                                FALSE, 0));
    EXPECT_FALSE(isTokenAdministrator(unreadable));
    CloseHandle(unreadable);
    CloseHandle(restricted);
    CloseHandle(process);

    Sid users(DOMAIN_ALIAS_RID_USERS), powerUsers(DOMAIN_ALIAS_RID_POWER_USERS);
    const DWORD on = SE_GROUP_ENABLED | SE_GROUP_MANDATORY;
    EXPECT_FALSE(holds({{users.sid, on}, {powerUsers.sid, on}})) << "Power Users are no administrators";
    EXPECT_FALSE(holds({}));
    EXPECT_TRUE(holds({{users.sid, on}, {administrators.sid, SE_GROUP_USE_FOR_DENY_ONLY}, {powerUsers.sid, on}}));
}
