#include "account/CookieDate.h"

#include <cstdio>

#include "BoundedText.h"

void formatCookieDate(const SYSTEMTIME& time, char* out, size_t size)
{
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (!out || size == 0) return;
    const char* day = time.wDayOfWeek < 7 ? days[time.wDayOfWeek] : "";
    const char* month = time.wMonth >= 1 && time.wMonth <= 12 ? months[time.wMonth - 1] : "";
    formatText(out, size, "%s, %02d-%s-%04d %02d:%02d:%02d GMT", day, time.wDay, month, time.wYear,
             time.wHour, time.wMinute, time.wSecond);
}

void addSeconds(SYSTEMTIME& time, long long seconds)
{
    FILETIME file;
    if (!SystemTimeToFileTime(&time, &file)) return;
    // A FILETIME counts 100 ns units from 1601 in 63 bits: a move that would
    // leave that range, or overflow on the way, leaves the time as it was.
    const long long unitsPerSecond = 10000000;
    const long long limit = 0x7FFFFFFFFFFFFFFFLL;
    if (seconds > limit / unitsPerSecond || seconds < -(limit / unitsPerSecond)) return;
    const long long delta = seconds * unitsPerSecond;
    ULARGE_INTEGER units;
    units.LowPart = file.dwLowDateTime;
    units.HighPart = file.dwHighDateTime;
    const long long now = static_cast<long long>(units.QuadPart);
    if (now < 0 || (delta > 0 && now > limit - delta) || (delta < 0 && now + delta < 0)) return;
    units.QuadPart = static_cast<ULONGLONG>(now + delta);
    file.dwLowDateTime = units.LowPart;
    file.dwHighDateTime = units.HighPart;
    SYSTEMTIME moved;
    if (FileTimeToSystemTime(&file, &moved)) time = moved;
}
