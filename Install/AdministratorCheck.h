#pragma once
#include <windows.h>

bool isWindowsNT();
// True on Windows 9x; on NT, true if the process token holds the built-in
// Administrators group (compared by SID, so any language and any user name).
bool isUserAdministrator();
// The decision for one token, and for one list of a token's groups: every
// group is looked at; a deny-only group counts as membership, and a match
// whose account name cannot be looked up does not. False when the token's
// groups cannot be read.
bool isTokenAdministrator(HANDLE token);
bool holdsAdministrators(const TOKEN_GROUPS& groups);
