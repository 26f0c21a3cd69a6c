// Server replies of every shape from the reference service's faults: empty,
// huge, binary, slow, cut by a reset, malformed. postForm gives a reply or,
// after one error box, none; the exchanges end as their table says.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "../account/TestSupport.h"
#include "Fuzz.h"
#include "account/AccountDetails.h"
#include "account/AccountExchanges.h"
#include "account/HttpRequest.h"
#include "wizard/InstallDialog.h"

namespace {
std::string formEscape(const std::string& bytes)
{
    std::string out;
    for (unsigned char c : bytes) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%%%02X", c);
        out += std::isalnum(c) ? std::string(1, static_cast<char>(c)) : std::string(hex);
    }
    return out;
}

// What the request layer makes of a body: each piece read is kept up to its
// first zero byte. Pieces are the reader's, so only this much is sure: the
// bytes before the first zero come whole (as far as a cut reply goes), and
// nothing is added or reordered.
bool keptAsText(const std::string& body, const std::string& got, bool whole)
{
    size_t zero = body.find('\0');
    if (zero == std::string::npos) zero = body.size();
    if (!whole && got.size() < zero) zero = got.size();
    if (got.find('\0') != std::string::npos || got.compare(0, zero, body, 0, zero) != 0) return false;
    size_t at = 0;
    for (char c : got) {
        at = body.find(c, at);
        if (at == std::string::npos) return false;
        ++at;
    }
    return true;
}

// The service's own URL with "localhost" for its address: the cookies these
// replies set stay apart from those the other test programs look for.
std::string fuzzUrl()
{
    std::string url = serviceUrl();
    size_t host = url.find("127.0.0.1");
    if (host != std::string::npos) url.replace(host, 9, "localhost");
    return url + "/fuzz/reply";
}

int replyStatus(CFuzzRandom& random)
{
    static const int usual[] = {200, 200, 201, 400, 404, 409, 413, 500, 502, 503, 599};
    // Neither 403 nor 407, which ask the user for a proxy password; nor 204
    // and 304, which carry no body.
    int status = random.percent(70) ? usual[random.below(sizeof usual / sizeof usual[0])]
                                    : 200 + static_cast<int>(random.below(400));
    return status == 403 || status == 407 || status == 204 || status == 304 ? 200 : status;
}

std::string rawReply(CFuzzRandom& random, const std::string& body)
{
    std::string reply = "HTTP/1.1 " + std::to_string(replyStatus(random)) + " Fuzz\r\n";
    if (random.percent(70)) reply += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    // WinInet takes every reply's cookies. Wine's own parser of them copies
    // what follows an expiry into 128 characters and overruns them on a long
    // tail, which Windows does not: these replies keep their cookies short. The
    // program's own cookie code meets long tails in CookieFuzz.cpp.
    for (size_t n = random.below(5); n > 0; --n)
        reply += "Set-Cookie: f" + std::to_string(n) + "=" + formEscape(random.text(random.length(40))) +
                 (random.percent(50) ? "; path=/" : "") +
                 (random.percent(30) ? "; expires=Sat, 01-Jan-2039 12:00:00 GMT" : "") + "\r\n";
    reply += "\r\n" + body;
    static const std::vector<std::string> tokens = {"\r\n", "\r\n\r\n", "HTTP/1.1 ", "Content-Length: 99999\r\n",
                                                    "Set-Cookie: ", ":", std::string(1, '\0')};
    return random.percent(60) ? random.mutate(reply, tokens, 1 + static_cast<int>(random.below(6)), 60000) : reply;
}

std::string withoutLineEnds(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
}

// Only the error box or list (or, not looked at, boxes whatever they were).
bool onlyErrorBoxes(const std::vector<std::string>& boxes)
{
    for (const std::string& box : boxes)
        if (box != "?" && box.rfind("Error", 0) != 0) return false;
    return true;
}
}  // namespace

TEST(Fuzz, ServerReplies)
{
    ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
    AccountDetails account;
    const std::string url = fuzzUrl();
    runCases("server reply", 250, [&](CFuzzRandom& random) {
        clearFaults();
        const int status = replyStatus(random);
        std::string body = random.percent(50) ? random.text(random.length(3000)) : random.bytes(random.length(3000));
        std::string fault = "path=/fuzz&count=0&status=" + std::to_string(status);
        enum { whole, cut, malformed } shape = whole;
        size_t repeat = 1;
        switch (random.below(8)) {
        case 0: body.clear(); break;
        case 1:  // huge
            body = random.bytes(1 + random.below(1000), "abcdefghijklmnopqrstuvwxyz0123456789\r\n <>&");
            repeat = 1 + random.below((1 << 20) / body.size());
            fault += "&repeat=" + std::to_string(repeat);
            break;
        case 2:  // slow
            body.resize(random.below(400));
            fault += "&piece_bytes=" + std::to_string(16 + random.below(200)) + "&piece_ms=" + std::to_string(random.below(4));
            break;
        case 3: fault += "&delay_ms=" + std::to_string(random.below(30)); break;
        case 4:
            fault = "path=/fuzz&count=0&reset=1";
            shape = cut;
            break;
        case 5:
            fault += "&reset_after=" + std::to_string(random.below(body.size() + 200));
            shape = cut;
            break;
        case 6:
            fault = "path=/fuzz&count=0&raw=" + formEscape(rawReply(random, body));
            shape = malformed;
            break;
        default: break;
        }
        if (shape != malformed) fault += "&body=" + formEscape(body);
        addFault(fault);
        SCOPED_TRACE(fault.substr(0, 300));
        std::string expected;
        for (size_t i = 0; i < repeat; ++i) expected += body;

        // Dialogs are costly: a quarter of the cases read them, the others count them.
        const bool looked = random.percent(25);
        CBoxCatcher boxes(IDOK, !looked);
        const size_t exchange = random.below(4);
        if (exchange == 0 && shape == whole) {
            bool valid = account.validateUserData(url.c_str());
            EXPECT_EQ(status == 200, valid);
            std::string text = expected.substr(0, 4095);
            std::vector<std::string> shown;
            if (status != 200 && status != 404)
                shown.push_back(text.empty() ? "Error:Error Registring User.  Please check your internet connection."
                                             : "Error[list]:" + text);
            // The list breaks long lines; its text is the reply's otherwise.
            ASSERT_EQ(shown.size(), boxes.seen.size());
            if (looked && !shown.empty() && expected.find('\0') == std::string::npos) {
                std::string seen = withoutLineEnds(boxes.seen[0]);
                EXPECT_EQ(0u, withoutLineEnds(shown[0]).rfind(seen, 0)) << seen;
                EXPECT_GE(seen.size(), std::min<size_t>(withoutLineEnds(shown[0]).size(), 3500));
            }
            if (!valid) {
                EXPECT_EQ(status == 404 ? "Error connecting to Tavrin Servers..." : "Error Validating User Information...",
                          account.errorText);
            }
            return;
        }
        if (exchange == 1) {
            // Each cookie the reply asks for is stored; a refused one shows the system's text.
            bool made = account.registerUser(nullptr, url.c_str(), "Add");
            if (shape == whole) {
                EXPECT_EQ(status == 200, made);
            }
            EXPECT_TRUE(onlyErrorBoxes(boxes.seen));
            // A refusal shows its text in the list; an empty one shows nothing.
            if (shape == whole && status != 200 && expected.find('\0') == std::string::npos) {
                EXPECT_EQ(expected.empty() ? 0u : 1u, boxes.seen.size());
            }
            return;
        }
        CReplyHolder reply(account.postForm(url.c_str(), "a=b", 3));
        if (!reply) {
            EXPECT_NE(whole, shape) << "a whole reply came to nothing";
            EXPECT_EQ(1u, boxes.seen.size());
            EXPECT_TRUE(onlyErrorBoxes(boxes.seen));
            return;
        }
        EXPECT_TRUE(boxes.seen.empty());
        const std::string got(reply->replyBody.text(), reply->replyBody.size());
        EXPECT_EQ(std::strlen(got.c_str()), got.size());
        EXPECT_TRUE(reply->headers.size() == 0 || reply->headers.text()[reply->headers.size() - 1] == 0);
        if (shape == malformed) return;
        // A reply cut before its status line has none.
        EXPECT_TRUE(reply->statusCode == static_cast<DWORD>(status) || (shape == cut && reply->statusCode == 0));
        expected.resize(std::min<size_t>(expected.size(), replyLimit));
        if (shape == whole && expected.find('\0') == std::string::npos) {
            EXPECT_TRUE(expected == got) << expected.size() << " bytes sent, " << got.size() << " kept";
        } else {
            EXPECT_TRUE(keptAsText(expected, got, shape == whole));
        }
    });
    clearFaults();
}

// A reply without end kept the worker reading, and the wizard waiting, for
// ever; a long one took time growing with its square; and one that announced
// a gigabyte was read to its end when its request was closed. The body now
// stops at its limit, and the rest is left to the worker.
TEST(FuzzRegression, RepliesBeyondTheLimitAreCut)
{
    ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
    AccountDetails account;
    for (const char* repeat : {"0", "1000000"}) {
        clearFaults();
        addFault("path=/fuzz&status=500&repeat=" + std::string(repeat) + "&body=" +
                 formEscape("endless reply " + std::string(986, '.')));
        CBoxCatcher boxes;
        CReplyHolder reply(account.postForm(fuzzUrl().c_str(), "a=b", 3));
        ASSERT_TRUE(reply);
        EXPECT_EQ(500u, reply->statusCode);
        ASSERT_EQ(replyLimit, reply->replyBody.size());
        EXPECT_EQ(0, std::strncmp(reply->replyBody.text(), "endless reply ...", 17));
        EXPECT_TRUE(boxes.seen.empty());
    }
    clearFaults();
}

// A server's text of one long line held the wizard for minutes in the error
// list's edit control, which lays out a line in time growing with the square
// of its length. The list gets lines of at most 256 bytes.
TEST(FuzzRegression, ErrorListBreaksLongLines)
{
    const std::string shortLines = "line one\r\n" + std::string(256, 's') + "\r\n\r\nend";
    EXPECT_EQ(shortLines, withShortLines(shortLines));
    const std::string oneLine = std::string(600, 'x'), words = "word " + std::string(300, 'w') + " tail",
                      unixLines = std::string(200, 'u') + "\n" + std::string(200, 'v') + "\n";
    for (const std::string& text : {oneLine, words, unixLines}) {
        const std::string shown = withShortLines(text);
        EXPECT_EQ(withoutLineEnds(text), withoutLineEnds(shown)) << "nothing lost but line ends added";
        size_t start = 0;
        for (size_t end; (end = shown.find("\r\n", start)) != std::string::npos; start = end + 2)
            EXPECT_LE(end - start, 256u) << shown;
        EXPECT_LE(shown.size() - start, 256u);
    }
    EXPECT_EQ(std::string(256, 'x') + "\r\n" + std::string(256, 'x') + "\r\n" + std::string(88, 'x'),
              withShortLines(oneLine));
    EXPECT_EQ(0u, withShortLines(std::string(200, 'a') + " " + std::string(100, 'b')).find(std::string(200, 'a') + " \r\n"));
}
