#pragma once

bool isWindowsNT();
// True on Windows 9x; on NT, true if the process token holds the built-in
// Administrators group (compared by SID, so any language and any user name).
bool isUserAdministrator();
