// One form POST through Wine's real WinInet against the reference service:
// what reaches the server, what comes back, and what the user is shown.
#include <gtest/gtest.h>

#include <windows.h>
#include <wininet.h>

#include <string>

#include "TestSupport.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"

namespace {
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
}  // namespace

TEST_F(Request, RepliesWhateverTheirStatusAndNoneWithoutAServer)
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

    EXPECT_EQ(nullptr, session.postForm("http://127.0.0.1:1/x", "a=b", 3));  // no server: no reply, one box
    EXPECT_EQ(std::vector<std::string>{"box:The attempt to connect to the server failed."}, boxes.stop());
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
    std::string cookies;
    for (const auto& header : seen[0].headers)
        if (header.first == "Cookie") cookies = header.second;
    EXPECT_NE(std::string::npos, cookies.find("first=1")) << cookies;
    EXPECT_NE(std::string::npos, cookies.find("second=2")) << cookies;
}
