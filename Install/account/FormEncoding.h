#pragma once
#include <windows.h>

#include <cstddef>
#include <string>

// The account form's escaping: a blank becomes "+"; control bytes, 0x7F, every
// byte from 0x80 and < > " # % { } | \ ^ ~ [ ] ` & ? become "%xx" in lower
// case; everything else passes. `out` is cut to `limit` bytes, also inside a
// "%xx" group.
void urlEscape(const char* value, std::string& out, size_t limit);

// The three-letter zone the service expects, from what GetTimeZoneInformation
// returned and the Bias it gave (minutes, positive west of Greenwich).
const char* timeZoneName(DWORD zoneResult, LONG bias);
// The same for this machine's zone now.
const char* currentTimeZone();
