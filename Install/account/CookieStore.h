#pragma once
#include <windows.h>

// The WinInet cookie store: the program's only memory of an earlier account.

// Looks up the first cookie of `url` whose name begins with `name` (any case)
// and copies its whole "name=value" text. With a null buffer, sets `size` to
// the room the last such cookie needs and returns false; `size` stays as it
// was when there is none. False too when the buffer is smaller than the text.
bool readCookie(const char* url, const char* name, char* buffer, DWORD& size);

// Hands one cookie text to the store; the program's one call of
// InternetSetCookieA. False, with the system's error, when the store refused.
bool storeCookie(const char* url, const char* cookieText);
