// Cookies: the Set-Cookie lines of a sign-up reply, texts through the WinInet
// store and back with buffers of every size, cookie dates, and the partner
// cookie's numbers.
#include <gtest/gtest.h>
#include <windows.h>
#include <wininet.h>

#include <cstdio>
#include <cstring>

#include "BoundedText.h"
#include "Fuzz.h"
#include "account/AccountExchanges.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"
#include "description/Branding.h"

namespace {
const std::vector<std::string> cookieTokens = {
    "Set-Cookie:", "Set-Cookie: ", "set-cookie: ", "SET-COOKIE:", "expires", "Expires=", "; expires = ",
    "; path=", "; path=/", ";", "=", " ", "passport=", "TavRinPartner=Partner*", "*", "-", std::string(1, '\0')};

std::string cookieDate(CFuzzRandom& random)
{
    SYSTEMTIME time;
    GetSystemTime(&time);
    addSeconds(time, static_cast<long long>(random.below(4000000)) - 1000000);
    char text[64];
    formatCookieDate(time, text, sizeof text);
    return text;
}

std::string cookieText(CFuzzRandom& random)
{
    static const std::vector<std::string> names = {"passport", "passportX", "RegistrationInfo", "TavRinPartner", "a"};
    std::string text = (random.percent(70) ? random.pick(names) : random.text(random.length(20))) + "=" +
                       random.text(random.length(random.percent(5) ? 5000 : 40));
    for (size_t n = random.below(4); n > 0; --n) {
        switch (random.below(5)) {
        case 0: text += "; expires = " + cookieDate(random); break;
        case 1: text += "; Expires=" + cookieDate(random); break;
        case 2: text += random.percent(50) ? "; path=" : "; path=/"; break;
        default: text += random.pick(cookieTokens) + random.text(random.length(30));
        }
    }
    return random.percent(20) ? random.mutate(text, cookieTokens, 1 + static_cast<int>(random.below(4)), 8000) : text;
}

// The first ";" piece of `cookies` whose start, behind white space, is `name`.
bool firstPiece(const std::string& cookies, const std::string& name, std::string& piece)
{
    for (size_t start = 0; start < cookies.size();) {
        size_t end = cookies.find(';', start);
        if (end == std::string::npos) end = cookies.size();
        size_t from = start;
        while (from < end && std::isspace(static_cast<unsigned char>(cookies[from]))) ++from;
        if (startsWithNoCase(cookies.substr(from, end - from).c_str(), name.c_str())) {
            piece = cookies.substr(from, end - from);
            return true;
        }
        start = end + 1;
    }
    return false;
}

std::string allCookies(const std::string& url)
{
    DWORD size = 0;
    if (!InternetGetCookieA(url.c_str(), "", nullptr, &size) || size == 0) return "";
    std::vector<char> text(size + 1, 0);
    InternetGetCookieA(url.c_str(), "", text.data(), &size);
    return text.data();
}
}  // namespace

TEST(Fuzz, SetCookieHeaders)
{
    runCases("set-cookie", 5000, [](CFuzzRandom& random) {
        std::string headers = "HTTP/1.1 200 OK";
        headers += '\0';
        for (size_t n = random.below(8); n > 0; --n) {
            std::string line = random.percent(60) ? random.pick(cookieTokens) + cookieText(random)
                                                  : random.text(random.length(random.percent(5) ? 2000 : 60));
            headers += line.c_str();
            headers += '\0';
        }
        headers += '\0';
        if (random.percent(30)) headers = random.mutate(headers, cookieTokens, 1 + static_cast<int>(random.below(5)), 40000);
        const std::string expiry = cookieDate(random);

        std::vector<std::string> expected;
        for (size_t at = 0; at < headers.size() && headers[at];) {
            std::string line(headers.c_str() + at, strnlen(headers.c_str() + at, headers.size() - at));
            at += line.size() + 1;
            if (line.size() < 11 || !startsWithNoCase(line.c_str(), "Set-Cookie:")) continue;
            std::string text = line.size() > 12 ? line.substr(12) : "";
            if (!containsNoCase(text.c_str(), "expires")) text += "; expires = " + expiry;
            if (text.size() < 1024) expected.push_back(text);
        }
        // A block whose last line has no zero of its own is read up to its end,
        // and not a byte further: one more stands behind it that would show.
        std::vector<char> block(headers.begin(), headers.end());
        block.push_back('X');
        EXPECT_EQ(expected, signUpCookies(block.data(), headers.size(), expiry.c_str()));
    });
}

TEST(Fuzz, CookieStoreTexts)
{
    runCases("cookie store", 250, [](CFuzzRandom& random) {
        const std::string url = "http://c" + std::to_string(random.below(40)) + ".fuzz.test" +
                                (random.percent(50) ? "/" : ":8080/path");
        for (size_t n = 1 + random.below(3); n > 0; --n) storeCookie(url.c_str(), cookieText(random).c_str());
        static const std::vector<std::string> names = {"passport", "TavRinPartner", "RegistrationInfo", "a", "P", ""};
        const std::string name = random.pick(names), cookies = allCookies(url);

        DWORD size = 0xBADu;
        EXPECT_FALSE(readCookie(url.c_str(), name.c_str(), nullptr, size));
        std::string first;
        if (!firstPiece(cookies, name, first)) {
            EXPECT_EQ(0xBADu, size) << "no such cookie: the size stays";
            return;
        }
        EXPECT_GE(size, 1u);
        // Any buffer: never a byte written past its size, the first piece when it fits.
        DWORD capacity = static_cast<DWORD>(random.percent(50) ? first.size() + random.below(3) : random.below(size + 8));
        std::string buffer(capacity + 16, '\xAB');
        DWORD given = capacity;
        bool found = readCookie(url.c_str(), name.c_str(), &buffer[0], given);
        EXPECT_EQ(std::string(16, '\xAB'), buffer.substr(capacity)) << "written past the buffer";
        EXPECT_EQ(capacity >= first.size(), found) << "[" << cookies << "] " << name << " " << capacity;
        if (found) { EXPECT_EQ(first, buffer.substr(0, strnlen(buffer.c_str(), capacity))); }
    });
}

TEST(Fuzz, CookieDates)
{
    runCases("cookie date", 5000, [](CFuzzRandom& random) {
        SYSTEMTIME time;
        if (random.percent(70)) {  // a real moment, from the whole range of FILETIME
            ULARGE_INTEGER units;
            units.QuadPart = random.next() >> (1 + random.below(20));
            FILETIME file = {units.LowPart, units.HighPart};
            if (!FileTimeToSystemTime(&file, &time)) return;
        } else {
            WORD* fields = &time.wYear;
            for (int i = 0; i < 8; ++i) fields[i] = static_cast<WORD>(random.percent(50) ? random.next() : random.below(70));
        }
        static const long long spans[] = {0, 1, -1, 43200, 86400, 1LL << 31, 922337203685LL, 922337203686LL,
                                          0x7FFFFFFFFFFFFFFFLL, -0x7FFFFFFFFFFFFFFFLL - 1};
        long long seconds = random.percent(50) ? spans[random.below(10)]
                                               : static_cast<long long>(random.next() >> random.below(64));
        if (random.percent(50)) seconds = -seconds;

        FILETIME before, after;
        bool valid = SystemTimeToFileTime(&time, &before);
        SYSTEMTIME moved = time;
        addSeconds(moved, seconds);
        ULARGE_INTEGER from = {{before.dwLowDateTime, before.dwHighDateTime}};
        // The exact sum, where it stays within FILETIME's range; else the time as it was.
        long double target = valid ? static_cast<long double>(from.QuadPart) + seconds * 1e7L : -1;
        if (valid && target >= 0 && target < 9.2e18L) {
            ASSERT_TRUE(SystemTimeToFileTime(&moved, &after));
            ULARGE_INTEGER to = {{after.dwLowDateTime, after.dwHighDateTime}};
            EXPECT_EQ(static_cast<long long>(to.QuadPart - from.QuadPart), seconds * 10000000LL);
        } else if (valid && (target < -1e7L || target > 9.3e18L)) {
            EXPECT_EQ(0, std::memcmp(&moved, &time, sizeof time)) << "a move out of range changes nothing";
        }

        // The text: cut to any size, never past it; in whole, the fields again.
        size_t size = random.below(40);
        std::string out(size + 8, '\xAB');
        formatCookieDate(time, &out[0], size);
        EXPECT_EQ(std::string(8, '\xAB'), out.substr(size));
        if (size) { EXPECT_LT(strnlen(out.c_str(), size), size); }
        if (!valid || time.wDayOfWeek > 6 || size < 31) return;  // a real moment, whole
        char day[8] = "", month[8] = "";
        int d = -1, y = -1, h = -1, m = -1, s = -1;
        ASSERT_EQ(7, std::sscanf(out.c_str(), "%3[A-Za-z], %2d-%3[A-Za-z]-%5d %2d:%2d:%2d GMT", day, &d, month, &y, &h, &m, &s))
            << out.c_str();
        EXPECT_EQ(time.wYear > 9999 ? 30u : 29u, std::strlen(out.c_str()));
        EXPECT_EQ(std::string("SunMonTueWedThuFriSat").substr(time.wDayOfWeek * 3, 3), day);
        EXPECT_EQ(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").substr((time.wMonth - 1) * 3, 3), month);
        EXPECT_TRUE(d == time.wDay && y == time.wYear && h == time.wHour && m == time.wMinute && s == time.wSecond);
    });
}

TEST(Fuzz, PartnerCookies)
{
    runCases("partner cookie", 5000, [](CFuzzRandom& random) {
        std::string cookies;
        for (size_t n = random.below(4); n > 0; --n) {
            if (random.percent(50)) {
                cookies += random.pick(cookieTokens) + "Partner";
                for (size_t f = random.below(6); f > 0; --f)
                    cookies += std::string(1 + random.below(2), '*') +
                               (random.percent(70) ? std::to_string(static_cast<long long>(random.next()) >> random.below(64))
                                                   : random.text(random.length(12)));
            } else {
                cookies += cookieText(random);
            }
            cookies += random.percent(80) ? "; " : ";";
        }
        int numbers[4] = {11, 22, 33, 44};
        partnerNumbersFromCookie(cookies.c_str(), numbers);
        std::string piece;
        if (!firstPiece(cookies, "TavRinPartner=", piece)) {
            EXPECT_TRUE(numbers[0] == 11 && numbers[1] == 22 && numbers[2] == 33 && numbers[3] == 44) << cookies;
        }

        size_t size = random.below(120);
        std::string out(size + 8, '\xAB');
        partnerCookieText(numbers, random.text(random.length(300)).c_str(), &out[0], size);
        EXPECT_EQ(std::string(8, '\xAB'), out.substr(size));
        if (size > 22) { EXPECT_EQ(0u, std::string(out.c_str()).find("TavRinPartner=Partner*")); }
    });
}

// Wine's store copies all that follows "expires=" into a buffer of 128
// characters when the date itself is shorter: a longer tail behind the date
// overran it. The store gets the expiry last, and only the last one.
TEST(FuzzRegression, ExpiryBeforeALongTail)
{
    const char* url = "http://tail.fuzz.test/";
    const std::string tail(300, 'x');
    EXPECT_TRUE(storeCookie(url, ("tail1=v; expires=Sat, 01-Jan-2039 12:00:00 GMT; path=/; x=" + tail).c_str()));
    EXPECT_TRUE(storeCookie(url, ("tail2=w; expires = Sat, 01-Jan-2039 12:00:00 GMT; " + tail + "; Expires=Sun, "
                                  "02-Jan-2039 12:00:00 GMT; path=").c_str()));
    EXPECT_TRUE(storeCookie(url, ("tail3=gone; expires=Sat, 01-Jan-2039 12:00:00 GMT; x=" + tail +
                                  "; expires=Sat, 01-Jan-2000 12:00:00 GMT").c_str()))
        << "the last expiry counts: this one has passed";
    const std::string cookies = allCookies(url);
    EXPECT_NE(std::string::npos, cookies.find("tail1=v")) << cookies;
    EXPECT_NE(std::string::npos, cookies.find("tail2=w")) << cookies;
    EXPECT_EQ(std::string::npos, cookies.find("tail3")) << cookies;
}

// A move that overflowed on its way used to land on some other date.
TEST(FuzzRegression, MovesBeyondTheRangeOfFileTimeChangeNothing)
{
    const SYSTEMTIME leapDay = {2024, 2, 4, 29, 20, 0, 5, 0};
    for (long long seconds : {0x7FFFFFFFFFFFFFFFLL, -0x7FFFFFFFFFFFFFFFLL - 1, 922337203686LL, 1LL << 40,
                              -14000000000LL /* before 1601 */}) {
        SYSTEMTIME moved = leapDay;
        addSeconds(moved, seconds);
        EXPECT_EQ(0, std::memcmp(&moved, &leapDay, sizeof moved)) << seconds;
    }
    SYSTEMTIME moved = leapDay;
    addSeconds(moved, 43200);
    EXPECT_TRUE(moved.wMonth == 3 && moved.wDay == 1 && moved.wHour == 8 && moved.wDayOfWeek == 5);
}
