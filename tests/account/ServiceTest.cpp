// Through Wine's real WinInet against the reference service: one form POST,
// the check of the details as the progress page runs it, and the partner
// cookie in the real cookie store. (Odd replies: the fuzz tests.)
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "account/AccountDetails.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"
#include "wizard/InstallWizard.h"

TEST(Service, PostCarriesTheFormAndTheStoresCookies)
{
    ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
    CInternetSession session;
    CBoxAnswerer boxes;
    ASSERT_TRUE(storeCookie(serviceUrl().c_str(), "first=1"));
    ASSERT_TRUE(storeCookie(serviceUrl().c_str(), "second=2"));
    CReplyHolder missing(session.postForm((serviceUrl() + "/seen/here?secret=1").c_str(), "Command=cu&v=%26", 16));
    ASSERT_TRUE(missing);
    EXPECT_EQ(404u, missing->statusCode);
    EXPECT_EQ(0, strncmp(missing->headers.text(), "HTTP/1.1 404", 12));
    EXPECT_EQ(0, missing->headers.text()[missing->headers.size() - 2]);  // an empty string ends them
    std::vector<SeenRequest> seen = lastRequests(1);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ("/seen/here", seen[0].path);
    EXPECT_EQ("", seen[0].query);  // the query string stays behind
    EXPECT_EQ("Command=cu&v=%26", seen[0].body);
    EXPECT_EQ(1, seen[0].count("Content-Type"));
    ASSERT_EQ(1, seen[0].count("Cookie"));  // all of the host's in one header
    for (const auto& header : seen[0].headers)
        EXPECT_TRUE(header.first != "Cookie" || header.second.find("first=1; second=2") != std::string::npos);

    EXPECT_EQ(nullptr, session.postForm("http://127.0.0.1:1/x", "a=b", 3));  // no server: no reply, one box
    EXPECT_EQ(std::vector<std::string>{"box:The attempt to connect to the server failed."}, boxes.stop());
}

TEST(Service, CheckOfTheDetailsPassesOrSaysWhyNot)
{
    clearFaults();
    AccountDetails details;
    std::string user = "acct" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
    details.CommandAction = "Add", details.UserCode = user, details.Email = user + "@mail.example";
    details.Password = details.RepeatPassword = "se cret+&", details.PasswordHint = "usual";
    details.Gender = "F", details.Zip = "90210", details.AgeRange = 23, details.Country = 1;
    CBoxAnswerer none;
    serviceCall("/__sessions", "required=1");  // each reply sets a session cookie, kept by WinInet
    EXPECT_TRUE(details.validateUserData(registrationUrl().c_str()) &&
                details.validateUserData(registrationUrl().c_str()));
    serviceCall("/__sessions", "required=0");
    SeenRequest seen = lastRequests(1).at(0);
    EXPECT_EQ(0u, seen.body.find("Command=cu&CommandAction=Add&"));
    for (const auto& header : seen.headers)
        EXPECT_TRUE(header.first != "Cookie" || header.second.find("session=") != std::string::npos) << header.second;
    EXPECT_EQ(1, seen.count("Cookie"));
    EXPECT_TRUE(none.stop().empty());
    addFault("path=/servlet/&status=500&content_type=text/html&body=%3chtml%3e%0d%0aInternal+Error%3c/html%3e");
    CBoxAnswerer refused;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ("Error Validating User Information...", details.errorText);
    EXPECT_EQ(std::vector<std::string>{"list:<html>\r\nInternal Error</html>"}, refused.stop());
    CBoxAnswerer unreachable;
    EXPECT_FALSE(details.validateUserData("http://127.0.0.1:1/servlet/x"));
    EXPECT_EQ("Timed Out Connecting to Server...", details.errorText);
    EXPECT_EQ(1u, unreachable.stop().size());
    clearFaults();
}

TEST(PartnerCookie, ACookieThereWinsOverTheTrailerAndAPlainCopyWritesNone)
{
    const struct {
        const char* host;
        int partnerA;  // 0: a plain copy
        const char* before;  // null for none
        const char* after;
    } cases[] = {
        {"http://wins.partner.test", 1, "TavRinPartner=Partner*7*8*9*10", "TavRinPartner=Partner*7*8*9*10"},
        {"http://half.partner.test", 1, "TavRinPartner=Partner*0*8", "TavRinPartner=Partner*1*8*0*0"},
        {"http://sign.partner.test", 1, "TavRinPartner=Partner*-5*x", "TavRinPartner=Partner*-5*2*0*0"},
        {"http://none.partner.test", 1, nullptr, "TavRinPartner=Partner*1*2*0*0"},
        {"http://plain.partner.test", 0, "TavRinPartner=Partner*0*8", "TavRinPartner=Partner*0*8"},
        {"http://nothing.partner.test", 0, nullptr, "(none)"},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(!c.before || storeCookie(c.host, c.before));
        CInstallWizard wizard(false);
        wizard.settings.serverRoot = c.host;
        wizard.branding.present = c.partnerA != 0;
        wizard.branding.partnerIdA = c.partnerA;
        wizard.branding.partnerIdB = 2;
        EXPECT_EQ(1, wizard.setPartnerCookie());
        char text[256] = "(none)";
        DWORD size = sizeof text;
        readCookie((std::string(c.host) + "/").c_str(), "TavRinPartner", text, size);
        EXPECT_STREQ(c.after, text) << c.host;
    }
}
