#pragma once
#include <string>

// What a partner's trailer behind the program file brings: two partner numbers,
// a label, a link and a logo.
struct CBranding {
    int present = 0;
    int partnerIdA = 0;
    int partnerIdB = 0;
    std::string label;
    std::string linkUrl;
    int extra = 0;
    int bitmapSize = 0;
    std::string bitmapPath;
};
