#pragma once
#include <cstddef>
#include <string>
#include <vector>

// The cookie texts a sign-up reply asks to store, in header order, from raw
// headers as readRawHeaders keeps them (zero-terminated lines up to an empty
// one). Each "Set-Cookie:" line, in any case, counts from its 13th character
// on; a text with no "expires" anywhere gets "; expires = " and `expiry`. A
// text that will not fit the 1,024-byte work buffer whole is left out.
std::vector<std::string> signUpCookies(const char* headers, size_t size, const char* expiry);

// When the program's own cookies run out: 12 hours from `GetSystemTime`.
const long long ownCookieLifetime = 43200;
