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
    EXPECT_EQ("Internal Error.  Could not create handle.", textFor(12001));  // the first sentence
    EXPECT_EQ("Could no handle redirection because the scheme changed.", textFor(12048));  // the last
    EXPECT_EQ("The application is moving from a non-SSL to an SSL connection.", textFor(12040));  // shared
    EXPECT_EQ("ERROR_INTERNET_HTTPS_HTTP_SUBMIT_REDIR", textFor(12052));  // a name alone, 12052 to 12057
    EXPECT_EQ("ERROR_INTERNET_SEC_CERT_REV_FAILED", textFor(12057));
    // Named but without a sentence, just outside the named range, and unknown: the number.
    for (DWORD code : {12032ul, 12051ul, 12058ul, 5ul})
        EXPECT_EQ("An internal error has occured(" + std::to_string(code) + ")", textFor(code));
    EXPECT_EQ("An internal error has occured(-1)", textFor(0xFFFFFFFF));
    EXPECT_EQ("550 Proxy says no", textFor(ERROR_INTERNET_EXTENDED_ERROR, "550 Proxy says no"));
    EXPECT_EQ("An internal error has occured(12003)", textFor(ERROR_INTERNET_EXTENDED_ERROR, ""));
}

namespace {
// What the platform answers in one case, and the calls made, in order.
struct Answers {
    DWORD flags;
    BOOL queryWorks;
    DWORD state;
    BOOL succeeds;  // going online or dialling
};
Answers given;
std::string calls;

const CConnectionCalls fakeCalls = {
    [](DWORD* flags) { calls += "state "; *flags = given.flags; return TRUE; },
    [](DWORD* state) { calls += "query "; *state = given.state; return given.queryWorks; },
    [] { calls += "online "; return given.succeeds; },
    [] { calls += "dial "; return given.succeeds; },
};

std::string road(Answers answers)
{
    given = answers;
    calls.clear();
    return std::string(connectionMissing(fakeCalls) ? "missing: " : "ready: ") + calls;
}
}  // namespace

TEST(ConnectionMissing, OfflineRoads)
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
