// The check and the sign-up against the reference service, as the progress
// page runs them, and the cookies a sign-up leaves for later runs.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "account/AccountDetails.h"

namespace {
class Exchange : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
        user = freshUserName("acct");
        details.CommandAction = "Add";
        details.UserCode = user;
        details.Password = details.RepeatPassword = "se cret+&";
        details.PasswordHint = "usual";
        details.Email = user + "@mail.example";
        details.FirstName = "Ann";
        details.LastName = "Lee";
        details.Gender = "F";
        details.AgeRange = 23;
        details.Zip = "90210";
        details.Country = 1;
    }
    void TearDown() override { clearFaults(); }

    std::string user;
    AccountDetails details;
};
}  // namespace

TEST_F(Exchange, ValidationPassesAndIsRefusedWithTheServiceText)
{
    CBoxAnswerer boxes;
    EXPECT_TRUE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ(0u, lastRequests(1).at(0).body.find("Command=cu&CommandAction=Add&"));
    EXPECT_TRUE(boxes.stop().empty());

    details.RepeatPassword = "other";
    details.Zip = "";
    CBoxAnswerer refused;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ("Error Validating User Information...", details.errorText);
    EXPECT_EQ(std::vector<std::string>{"list:Your repeat password does not match your password\r\n"
                                       "Please type in your zip code\r\n"},
              refused.stop());
    EXPECT_EQ("other", details.RepeatPassword);  // what the user typed stays
}

TEST_F(Exchange, ValidationFailuresAndTheirTexts)
{
    CBoxAnswerer quiet;
    EXPECT_FALSE(details.validateUserData((serviceUrl() + "/servlet/missing").c_str()));
    EXPECT_EQ("Error connecting to Tavrin Servers...", details.errorText);
    EXPECT_TRUE(quiet.stop().empty());

    const std::string page = "<html>\r\n<body><h1>Internal Error</h1></body>\r\n</html>";
    addFault("path=/servlet/&status=500&content_type=text/html&body="
             "%3chtml%3e%0d%0a%3cbody%3e%3ch1%3eInternal+Error%3c/h1%3e%3c/body%3e%0d%0a%3c/html%3e");
    CBoxAnswerer html;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ("Error Validating User Information...", details.errorText);
    EXPECT_EQ(std::vector<std::string>{"list:" + page}, html.stop());

    addFault("path=/servlet/&status=503");
    CBoxAnswerer empty;
    EXPECT_FALSE(details.validateUserData(registrationUrl().c_str()));
    EXPECT_EQ(std::vector<std::string>{"box:Error Registring User.  Please check your internet connection."},
              empty.stop());

    CBoxAnswerer unreachable;
    EXPECT_FALSE(details.validateUserData("http://127.0.0.1:1/servlet/x"));
    EXPECT_EQ("Timed Out Connecting to Server...", details.errorText);
    EXPECT_EQ(std::vector<std::string>{"box:The attempt to connect to the server failed."},
              unreachable.stop());
}

TEST_F(Exchange, SignUpStoresItsCookiesForALaterRun)
{
    CBoxAnswerer boxes;
    ASSERT_TRUE(details.registerUser(nullptr, registrationUrl().c_str(), "Add"));
    EXPECT_TRUE(boxes.stop().empty());
    EXPECT_EQ(0u, lastRequests(1).at(0).body.find("Command=Add&CommandAction=Add&"));

    std::vector<std::string> account = jsonStrings(serviceCall("GET", "/__account?user=" + user).body);
    std::string passport;
    for (size_t i = 0; i + 1 < account.size(); ++i)
        if (account[i] == "passports") passport = account[i + 1];
    ASSERT_FALSE(passport.empty());
    // WinInet keeps the reply's own cookies for this process only: a later
    // process sees what the program stored, with its expiry.
    EXPECT_EQ("passport=" + passport, runSelf("--read-cookie http://127.0.0.1/ passport", {}));
    EXPECT_EQ("RegistrationInfo=" + user, runSelf("--read-cookie http://127.0.0.1/ RegistrationInfo", {}));

    CBoxAnswerer taken;
    EXPECT_FALSE(details.registerUser(nullptr, registrationUrl().c_str(), "Add"));
    std::vector<std::string> shown = taken.stop();
    ASSERT_EQ(1u, shown.size());
    EXPECT_NE(std::string::npos, shown[0].find("is already taken")) << shown[0];
}

TEST_F(Exchange, SignUpWithoutAReplyFails)
{
    CBoxAnswerer boxes;
    EXPECT_FALSE(details.registerUser(nullptr, "http://127.0.0.1:1/servlet/x", "Add"));
    EXPECT_EQ(1u, boxes.stop().size());

    addFault("path=/servlet/&status=404");
    CBoxAnswerer silent;  // a 404 with no text shows nothing
    EXPECT_FALSE(details.registerUser(nullptr, registrationUrl().c_str(), "Add"));
    EXPECT_TRUE(silent.stop().empty());
}
