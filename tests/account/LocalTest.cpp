// Without the service: the form on the wire, its time zone, a sign-up's cookie
// texts, the cookie store's lookup, the offline roads Wine never takes, and the
// walk of the Favorites. (Cookie dates: the fuzz tests, with a reckoning of their own.)
#include <gtest/gtest.h>

#include <wininet.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "FolderLink.h"
#include "account/AccountDetails.h"
#include "account/AccountExchanges.h"
#include "account/CookieDate.h"
#include "account/ConnectionState.h"
#include "account/CookieStore.h"
#include "account/FavoritesImport.h"
#include "account/FormEncoding.h"
#include "account/MachineIdentity.h"

TEST(Form, AllKeysInOrderEscapedByByte)
{
    AccountDetails d;
    d.Command = "cu", d.CommandAction = "AddTrial", d.Email = "bo@x.example", d.FirstName = "Bo";
    d.LastName = "O'Lee Smith", d.Gender = "F", d.Industry = 3, d.NewServices = 1, d.Occupation = 12;
    d.Password = d.RepeatPassword = "p+ss w&rd", d.PasswordHint = "the usual?", d.UserCode = "bo";
    d.Zip = "N1 9GU", d.Country = -1, d.AgeRange = 23, d.Phone = "+1 (555) 010";
    d.company_name = "Smith & Sons, Inc.", d.number_of_employees = 20, d.company_type = "Small Business";
    d.JobTitle = "CEO/Owner", d.website = "http://smith.example/~home?a=1";
    d.buildForm();
    d.buildForm();  // anew, not appended
    EXPECT_EQ("Command=cu&CommandAction=AddTrial&Email=bo@x.example&FirstName=Bo&Gender=F&LastName=O'Lee+Smith"
              "&Industry=3&NewServices=Y&Occupation=12&Password=p+ss+w%26rd&RepeatPassword=p+ss+w%26rd"
              "&PasswordHint=the+usual%3f&UserCode=bo&Zip=N1+9GU&Country=-1&AgeRange=23&Phone=+1+(555)+010"
              "&company_name=Smith+%26+Sons,+Inc.&number_of_employees=20&company_type=Small+Business"
              "&JobTitle=CEO/Owner&website=http://smith.example/%7ehome%3fa=1&MID=" + machineIdentity() +
              "&TimeZone=" + currentTimeZone(), d.formBody);

    auto escaped = [](const std::string& value) {
        std::string out;
        urlEscape(value.c_str(), out, 555);
        return out;
    };
    EXPECT_EQ("%0a%7f%e9%01%1f%ff%80", escaped("\x0a\x7f\xe9\x01\x1f\xff\x80"));
    EXPECT_EQ("%3c%3e%22%23%25%7b%7d%7c%5c%5e%7e%5b%5d%60%26%3f", escaped("<>\"#%{}|\\^~[]`&?"));
    EXPECT_EQ("+=/:;@,$'()!*-_.", escaped("+=/:;@,$'()!*-_."));
    // 185 escaped bytes fill 555 exactly; more is cut, also inside a group.
    EXPECT_EQ(555u, escaped(std::string(185, '\xe9')).size());
    EXPECT_EQ(escaped(std::string(185, '\xe9')), escaped(std::string(186, '\xe9')));
    EXPECT_EQ("x%3", escaped(std::string(184, '<') + "x<").substr(552));
}

TEST(Form, TimeZoneByHalfHoursWest)
{
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_UNKNOWN, 0));  // whatever the bias
    EXPECT_STREQ("PST", timeZoneName(TIME_ZONE_ID_INVALID, 300));
    EXPECT_STREQ("EST", timeZoneName(TIME_ZONE_ID_DAYLIGHT, 300));
    // Under half an hour, -11.5 half hours truncated to -11, the first and last
    // rows, a half-hour row, and biases without a row.
    const std::pair<LONG, const char*> rows[] = {{29, "GMT"},  {-330, "IST"}, {-345, "IST"}, {-660, "SST"},
                                                 {720, "NST"}, {210, "AGT"},  {-720, "PST"}, {45, "PST"}};
    for (const auto& r : rows) EXPECT_STREQ(r.second, timeZoneName(TIME_ZONE_ID_STANDARD, r.first)) << r.first;
}

TEST(Cookies, TextsOfASignUpAndLookup)
{
    // Each Set-Cookie line in order; 1,023 bytes are kept, 1,024 dropped.
    const std::string when = "Sat, 01-Jan-2000 12:00:00 GMT", longest = "big=" + std::string(978, 'v');
    std::string headers;
    for (const std::string& line : std::vector<std::string>{
             "HTTP/1.1 200 OK", "Set-Cookie: passport=abc; path=/", "X-Note: Set-Cookie: no", "set-cookie: a=b",
             "Set-Cookie:xy=1", "Set-Cookie: c=d; Expires=Sun, 02-Jan-2039", "SET-COOKIE: note=expiresSoon",
             "Set-Cookie: " + longest, "Set-Cookie: " + longest + "v", "Set-Cookie:"})
        headers += line + '\0';
    headers += std::string("\0Set-Cookie: after=end\0", 23);
    const std::vector<std::string> expected = {
        "passport=abc; path=/; expires = " + when, "a=b; expires = " + when,
        "y=1; expires = " + when,  // no blank behind the colon: a letter is lost
        "c=d; Expires=Sun, 02-Jan-2039", "note=expiresSoon", longest + "; expires = " + when, "; expires = " + when};
    EXPECT_EQ(expected, signUpCookies(headers.data(), headers.size(), when.c_str()));

    const char* url = "http://cookies.account.test/";
    for (const char* cookie : {"passportX=1", "passport=abc", "other=2"}) ASSERT_TRUE(storeCookie(url, cookie));
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
    EXPECT_FALSE(readCookie("http://nothing.account.test/", "passport", nullptr, size));
    EXPECT_EQ(55u, size);

    // An expiry moved beyond the range of a file time once landed on another date.
    const SYSTEMTIME leapDay = {2024, 2, 4, 29, 20, 0, 5, 0};
    for (long long seconds : {0x7FFFFFFFFFFFFFFFLL, -0x7FFFFFFFFFFFFFFFLL - 1, 1LL << 40, -14000000000LL, 43200LL}) {
        SYSTEMTIME moved = leapDay;
        addSeconds(moved, seconds);
        EXPECT_EQ(seconds == 43200 ? 3 : 2, moved.wMonth) << seconds;
        EXPECT_EQ(seconds == 43200 ? 8 : 20, moved.wHour) << seconds;
    }
}

namespace {
// The platform's answers (connection flags, whether the query works, the
// state, whether going online or dialling succeeds), and the calls made.
struct Answers { DWORD flags; BOOL queryWorks; DWORD state; BOOL succeeds; } given;
std::string calls;
const CConnectionCalls fake = {
    [](DWORD* flags) { return calls += "state ", *flags = given.flags, TRUE; },
    [](DWORD* state) { return calls += "query ", *state = given.state, given.queryWorks; },
    [] { return calls += "online ", given.succeeds; }, [] { return calls += "dial ", given.succeeds; }};

std::string road(Answers answers)
{
    given = answers, calls.clear();
    return std::string(connectionMissing(fake) ? "missing: " : "ready: ") + calls;
}
}  // namespace

TEST(Offline, ConnectionRoads)
{
    const DWORD lan = INTERNET_CONNECTION_LAN, modem = INTERNET_CONNECTION_MODEM;
    const DWORD on = INTERNET_STATE_CONNECTED, off = INTERNET_STATE_DISCONNECTED_BY_USER;
    EXPECT_EQ("ready: state query ", road({lan, TRUE, on, FALSE}));
    // Set offline by the user: the go-online question, and the LAN is not looked at.
    EXPECT_EQ("missing: state query online ", road({lan, TRUE, off, FALSE}));
    EXPECT_EQ("ready: state query online ", road({lan, TRUE, off, TRUE}));
    EXPECT_EQ("ready: state query dial ", road({modem, TRUE, on, TRUE}));
    EXPECT_EQ("missing: state query dial ", road({modem, TRUE, on, FALSE}));
    // A query that fails counts as not offline.
    EXPECT_EQ("ready: state query ", road({lan, FALSE, off, FALSE}));
    EXPECT_EQ("missing: state query dial ", road({0, FALSE, off, FALSE}));
    EXPECT_FALSE(connectionMissing());  // Wine: a connected LAN
}

TEST(Favorites, AJunctionIsNotWalked)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + "tvwalk" + std::to_string(GetCurrentProcessId());
    for (const char* name : {"", "-elsewhere"}) CreateDirectoryA((folder + name).c_str(), nullptr);
    for (const char* name : {"\\A.url", "-elsewhere\\B.url"})
        WritePrivateProfileStringA("InternetShortcut", "URL", "http://a/", (folder + name).c_str());
    std::string body;
    {
        FolderLink linked(folder + "\\Linked", folder + "-elsewhere");  // to C:\, say
        EXPECT_TRUE(linked.listsAsJunction());
        walkFavorites(folder.c_str(), "\\", body);
    }
    EXPECT_EQ(body, "\\A\xFFhttp://a/\r\n");
    for (const char* name : {"\\A.url", "-elsewhere\\B.url"}) DeleteFileA((folder + name).c_str());
    for (const char* name : {"", "-elsewhere"}) RemoveDirectoryA((folder + name).c_str());
}
