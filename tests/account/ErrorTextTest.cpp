// The program's own error sentences, and the offline roads of the connection
// test, which Wine never takes by itself.
#include <gtest/gtest.h>

#include <windows.h>
#include <wininet.h>

#include <string>

#include "account/ConnectionState.h"
#include "account/InternetErrorText.h"

namespace {
std::string textFor(DWORD code, const char* responseInfo = nullptr)
{
    std::string text = "left over";
    internetErrorText(code, text, responseInfo);
    return text;
}
}  // namespace

TEST(InternetErrorText, SentencesNamesAndTheRest)
{
    EXPECT_EQ("Internal Error.  Could not create handle.", textFor(12001));
    EXPECT_EQ("The servername could not be resolved.", textFor(12007));
    EXPECT_EQ("The attempt to connect to the server failed.", textFor(12029));
    EXPECT_EQ("The required registrt entry is invalid.", textFor(12022));
    EXPECT_EQ("Could no handle redirection because the scheme changed.", textFor(12048));
    EXPECT_EQ(textFor(12039), textFor(12040));
    EXPECT_EQ("The application is moving from a non-SSL to an SSL connection.", textFor(12040));
    EXPECT_EQ("ERROR_INTERNET_SEC_CERT_ERRORS", textFor(12055));
    EXPECT_EQ("ERROR_INTERNET_HTTPS_HTTP_SUBMIT_REDIR", textFor(12052));
    EXPECT_EQ("ERROR_INTERNET_SEC_CERT_REV_FAILED", textFor(12057));
    for (DWORD code : {12032u, 12034u, 12035u, 12049u, 12050u, 12051u, 12058u, 12000u, 5u})
        EXPECT_EQ("An internal error has occured(" + std::to_string(code) + ")", textFor(code));
    EXPECT_EQ("An internal error has occured(-1)", textFor(0xFFFFFFFF));

    EXPECT_EQ("550 Proxy says no", textFor(ERROR_INTERNET_EXTENDED_ERROR, "550 Proxy says no"));
    EXPECT_EQ("An internal error has occured(12003)", textFor(ERROR_INTERNET_EXTENDED_ERROR, ""));

    EXPECT_STREQ("ERROR_INTERNET_FORCE_RETRY", internetErrorConstant(12032));
    EXPECT_STREQ("ERROR_INTERNET_OUT_OF_HANDLES", internetErrorConstant(12001));
    EXPECT_EQ(nullptr, internetErrorConstant(12035));
    EXPECT_EQ(nullptr, internetErrorConstant(12051));
    EXPECT_EQ(nullptr, internetErrorConstant(12058));
}

namespace {
// The answers the platform gives in one test, and the calls made.
struct Machine {
    DWORD flags = 0;
    BOOL queryWorks = TRUE;
    DWORD state = INTERNET_STATE_CONNECTED;
    BOOL online = TRUE;
    BOOL dialled = TRUE;
    std::string calls;
};
Machine machine;

const CConnectionCalls fakeCalls = {
    [](DWORD* flags) { machine.calls += "state "; *flags = machine.flags; return TRUE; },
    [](DWORD* state) {
        machine.calls += "query ";
        *state = machine.state;
        return machine.queryWorks;
    },
    [] { machine.calls += "online "; return machine.online; },
    [] { machine.calls += "dial "; return machine.dialled; },
};

bool missingWith(const Machine& given)
{
    machine = given;
    return connectionMissing(fakeCalls);
}
}  // namespace

TEST(ConnectionMissing, OfflineRoads)
{
    Machine lan;
    lan.flags = INTERNET_CONNECTION_LAN;
    EXPECT_FALSE(missingWith(lan));
    EXPECT_EQ("state query ", machine.calls);  // no dial-up with a LAN

    Machine offline = lan;
    offline.state = INTERNET_STATE_DISCONNECTED_BY_USER;
    offline.online = FALSE;
    EXPECT_TRUE(missingWith(offline));  // the LAN flag is not looked at then
    EXPECT_EQ("state query online ", machine.calls);
    offline.online = TRUE;
    EXPECT_FALSE(missingWith(offline));

    Machine modem;
    modem.flags = INTERNET_CONNECTION_MODEM;
    EXPECT_FALSE(missingWith(modem));
    EXPECT_EQ("state query dial ", machine.calls);
    modem.dialled = FALSE;
    EXPECT_TRUE(missingWith(modem));

    // A query that fails counts as not offline, whatever its state says.
    Machine broken = lan;
    broken.queryWorks = FALSE;
    broken.state = INTERNET_STATE_DISCONNECTED_BY_USER;
    EXPECT_FALSE(missingWith(broken));
    EXPECT_EQ("state query ", machine.calls);

    EXPECT_FALSE(connectionMissing());  // Wine: a connected LAN
}
