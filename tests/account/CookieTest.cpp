// Cookie dates, the cookie texts a sign-up reply yields, and the lookup rules
// of the cookie store. (What lasts into a later process: the sign-up's test.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "account/AccountExchanges.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"

namespace {
std::string later(WORD year, WORD month, WORD day, WORD hour, long long seconds)
{
    SYSTEMTIME t = {};
    t.wYear = year, t.wMonth = month, t.wDay = day, t.wHour = hour, t.wSecond = 5;
    addSeconds(t, seconds);
    char out[255];
    formatCookieDate(t, out, sizeof out);
    return out;
}
}  // namespace

TEST(CookieDate, AcrossTheEndsOfMonthAndYear)
{
    EXPECT_EQ("Sat, 01-Jan-2000 12:00:05 GMT", later(2000, 1, 1, 12, 0));
    EXPECT_EQ("Mon, 01-Jan-2024 06:00:05 GMT", later(2023, 12, 31, 18, ownCookieLifetime));
    EXPECT_EQ("Fri, 01-Mar-2024 08:00:05 GMT", later(2024, 2, 29, 20, 43200));
    EXPECT_EQ("Wed, 01-Mar-2023 02:00:05 GMT", later(2023, 2, 28, 14, 43200));
    EXPECT_EQ("Thu, 29-Feb-2024 23:59:55 GMT", later(2024, 3, 1, 0, -10));
}

TEST(SignUpCookies, EachSetCookieLineInOrder)
{
    const std::string when = "Sat, 01-Jan-2000 12:00:00 GMT";
    const char lines[] = "HTTP/1.1 200 OK\0Set-Cookie: passport=abc; path=/\0X-Note: Set-Cookie: no\0"
                         "set-cookie: a=b\0Set-Cookie:xy=1\0Set-Cookie: c=d; Expires=Sun, 02-Jan-2039\0"
                         "SET-COOKIE: note=expiresSoon\0Set-Cookie:\0\0Set-Cookie: after=end\0";
    std::string headers(lines, sizeof lines);
    headers.insert(headers.find(std::string("Set-Cookie:\0", 12)), "Set-Cookie: big=" + std::string(1000, 'v') + '\0');
    const std::vector<std::string> expected = {
        "passport=abc; path=/; expires = " + when, "a=b; expires = " + when,
        "y=1; expires = " + when,  // no blank behind the colon: a letter is lost
        "c=d; Expires=Sun, 02-Jan-2039", "note=expiresSoon", "; expires = " + when};
    EXPECT_EQ(expected, signUpCookies(headers.data(), headers.size(), when.c_str()));
}

TEST(ReadCookie, PrefixMatchAndSizes)
{
    const char* url = "http://cookies.account.test/";
    ASSERT_TRUE(storeCookie(url, "passportX=1"));
    ASSERT_TRUE(storeCookie(url, "passport=abc"));
    ASSERT_TRUE(storeCookie(url, "other=2"));
    DWORD size = 99;
    EXPECT_FALSE(readCookie(url, "passport", nullptr, size));
    EXPECT_EQ(13u, size);  // the last match, "passport=abc", and its zero
    char buffer[16];
    size = sizeof buffer;
    ASSERT_TRUE(readCookie("http://cookies.account.test:8080/x", "PASSPORT", buffer, size));
    EXPECT_STREQ("passportX=1", buffer);  // the first match, name included
    size = 6;
    EXPECT_FALSE(readCookie(url, "other", buffer, size));
    size = 7;
    memset(buffer, 'z', sizeof buffer);
    ASSERT_TRUE(readCookie(url, "other", buffer, size));
    EXPECT_EQ("other=2z", std::string(buffer, 8));  // filled exactly, no zero behind
    size = 55;
    EXPECT_FALSE(readCookie(url, "missing", nullptr, size));
    EXPECT_FALSE(readCookie("http://nothing.account.test/", "passport", nullptr, size));
    EXPECT_EQ(55u, size);
}
