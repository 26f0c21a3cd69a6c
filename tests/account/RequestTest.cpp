// One form POST through Wine's real WinInet against the reference service:
// what reaches the server, what comes back, and what the user is shown.
#include <gtest/gtest.h>

#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <string>

#include "TestSupport.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"

namespace {
const char* const settingsKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

// Wine's proxy credentials dialog reads the session's proxy name and faults
// when there is none: these tests name the service itself as the proxy.
struct CProxySetting {
    explicit CProxySetting(bool wanted) : active(wanted)
    {
        if (!active) return;
        DWORD enable = 1;
        std::string server = serviceUrl().substr(std::min<size_t>(7, serviceUrl().size()));
        RegSetKeyValueA(HKEY_CURRENT_USER, settingsKey, "ProxyEnable", REG_DWORD, &enable, 4);
        RegSetKeyValueA(HKEY_CURRENT_USER, settingsKey, "ProxyServer", REG_SZ, server.c_str(),
                        static_cast<DWORD>(server.size() + 1));
    }
    ~CProxySetting()
    {
        if (!active) return;
        RegDeleteKeyValueA(HKEY_CURRENT_USER, settingsKey, "ProxyEnable");
        RegDeleteKeyValueA(HKEY_CURRENT_USER, settingsKey, "ProxyServer");
    }
    bool active;
};

class Request : public ::testing::Test {
protected:
    explicit Request(bool proxy = false) : proxySetting(proxy) {}
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
    CProxySetting proxySetting;  // before the session, which reads it
    CInternetSession session;
};

class ProxyRequest : public Request {
protected:
    ProxyRequest() : Request(true) {}
};

}  // namespace

TEST_F(Request, RepliesWhateverTheirStatus)
{
    CBoxAnswerer boxes;
    CReplyHolder missing = post("/no/such/page");
    ASSERT_TRUE(missing);
    EXPECT_EQ(404u, missing->statusCode);
    EXPECT_EQ(0, strncmp(missing->headers.text(), "HTTP/1.1 404", 12));
    EXPECT_EQ(0, missing->headers.text()[missing->headers.size() - 2]);  // an empty string ends them

    std::string body;
    for (int i = 0; i < 700; ++i) body += std::to_string(10000 + i) + ".";  // 4,200 bytes
    addFault("path=/long&status=500&body=" + body);
    CReplyHolder longReply = post("/long");
    ASSERT_TRUE(longReply);
    EXPECT_EQ(500u, longReply->statusCode);
    EXPECT_EQ(body, longReply->replyBody.text());  // joined in order

    addFault("path=/zero&status=200&body=abc%00def");
    CReplyHolder zero = post("/zero");
    ASSERT_TRUE(zero);
    EXPECT_STREQ("abc", zero->replyBody.text());  // text: a zero byte ends its piece
    EXPECT_TRUE(boxes.stop().empty());
}

TEST_F(Request, WhatReachesTheServer)
{
    ASSERT_TRUE(post("/seen/here?secret=1&x=2", "Command=cu&v=%26"));
    std::vector<SeenRequest> seen = lastRequests(1);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ("/seen/here", seen[0].path);
    EXPECT_EQ("", seen[0].query);  // the query string stays behind
    EXPECT_EQ("Command=cu&v=%26", seen[0].body);
    EXPECT_EQ(1, seen[0].count("Content-Type"));

    ASSERT_TRUE(storeCookie(serviceUrl().c_str(), "first=1"));
    ASSERT_TRUE(storeCookie(serviceUrl().c_str(), "second=2"));
    ASSERT_TRUE(post("/seen/cookies"));
    seen = lastRequests(1);
    ASSERT_EQ(1u, seen.size());
    ASSERT_EQ(1, seen[0].count("Cookie"));  // all of the host's in one header
    const std::string& cookies = seen[0].headers.back().second;
    EXPECT_NE(std::string::npos, cookies.find("first=1")) << cookies;
    EXPECT_NE(std::string::npos, cookies.find("second=2")) << cookies;
}

TEST_F(Request, NoServerListening)
{
    CBoxAnswerer boxes;
    EXPECT_EQ(nullptr, session.postForm("http://127.0.0.1:1/x", "a=b", 3));
    EXPECT_EQ(std::vector<std::string>{"box:The attempt to connect to the server failed."}, boxes.stop());
}

TEST_F(ProxyRequest, CredentialsDialogResendsTheSameRequest)
{
    ASSERT_TRUE(storeCookie(serviceUrl().c_str(), "crumb=1"));
    addFault("path=/proxy&status=407");
    CBoxAnswerer dialog("Enter Network Password", IDOK);
    CReplyHolder reply = post("/proxy", "k=v");
    EXPECT_EQ(1u, dialog.stop().size());
    ASSERT_TRUE(reply);
    EXPECT_EQ(404u, reply->statusCode);  // the service's own answer to the resend
    std::vector<SeenRequest> seen = lastRequests(2);
    ASSERT_EQ(2u, seen.size());
    for (const SeenRequest& r : seen) {
        EXPECT_EQ("k=v", r.body);
        EXPECT_EQ(1, r.count("Content-Type"));
        EXPECT_EQ(1, r.count("Cookie"));  // replaced, not doubled
    }

    // At most three dialogs: the fourth 407 is delivered, with its text.
    addFault("path=/proxy&status=407&body=still+no&count=0");
    CBoxAnswerer dialogs("Enter Network Password", IDOK);
    CReplyHolder last = post("/proxy");
    EXPECT_EQ(3u, dialogs.stop().size());
    ASSERT_TRUE(last);
    EXPECT_EQ(407u, last->statusCode);
    EXPECT_STREQ("still no", last->replyBody.text());

    // Cancelled: the 407 as it came.
    clearFaults();
    addFault("path=/proxy&status=407&body=cancelled");
    CBoxAnswerer cancel("Enter Network Password", IDCANCEL);
    CReplyHolder refused = post("/proxy");
    EXPECT_EQ(1u, cancel.stop().size());
    ASSERT_TRUE(refused);
    EXPECT_STREQ("cancelled", refused->replyBody.text());
}
