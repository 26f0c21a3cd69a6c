#include "account/FormEncoding.h"

#include <cstring>

void urlEscape(const char* value, std::string& out, size_t limit)
{
    static const char hex[] = "0123456789abcdef";
    static const char reserved[] = "<>\"#%{}|\\^~[]`&?";
    out.clear();
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(value ? value : ""); *p;
         ++p) {
        unsigned char c = *p;
        if (c == ' ') {
            out += '+';
        } else if (c < 0x20 || c >= 0x7F || std::strchr(reserved, c)) {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        } else {
            out += static_cast<char>(c);
        }
    }
    if (out.size() > limit) out.resize(limit);
}

namespace {
struct ZoneRow {
    int halfHours;  // hours west of Greenwich, doubled
    const char* name;
};

// East of Greenwich is negative. +12 is "NST"; -12, 2 and 8 have no row.
const ZoneRow zones[] = {
    {-22, "SST"}, {-20, "AET"}, {-19, "ACT"}, {-18, "JST"}, {-16, "CCT"}, {-14, "VST"},
    {-12, "BST"}, {-11, "IST"}, {-10, "PLT"}, {-8, "NET"},  {-7, "MET"},  {-6, "EAT"},
    {-4, "EET"},  {-2, "ECT"},  {0, "GMT"},   {2, "CAT"},   {6, "BET"},   {7, "AGT"},
    {8, "PRT"},   {10, "EST"},  {12, "CST"},  {14, "MST"},  {18, "AST"},  {20, "HST"},
    {22, "MIT"},  {24, "NST"},
};
}  // namespace

const char* timeZoneName(DWORD zoneResult, LONG bias)
{
    // An unknown zone, and a failed call whose structure holds nothing, are
    // both the service's default.
    if (zoneResult == TIME_ZONE_ID_UNKNOWN || zoneResult == TIME_ZONE_ID_INVALID) return "PST";
    // Truncated toward zero: -345 minutes counts as -11 half hours.
    int halfHours = static_cast<int>(bias / 30);
    for (const ZoneRow& row : zones)
        if (row.halfHours == halfHours) return row.name;
    return "PST";
}

const char* currentTimeZone()
{
    TIME_ZONE_INFORMATION zone = {};
    DWORD result = GetTimeZoneInformation(&zone);
    return timeZoneName(result, zone.Bias);
}
