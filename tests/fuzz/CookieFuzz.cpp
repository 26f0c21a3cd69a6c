// Cookies from outside: a sign-up reply's Set-Cookie lines, and texts through
// the WinInet store and back into buffers of every size.
#include <gtest/gtest.h>
#include <wininet.h>

#include <cstring>

#include "BoundedText.h"
#include "Fuzz.h"
#include "account/AccountExchanges.h"
#include "account/CookieStore.h"

namespace {
const Tokens cookieTokens = {"Set-Cookie:", "Set-Cookie: ", "set-cookie: ", "expires", "Expires=", "; expires = ",
                             "; path=/", ";", "=", " ", "passport=", "TavRinPartner=Partner*", std::string(1, '\0')};

std::string cookieText(CFuzzRandom& random)
{
    std::string text = (random.percent(70) ? random.pick(Tokens{"passport", "passportX", "RegistrationInfo", "a"})
                                           : random.text(random.length(20))) +
                       "=" + random.text(random.length(random.percent(5) ? 5000 : 40));
    for (size_t n = random.below(4); n > 0; --n)  // expiries to come and passed
        text +=
            random.pick(Tokens{"; expires = Sat, 01-Jan-2039 12:00:00 GMT", "; Expires=Sun, 02-Jan-2039 12:00:00 GMT",
                               "; expires=Sat, 01-Jan-2000 12:00:00 GMT", "; path=/", random.pick(cookieTokens)}) +
            random.text(random.length(30));
    return random.mutate(text, cookieTokens, 20, 4, 8000);
}

std::string allCookies(const std::string& url)
{
    char text[65536] = "";
    DWORD size = sizeof text;
    return InternetGetCookieA(url.c_str(), "", text, &size), text;
}
}  // namespace

TEST(Fuzz, SetCookieHeaders)
{
    runCases("set-cookie", 5000, [](CFuzzRandom& random) {
        std::string headers = "HTTP/1.1 200 OK" + std::string(1, '\0');
        for (size_t n = random.below(8); n > 0; --n) {
            std::string line = random.percent(60) ? random.pick(cookieTokens) + cookieText(random)
                                                  : random.text(random.length(random.percent(5) ? 2000 : 60));
            if (random.percent(10))
                line = "Set-Cookie: " + std::string(981 + random.below(3), 'k');  // 1,022 to 1,024 with the date
            headers += line.c_str() + std::string(1, '\0');
        }
        headers = random.mutate(headers + '\0', cookieTokens, 30, 5, 40000);
        const std::string expiry =
            random.percent(50) ? "Sat, 01-Jan-2039 12:00:00 GMT" : "Sat, 01-Jan-2000 12:00:00 GMT";
        std::vector<std::string> expected;
        for (size_t at = 0, length; at < headers.size() && headers[at]; at += length + 1) {
            const std::string line(headers.c_str() + at, length = strnlen(headers.c_str() + at, headers.size() - at));
            std::string text = line.size() > 12 ? line.substr(12) : "";  // behind the name, its colon and a blank
            if (!containsNoCase(text.c_str(), "expires")) text += "; expires = " + expiry;
            if (line.size() >= 11 && startsWithNoCase(line.c_str(), "Set-Cookie:") && text.size() < 1024)
                expected.push_back(text);
        }
        // A last line without its zero is read to the end of the block, not to the X behind it.
        EXPECT_EQ(expected, signUpCookies((headers + 'X').data(), headers.size(), expiry.c_str()));
    });
}

TEST(Fuzz, CookieStoreTexts)
{
    runCases("cookie store", 250, [](CFuzzRandom& random) {
        const std::string url =
            "http://c" + std::to_string(random.below(40)) + ".fuzz.test" + (random.percent(50) ? "/" : ":8080/p");
        for (size_t n = 1 + random.below(3); n > 0; --n) storeCookie(url.c_str(), cookieText(random).c_str());
        const std::string name = random.pick(Tokens{"passport", "RegistrationInfo", "a", "P", ""}),
                          cookies = allCookies(url);
        std::string first;  // the first piece that, behind white space, begins with the name
        for (size_t start = 0, end; first.empty() && start < cookies.size(); start = end + 1) {
            end = std::min(cookies.find(';', start), cookies.size());
            size_t from = std::min(cookies.find_first_not_of(" \t\r\n\v\f", start), end);
            if (startsWithNoCase(cookies.substr(from, end - from).c_str(), name.c_str()))
                first = cookies.substr(from, end - from) + ";";
        }
        DWORD size = 0xBADu;
        EXPECT_FALSE(readCookie(url.c_str(), name.c_str(), nullptr, size));
        if (first.empty()) {
            EXPECT_EQ(0xBADu, size) << "no such cookie: the size stays";
            return;
        }
        first.pop_back();
        // Any buffer, often one the piece fills exactly: never a byte past it, the first piece when it fits.
        const DWORD capacity =
            static_cast<DWORD>(random.percent(50) ? first.size() + random.below(3) : random.below(size + 8));
        std::string buffer(capacity + 16, '\xAB');
        const bool found = readCookie(url.c_str(), name.c_str(), &buffer[0], size = capacity);
        EXPECT_EQ(std::string(16, '\xAB'), buffer.substr(capacity)) << "written past the buffer";
        EXPECT_EQ(capacity >= first.size(), found) << "[" << cookies << "] " << name << " " << capacity;
        if (found) {
            EXPECT_EQ(first, buffer.substr(0, strnlen(buffer.c_str(), capacity)));
        }
    });
}

// Wine's store copies all that follows "expires=" into 128 characters when the date itself is shorter:
// a longer tail behind the date overran them. The store gets the expiry last, and only the last one.
TEST(FuzzRegression, ExpiryBeforeALongTail)
{
    const std::string url = "http://tail.fuzz.test/", tail(300, 'x'), date = "01-Jan-2039 12:00:00 GMT";
    for (const std::string& text :
         {"tail1=v; expires=Sat, " + date + "; path=/; x=" + tail,
          "tail2=w; expires = Sat, " + date + "; " + tail + "; Expires=Sun, " + date + "; path=",
          "tail3=gone; expires=Sat, " + date + "; x=" + tail + "; expires=Sat, 01-Jan-2000 12:00:00 GMT"})
        EXPECT_TRUE(storeCookie(url.c_str(), text.c_str())) << text;
    EXPECT_EQ("tail1=v; tail2=w", allCookies(url)) << "the last expiry of tail3, passed, counts";
}
