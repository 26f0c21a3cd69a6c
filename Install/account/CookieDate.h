#pragma once
#include <windows.h>

#include <cstddef>

// "Sat, 01-Jan-2000 12:00:00 GMT", with English names whatever the system's
// language; cut to `size`.
void formatCookieDate(const SYSTEMTIME& time, char* out, size_t size);
// Moves `time` by a signed number of seconds, through FILETIME, so that the
// day of the week, month and year all follow. A time that is no valid date,
// or a move beyond the range of FILETIME, leaves `time` as it was.
void addSeconds(SYSTEMTIME& time, long long seconds);
