// Cookie dates, the cookie texts a sign-up reply yields, and the cookie store:
// the program's lookup rules and what lasts into a later process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TestSupport.h"
#include "account/AccountExchanges.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"

namespace {
SYSTEMTIME at(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second)
{
    SYSTEMTIME t = {};
    t.wYear = year, t.wMonth = month, t.wDay = day;
    t.wHour = hour, t.wMinute = minute, t.wSecond = second;
    FILETIME f;
    SystemTimeToFileTime(&t, &f);
    FileTimeToSystemTime(&f, &t);  // fills the day of the week
    return t;
}

std::string date(const SYSTEMTIME& t, size_t size = 255)
{
    char out[255];
    formatCookieDate(t, out, size);
    return out;
}

std::string later(SYSTEMTIME t, long long seconds)
{
    addSeconds(t, seconds);
    return date(t);
}
}  // namespace

TEST(CookieDate, FormatAndTheEndsOfMonthAndYear)
{
    EXPECT_EQ("Sat, 01-Jan-2000 12:00:00 GMT", date(at(2000, 1, 1, 12, 0, 0)));
    EXPECT_EQ("Sat, 01-J", date(at(2000, 1, 1, 12, 0, 0), 10));
    EXPECT_EQ("Mon, 01-Jan-2024 06:30:00 GMT", later(at(2023, 12, 31, 18, 30, 0), ownCookieLifetime));
    EXPECT_EQ("Fri, 01-Mar-2024 08:00:05 GMT", later(at(2024, 2, 29, 20, 0, 5), 43200));
    EXPECT_EQ("Wed, 01-Mar-2023 02:00:00 GMT", later(at(2023, 2, 28, 14, 0, 0), 43200));
    EXPECT_EQ("Thu, 29-Feb-2024 23:59:50 GMT", later(at(2024, 3, 1, 0, 0, 10), -20));
    EXPECT_EQ("Tue, 19-Jan-2038 03:14:08 GMT", later(at(2038, 1, 19, 3, 14, 7), 1));  // past 32 bits
}

TEST(SignUpCookies, EachSetCookieLineInOrder)
{
    const std::string expiry = "Sat, 01-Jan-2000 12:00:00 GMT";
    std::string tooLong = "Set-Cookie: big=" + std::string(1000, 'v');
    std::string headers = std::string("HTTP/1.1 200 OK") + '\0' + "Set-Cookie: passport=abc; path=/" +
                          '\0' + "X-Note: Set-Cookie: not=this" + '\0' + "set-cookie: a=b" + '\0' +
                          "Set-Cookie:xy=1" + '\0' + "Set-Cookie: c=d; Expires=Sun, 02-Jan-2039 00:00:00 GMT" +
                          '\0' + "SET-COOKIE: note=expiresSoon" + '\0' + tooLong + '\0' + "Set-Cookie:" +
                          '\0' + '\0' + "Set-Cookie: after=end" + '\0' + '\0';
    std::vector<std::string> cookies = signUpCookies(headers.data(), headers.size(), expiry.c_str());
    const std::vector<std::string> expected = {
        "passport=abc; path=/; expires = " + expiry,
        "a=b; expires = " + expiry,
        "=1; expires = " + expiry,  // no blank behind the colon: the value loses a letter
        "c=d; Expires=Sun, 02-Jan-2039 00:00:00 GMT",
        "note=expiresSoon",  // "expires" anywhere counts
        "; expires = " + expiry,
    };
    EXPECT_EQ(expected, cookies);

    // Headers cut short, without their empty last string, are not read past.
    std::string cut = "HTTP/1.1 200 OK";
    cut += '\0';
    cut += "Set-Cookie: q=1";
    EXPECT_EQ(std::vector<std::string>{"q=1; expires = " + expiry},
              signUpCookies(cut.data(), cut.size(), expiry.c_str()));
    EXPECT_TRUE(signUpCookies("", 0, expiry.c_str()).empty());
}

TEST(ReadCookie, PrefixMatchAndSizes)
{
    const char* url = "http://cookies.account.test/any/path";
    ASSERT_TRUE(storeCookie(url, "passportX=1"));
    ASSERT_TRUE(storeCookie(url, "passport=abc"));
    ASSERT_TRUE(storeCookie(url, "other=2"));

    DWORD size = 99;
    EXPECT_FALSE(readCookie(url, "passport", nullptr, size));
    EXPECT_EQ(13u, size);  // the last match: "passport=abc" and its zero
    char buffer[32];
    size = sizeof buffer;
    ASSERT_TRUE(readCookie(url, "PASSPORT", buffer, size));
    EXPECT_STREQ("passportX=1", buffer);  // the first match, name included
    size = sizeof buffer;
    ASSERT_TRUE(readCookie("http://cookies.account.test:8080/", "oth", buffer, size));
    EXPECT_STREQ("other=2", buffer);

    size = 6;
    memset(buffer, 'z', sizeof buffer);
    EXPECT_FALSE(readCookie(url, "other", buffer, size));  // 7 bytes do not go into 6
    size = 7;
    memset(buffer, 'z', sizeof buffer);
    ASSERT_TRUE(readCookie(url, "other", buffer, size));
    EXPECT_EQ("other=2z", std::string(buffer, 8));  // exactly filled, no zero written

    size = 55;
    EXPECT_FALSE(readCookie(url, "missing", nullptr, size));
    EXPECT_EQ(55u, size);
    EXPECT_FALSE(readCookie("http://nothing.account.test/", "passport", nullptr, size));
    EXPECT_EQ(55u, size);
}

TEST(StoreCookie, ExpiryWithBlanksLastsIntoALaterProcess)
{
    SYSTEMTIME tomorrow;
    GetSystemTime(&tomorrow);
    addSeconds(tomorrow, 86400);
    char when[255];
    formatCookieDate(tomorrow, when, sizeof when);
    const char* url = "http://keep.account.test/";
    ASSERT_TRUE(storeCookie(url, (std::string("kept=1; expires = ") + when).c_str()));
    ASSERT_TRUE(storeCookie(url, (std::string("again=1; path=/; EXPIRES=") + when).c_str()));
    // Set again in the same form: the stored one must not be dropped.
    ASSERT_TRUE(storeCookie(url, (std::string("again=2; path=/;expires  =  ") + when).c_str()));
    ASSERT_TRUE(storeCookie(url, "session=1"));

    EXPECT_EQ("kept=1", runSelf(std::string("--read-cookie ") + url + " kept", {}));
    EXPECT_EQ("again=2", runSelf(std::string("--read-cookie ") + url + " again", {}));
    DWORD code = 0;
    EXPECT_EQ("", runSelf(std::string("--read-cookie ") + url + " session", {}, &code));
    EXPECT_EQ(1u, code);  // a cookie without expiry stays with its process
}
