#include "analysis/Versions.h"

#include <cctype>
#include <climits>
#include <cstring>

#include "BoundedText.h"

namespace {
bool isSeparator(char c) { return c == ',' || c == '.'; }

// Leading white space, an optional sign, then digits up to the first other
// character; no digits give 0. Values beyond 32 bits stop at the limit.
int convertField(const char* token)
{
    while (*token && std::isspace(static_cast<unsigned char>(*token))) ++token;
    bool negative = false;
    if (*token == '+' || *token == '-') negative = *token++ == '-';
    long long value = 0;
    for (; std::isdigit(static_cast<unsigned char>(*token)); ++token) {
        value = value * 10 + (*token - '0');
        if (value > static_cast<long long>(INT_MAX) + 1) value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative) value = -value;
    if (value > INT_MAX) value = INT_MAX;
    return static_cast<int>(value);
}
}  // namespace

CVersion parseVersion(const char* text)
{
    CVersion version = {{0, 0, 0, 0}};
    char work[256];
    copyText(work, text, sizeof work);
    char* p = work;
    for (int i = 0; i < 4; ++i) {
        while (*p && isSeparator(*p)) ++p;
        if (!*p) break;
        char* token = p;
        while (*p && !isSeparator(*p)) ++p;
        if (*p) *p++ = 0;
        version.field[i] = convertField(token);
    }
    return version;
}

int compareVersions(const char* a, const char* b)
{
    CVersion left = parseVersion(a), right = parseVersion(b);
    for (int i = 0; i < 4; ++i) {
        if (left.field[i] < right.field[i]) return -1;
        if (left.field[i] > right.field[i]) return 1;
    }
    return 0;
}
