// The wizard's use of the partner's trailer: read once after extraction, and
// the partner cookie for the service's host once the description is loaded.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "BoundedText.h"
#include "Program.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"
#include "description/Branding.h"
#include "wizard/InstallWizard.h"

namespace {
const char cookieName[] = "TavRinPartner";
const char cookiePrefix[] = "TavRinPartner=";
const long long cookieLifetime = 86400;  // one day

// Digits with an optional sign; no digits give 0, and a longer number is held
// to the range of an int.
int toNumber(const char* text)
{
    long long value = std::strtoll(text, nullptr, 10);
    if (value > 0x7FFFFFFFLL) return 0x7FFFFFFF;
    if (value < -0x7FFFFFFFLL - 1) return -0x7FFFFFFF - 1;
    return static_cast<int>(value);
}

// The pieces of `text` between runs of `separators`; no piece is empty.
std::vector<std::string> tokens(const std::string& text, const char* separators)
{
    std::vector<std::string> out;
    size_t start = text.find_first_not_of(separators);
    while (start != std::string::npos) {
        size_t stop = text.find_first_of(separators, start);
        out.push_back(text.substr(start, stop == std::string::npos ? std::string::npos : stop - start));
        start = stop == std::string::npos ? stop : text.find_first_not_of(separators, stop);
    }
    return out;
}
}  // namespace

void partnerCookieText(const int numbers[4], const char* date, char* out, size_t size)
{
    if (!out || size == 0) return;
    formatText(out, size, "%sPartner*%d*%d*%d*%d; expires = %s; path=", cookiePrefix, numbers[0], numbers[1],
             numbers[2], numbers[3], date ? date : "");
}

void partnerNumbersFromCookie(const char* cookies, int numbers[4])
{
    for (std::string piece : tokens(cookies ? cookies : "", ";")) {
        size_t start = piece.find_first_not_of(' ');
        if (start == std::string::npos || !startsWithNoCase(piece.c_str() + start, cookiePrefix)) continue;
        std::vector<std::string> fields = tokens(piece.substr(start + sizeof cookiePrefix - 1), "*");
        // The first field is the word "Partner".
        for (size_t i = 1; i < fields.size() && i <= 4; ++i) numbers[i - 1] = toNumber(fields[i].c_str());
        return;
    }
}

int CInstallWizard::readBranding()
{
    char self[MAX_PATH] = "";
    if (!GetModuleFileNameA(moduleInstance, self, sizeof self)) return 0;
    return readBrandingTrailer(self, sourceFolder, branding);
}

int CInstallWizard::setPartnerCookie()
{
    int numbers[4] = {0, 0, 0, 0};
    const char* url = settings.serverRoot.c_str();
    DWORD size = 0;
    if (!readCookie(url, cookieName, nullptr, size) && size != 0) {
        std::vector<char> text(size + 1, 0);
        if (readCookie(url, cookieName, text.data(), size)) partnerNumbersFromCookie(text.data(), numbers);
    }
    // A cookie that is there wins over the trailer.
    if (numbers[0] == 0) numbers[0] = branding.partnerIdA;
    if (numbers[1] == 0) numbers[1] = branding.partnerIdB;
    if (!branding.present) return 1;

    SYSTEMTIME expiry;
    GetSystemTime(&expiry);
    addSeconds(expiry, cookieLifetime);
    char date[64];
    formatCookieDate(expiry, date, sizeof date);
    char text[1024];
    partnerCookieText(numbers, date, text, sizeof text);
    storeCookie(url, text);
    return 1;
}
