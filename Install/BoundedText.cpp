#include "BoundedText.h"

#include <cctype>
#include <cstdio>
#include <cstring>

static int lower(char c) { return std::tolower(static_cast<unsigned char>(c)); }

char* copyTextPart(char* out, const char* source, size_t count, size_t capacity)
{
    if (!out || capacity == 0) return out;
    size_t n = 0;
    if (source)
        while (n < count && n + 1 < capacity && source[n]) ++n;
    if (n) std::memmove(out, source, n);
    out[n] = 0;
    return out;
}

char* copyText(char* out, const char* source, size_t capacity)
{
    return copyTextPart(out, source, static_cast<size_t>(-1), capacity);
}

char* appendText(char* out, const char* source, size_t capacity)
{
    if (!out || capacity == 0) return out;
    size_t used = strnlen(out, capacity - 1);
    copyText(out + used, source, capacity - used);
    return out;
}

bool startsWithNoCase(const char* text, const char* prefix)
{
    for (; *prefix; ++text, ++prefix)
        if (!*text || lower(*text) != lower(*prefix)) return false;
    return true;
}

bool containsNoCase(const char* text, const char* needle)
{
    if (!*needle) return true;
    for (; *text; ++text)
        if (startsWithNoCase(text, needle)) return true;
    return false;
}

bool equalsNoCase(const char* a, const char* b)
{
    for (; *a && *b; ++a, ++b)
        if (lower(*a) != lower(*b)) return false;
    return *a == *b;
}

void formatTextList(char* out, size_t capacity, const char* format, va_list args)
{
    if (!out || capacity == 0) return;
    _vsnprintf(out, capacity, format, args);
    out[capacity - 1] = 0;
}

void formatText(char* out, size_t capacity, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    formatTextList(out, capacity, format, args);
    va_end(args);
}
