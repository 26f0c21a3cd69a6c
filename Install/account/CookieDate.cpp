#include "account/CookieDate.h"

#include <cstdio>

void formatCookieDate(const SYSTEMTIME& time, char* out, size_t size)
{
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (!out || size == 0) return;
    const char* day = time.wDayOfWeek < 7 ? days[time.wDayOfWeek] : "";
    const char* month = time.wMonth >= 1 && time.wMonth <= 12 ? months[time.wMonth - 1] : "";
    snprintf(out, size, "%s, %02d-%s-%04d %02d:%02d:%02d GMT", day, time.wDay, month, time.wYear,
             time.wHour, time.wMinute, time.wSecond);
}

void addSeconds(SYSTEMTIME& time, long long seconds)
{
    FILETIME file;
    if (!SystemTimeToFileTime(&time, &file)) return;
    ULARGE_INTEGER units;
    units.LowPart = file.dwLowDateTime;
    units.HighPart = file.dwHighDateTime;
    units.QuadPart += static_cast<ULONGLONG>(seconds * 10000000LL);
    file.dwLowDateTime = units.LowPart;
    file.dwHighDateTime = units.HighPart;
    FileTimeToSystemTime(&file, &time);
}
