// One form POST through Wine's real WinInet against the reference service:
// what reaches the server, what comes back, and the failures a user is shown.
#include <gtest/gtest.h>

#include <windows.h>
#include <wininet.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "InstallLog.h"
#include "TestSupport.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"

namespace {
// Wine's proxy credentials dialog.
const char* const proxyDialog = "Enter Network Password";

class Request : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
    }
    void TearDown() override { clearFaults(); }

    CReplyHolder post(const std::string& path, const char* body = "a=b")
    {
        return CReplyHolder(session.postForm((serviceUrl() + path).c_str(), body, strlen(body)));
    }

    CInternetSession session;
};

// Expires every cookie WinInet has for `url`, so that none goes out.
void forgetCookies(const char* url)
{
    char all[4096] = "";
    DWORD size = sizeof all;
    if (!InternetGetCookieA(url, "", all, &size)) return;
    std::istringstream pieces(all);
    std::string piece;
    while (std::getline(pieces, piece, ';')) {
        std::string name = piece.substr(piece.find_first_not_of(' '));
        name = name.substr(0, name.find('='));
        storeCookie(url, (name + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT").c_str());
    }
}
}  // namespace

TEST_F(Request, StatusesAreRepliesNotFailures)
{
    CBoxAnswerer boxes;
    CReplyHolder missing = post("/no/such/page");
    ASSERT_TRUE(missing);
    EXPECT_EQ(404u, missing->statusCode);
    EXPECT_EQ(0u, missing->headers.text()[missing->headers.size() - 1]);
    EXPECT_EQ(0, strncmp(missing->headers.text(), "HTTP/1.1 404", 12));

    addFault("path=/broken&status=500&body=%3chtml%3eno%3c/html%3e&content_type=text/html");
    CReplyHolder broken = post("/broken");
    ASSERT_TRUE(broken);
    EXPECT_EQ(500u, broken->statusCode);
    EXPECT_STREQ("<html>no</html>", broken->replyBody.text());
    EXPECT_TRUE(boxes.stop().empty());
}

TEST_F(Request, LongReplyIsJoinedInOrder)
{
    std::string body;
    char mark[8];
    for (int i = 0; i < 700; ++i) {
        snprintf(mark, sizeof mark, "%04d.", i);
        body += mark;
    }
    addFault("path=/long&status=200&body=" + body);
    CReplyHolder reply = post("/long");
    ASSERT_TRUE(reply);
    EXPECT_EQ(body, reply->replyBody.text());

    // Text, not bytes: a zero byte ends what is kept of its piece.
    addFault("path=/zero&status=200&body=abc%00def");
    CReplyHolder zero = post("/zero");
    ASSERT_TRUE(zero);
    EXPECT_STREQ("abc", zero->replyBody.text());
}

TEST_F(Request, WhatReachesTheServer)
{
    std::string url = serviceUrl();
    forgetCookies(url.c_str());
    CReplyHolder plain = post("/seen/here?secret=1&x=2", "Command=cu&v=%26");
    ASSERT_TRUE(plain);
    std::vector<SeenRequest> seen = lastRequests(1);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ("POST", seen[0].method);
    EXPECT_EQ("/seen/here", seen[0].path);
    EXPECT_EQ("", seen[0].query);  // the query string stays behind
    EXPECT_EQ("Command=cu&v=%26", seen[0].body);
    EXPECT_EQ(1, seen[0].headerCount("Content-Type"));
    EXPECT_EQ("application/x-www-form-urlencoded", seen[0].header("Content-Type"));
    EXPECT_EQ(0, seen[0].headerCount("Cookie"));

    ASSERT_TRUE(storeCookie(url.c_str(), "first=1"));
    ASSERT_TRUE(storeCookie(url.c_str(), "second=2"));
    CReplyHolder withCookies = post("/seen/cookies");
    ASSERT_TRUE(withCookies);
    seen = lastRequests(1);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(1, seen[0].headerCount("Cookie"));
    EXPECT_EQ("first=1; second=2", seen[0].header("Cookie"));
    forgetCookies(url.c_str());
}

TEST_F(Request, NoServerListening)
{
    CBoxAnswerer boxes;
    CInternetFile* reply = session.postForm("http://127.0.0.1:1/x", "a=b", 3);
    EXPECT_EQ(nullptr, reply);
    EXPECT_EQ(std::vector<std::string>{"box:The attempt to connect to the server failed."}, boxes.stop());

    CBoxAnswerer noUrl;
    EXPECT_EQ(nullptr, session.postForm("", "a=b", 3));
    EXPECT_EQ(1u, noUrl.stop().size());
}

TEST_F(Request, ClosedSessionGivesNoReplyAndNoBox)
{
    CInternetSession closed;
    closed.isOpen = 0;
    CBoxAnswerer boxes;
    EXPECT_EQ(nullptr, closed.postForm((serviceUrl() + "/x").c_str(), "a=b", 3));
    EXPECT_TRUE(boxes.stop().empty());
    EXPECT_TRUE(lastRequests(1).empty() || lastRequests(1)[0].path != "/x");
}

TEST_F(Request, ConfirmedProxyDialogSendsTheSameRequestAgain)
{
    std::string url = serviceUrl();
    forgetCookies(url.c_str());
    ASSERT_TRUE(storeCookie(url.c_str(), "crumb=1"));
    addFault("path=/proxy&status=407&body=who+are+you");
    CBoxAnswerer dialogs(proxyDialog, IDOK);
    CReplyHolder reply = post("/proxy", "k=v");
    EXPECT_EQ(1u, dialogs.stop().size());
    ASSERT_TRUE(reply);
    EXPECT_EQ(200u, reply->statusCode) << reply->replyBody.text();
    std::vector<SeenRequest> seen = lastRequests(2);
    ASSERT_EQ(2u, seen.size());
    for (const SeenRequest& r : seen) {
        EXPECT_EQ("/proxy", r.path);
        EXPECT_EQ("k=v", r.body);
        EXPECT_EQ(1, r.headerCount("Content-Type"));
        EXPECT_EQ(1, r.headerCount("Cookie"));  // replaced, not doubled
    }
    forgetCookies(url.c_str());
}

TEST_F(Request, ProxyDialogAtMostThreeTimes)
{
    addFault("path=/proxy&status=407&body=still+no&count=10");
    CBoxAnswerer dialogs(proxyDialog, IDOK);
    CReplyHolder reply = post("/proxy");
    EXPECT_EQ(3u, dialogs.stop().size());
    ASSERT_TRUE(reply);
    EXPECT_EQ(407u, reply->statusCode);  // the fourth is delivered as it is
    EXPECT_STREQ("still no", reply->replyBody.text());

    clearFaults();
    addFault("path=/proxy&status=407&body=cancelled");
    CBoxAnswerer cancel(proxyDialog, IDCANCEL);
    CReplyHolder refused = post("/proxy");
    EXPECT_EQ(1u, cancel.stop().size());
    ASSERT_TRUE(refused);
    EXPECT_EQ(407u, refused->statusCode);
    EXPECT_STREQ("cancelled", refused->replyBody.text());
}

TEST_F(Request, ResetAfterAGoodSendIsRetriedAndBounded)
{
    // A good send first (the proxy's 407), then resets: sent again.
    addFault("path=/reset&status=407");
    addFault("path=/reset&reset=1&count=1");
    CBoxAnswerer dialogs(proxyDialog, IDOK);
    CReplyHolder recovered = post("/reset", "n=1");
    dialogs.stop();
    ASSERT_TRUE(recovered);
    EXPECT_EQ(200u, recovered->statusCode);

    // Resets without end: given up on after a few, with the user told.
    clearFaults();
    addFault("path=/reset&status=407");
    addFault("path=/reset&reset=1&count=0");
    CBoxAnswerer again(proxyDialog, IDOK);
    CBoxAnswerer boxes;
    CReplyHolder lost = post("/reset", "n=2");
    again.stop();
    EXPECT_FALSE(lost);
    std::vector<std::string> shown = boxes.stop();
    ASSERT_EQ(1u, shown.size());
    EXPECT_TRUE(shown[0] == "box:The connection with the server has been reset." ||
                shown[0] == "box:The connection with the server has been terminated.")
        << shown[0];
    int resets = 0;
    for (const SeenRequest& r : lastRequests(20))
        if (r.body == "n=2") ++resets;
    EXPECT_GE(resets, 5);  // the 407, the first reset and three repeats at least
    EXPECT_LE(resets, 9);  // Wine may reconnect once by itself on each
}

TEST_F(Request, LogLinesOfACleanRequest)
{
    char folder[MAX_PATH];
    GetTempPathA(sizeof folder, folder);
    strcat(folder, "accountlog");
    CreateDirectoryA(folder, nullptr);
    installLog.open(folder);
    {
        CInternetSession logged;
        CReplyHolder reply(logged.postForm((serviceUrl() + "/logged").c_str(), "a=b", 3));
        EXPECT_TRUE(reply);
    }
    installLog.close();
    std::ifstream file(std::string(folder) + "\\TavRinInstall.log");
    std::string line, lines;
    while (std::getline(file, line))
        if (line.size() > 21) lines += line.substr(21, line.find('\r') - 21) + "|";
    EXPECT_NE(std::string::npos,
              lines.find("Opening Connection to Internet|Creating connection to host|Connecting to host|"
                         "Sending request to host|Receiving Data from Host|Request Complete|"
                         "Download Complete|"))
        << lines;
}

namespace {
HANDLE timerEvent;
void CALLBACK setTimerEvent(HWND, UINT, UINT_PTR timer, DWORD)
{
    KillTimer(nullptr, timer);
    SetEvent(timerEvent);
}
}  // namespace

TEST(WaitPumping, DispatchesWhileWaitingAndOutlastsQuit)
{
    timerEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    // Only a dispatched WM_TIMER sets the event: the wait must pump to end.
    PostQuitMessage(0);
    SetTimer(nullptr, 0, 20, setTimerEvent);
    EXPECT_EQ(WAIT_OBJECT_0, waitPumping(timerEvent, INFINITE));
    MSG leftover;
    EXPECT_FALSE(PeekMessageA(&leftover, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE));

    ResetEvent(timerEvent);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), waitPumping(timerEvent, 30));
    CloseHandle(timerEvent);
}
