#pragma once
#include <cstddef>
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

// The trailer, as tools/stamp writes it behind a copy of the program:
//   A, B, n, label[n], m, link[m], extra, b, logo[b], (any bytes), L, "tvd"
// all words 32-bit little-endian, L counting from A up to and including the
// marker, and the marker ending at most brandingSearchSpan bytes before the end
// of the file. The nearest marker to the end is the one that counts.
const unsigned brandingSearchSpan = 4096;
const char brandingMarker[] = "tvd";
// Longer texts are cut to these on reading; the stamping tool refuses them.
const size_t brandingLabelLimit = 255;
const size_t brandingLinkLimit = 1023;
// The name of the written logo in the extraction folder.
const char brandingLogoName[] = "branding.bmp";

// Reads the trailer of the file `programPath` into `branding` (reset first) and
// writes its logo as branding.bmp into `logoFolder` (none when that is empty).
// Every length is checked against the file before it is used: a trailer whose
// lengths do not fit counts as none. Returns `branding.present`.
int readBrandingTrailer(const char* programPath, const char* logoFolder, CBranding& branding);

// The cookie that tells the service a partner's copy was run: the text handed
// to the store for the four numbers and a cookie date, cut to `size`.
void partnerCookieText(const int numbers[4], const char* date, char* out, size_t size);
// Numbers 1 to 4 of a stored "TavRinPartner=Partner*1*2*3*4" among the
// ";"-separated pieces of `cookies`; those it does not hold stay as they were.
void partnerNumbersFromCookie(const char* cookies, int numbers[4]);
