// The check and the sign-up against the reference service, as the progress
// page runs them, and the cookies a sign-up leaves for a later run.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "account/AccountDetails.h"
#include "account/CookieStore.h"

namespace {
class Exchange : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
        user = "acct" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
        details.CommandAction = "Add", details.UserCode = user, details.Email = user + "@mail.example";
        details.Password = details.RepeatPassword = "se cret+&";
        details.PasswordHint = "usual", details.Gender = "F", details.Zip = "90210";
        details.AgeRange = 23, details.Country = 1;
    }
    void TearDown() override { clearFaults(); }
    std::string user;
    AccountDetails details;
};
}  // namespace

TEST_F(Exchange, ValidationPassesOrShowsWhyNot)
{
    CBoxAnswerer none;
    EXPECT_TRUE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ(0u, lastRequests(1).at(0).body.find("Command=cu&CommandAction=Add&"));
    EXPECT_TRUE(none.stop().empty());

    details.RepeatPassword = "other";
    details.Zip = "";
    CBoxAnswerer refused;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ("Error Validating User Information...", details.errorText);
    EXPECT_EQ(std::vector<std::string>{"list:Your repeat password does not match your password\r\n"
                                       "Please type in your zip code\r\n"},
              refused.stop());

    CBoxAnswerer quiet;
    EXPECT_FALSE(details.validateUserData((serviceUrl() + "/servlet/missing").c_str()));
    EXPECT_EQ("Error connecting to Tavrin Servers...", details.errorText);
    EXPECT_TRUE(quiet.stop().empty());

    addFault("path=/servlet/&status=500&content_type=text/html&body="
             "%3chtml%3e%0d%0a%3cbody%3eInternal+Error%3c/body%3e%0d%0a%3c/html%3e");
    CBoxAnswerer html;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ(std::vector<std::string>{"list:<html>\r\n<body>Internal Error</body>\r\n</html>"},
              html.stop());

    addFault("path=/servlet/&status=503");
    CBoxAnswerer empty;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ(std::vector<std::string>{"box:Error Registring User.  Please check your internet connection."},
              empty.stop());

    CBoxAnswerer unreachable;
    EXPECT_FALSE(details.validateUserData("http://127.0.0.1:1/servlet/x"));
    EXPECT_EQ("Timed Out Connecting to Server...", details.errorText);
    EXPECT_EQ(1u, unreachable.stop().size());
}

TEST_F(Exchange, SignUpStoresItsCookiesForALaterRun)
{
    CBoxAnswerer none;
    ASSERT_TRUE(details.registerUser(nullptr, registrationUrl().c_str(), "Add"));
    EXPECT_TRUE(none.stop().empty());
    EXPECT_EQ(0u, lastRequests(1).at(0).body.find("Command=Add&CommandAction=Add&"));
    std::vector<std::string> account = jsonStrings(serviceCall("/__account?user=" + user));
    std::string passport;
    for (size_t i = 0; i + 1 < account.size(); ++i)
        if (account[i] == "passports") passport = account[i + 1];
    ASSERT_FALSE(passport.empty());
    // WinInet keeps a reply's cookies for its own process only: a later process
    // sees what the program stored, with the program's expiry.
    EXPECT_EQ("passport=" + passport, runSelf("--read-cookie http://127.0.0.1/ passport"));
    EXPECT_EQ("RegistrationInfo=" + user, runSelf("--read-cookie http://127.0.0.1/ RegistrationInfo"));
    // Gone again, or later programs in this prefix would find an account.
    for (const char* name : {"passport", "RegistrationInfo"})
        storeCookie("http://127.0.0.1/", (std::string(name) + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT").c_str());

    CBoxAnswerer taken;
    EXPECT_FALSE(details.registerUser(nullptr, registrationUrl().c_str(), "Add"));
    std::vector<std::string> shown = taken.stop();
    ASSERT_EQ(1u, shown.size());
    EXPECT_NE(std::string::npos, shown[0].find("is already taken")) << shown[0];

    CBoxAnswerer noReply;  // sent back, not on: no account may exist
    EXPECT_FALSE(details.registerUser(nullptr, "http://127.0.0.1:1/servlet/x", "Add"));
    EXPECT_EQ(1u, noReply.stop().size());
}
