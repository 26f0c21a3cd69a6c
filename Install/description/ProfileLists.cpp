#include "description/ProfileLists.h"

#include "BoundedText.h"

std::vector<std::string> walkKeyList(const char* list, size_t size)
{
    std::vector<std::string> keys;
    const char* key = list;
    for (size_t i = 0; i < size; ++i) {
        if (list[i] != 0) continue;
        keys.emplace_back(key, list + i - key);
        key = list + i + 1;
        if (i + 1 == size || list[i + 1] == 0) break;
    }
    return keys;
}

std::vector<std::string> splitCommaList(const char* text)
{
    std::vector<std::string> fields;
    const char* p = text;
    while (*p) {
        while (*p == ',') ++p;
        if (!*p) break;
        const char* start = p;
        while (*p && *p != ',') ++p;
        fields.emplace_back(start, p - start);
    }
    return fields;
}

bool profileBool(const char* value) { return equalsNoCase(value, "TRUE"); }
