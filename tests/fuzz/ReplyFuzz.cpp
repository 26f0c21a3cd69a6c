// Server replies of every shape the reference service gives (empty, huge, binary, slow,
// cut by a reset, malformed): postForm gives a reply or, after one error box, none.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "../account/TestSupport.h"
#include "Fuzz.h"
#include "account/AccountDetails.h"
#include "account/HttpRequest.h"
#include "wizard/InstallDialog.h"

namespace {
std::string formEscape(const std::string& bytes)
{
    std::string out;
    for (unsigned char c : bytes) out += {'%', "0123456789ABCDEF"[c >> 4], "0123456789ABCDEF"[c & 15]};
    return out;
}

// Each piece read is kept up to its first zero byte, pieces are the reader's: so the bytes before the
// body's first zero come whole (as far as a cut reply goes), nothing added or reordered. A text, whole.
bool keptAsText(const std::string& body, const std::string& got, bool whole)
{
    size_t zero = std::min(body.find('\0'), whole ? body.size() : std::min(body.size(), got.size())), at = 0;
    if (got.find('\0') != std::string::npos || got.compare(0, zero, body, 0, zero) != 0) return false;
    for (char c : got)
        if ((at = body.find(c, at) + 1) == 0) return false;  // npos + 1
    return true;
}
}  // namespace

// A reply without end kept the worker reading, and the wizard waiting, for ever; a long
// one took time growing with its square; one that announced a gigabyte was read to its
// end when its request was closed. The body now stops at its limit: see the huge replies.
TEST(Fuzz, ServerReplies)
{
    AccountDetails account;
    const std::string url = serviceUrl() + "/fuzz/reply";
    ASSERT_NE("/fuzz/reply", url) << "TAVRIN_SERVICE_URL is not set";
    runCases("server reply", 250, [&](CFuzzRandom& random) {
        int status = random.percent(70) ? random.pick(std::vector<int>{200, 200, 201, 400, 404, 500, 503})
                                        : 200 + int(random.below(400));
        if (status == 403 || status == 407 || status == 204 || status == 304)
            status = 200;  // a proxy password; no body
        std::string body = random.percent(50) ? random.text(random.length(3000)) : random.bytes(random.length(3000));
        std::string fault = "path=/fuzz&count=0&status=" + std::to_string(status), expected;
        bool cut = false, malformed = false;
        size_t repeat = 1;
        switch (random.below(7)) {
            case 0: body.clear();
                break;
            case 1:  // huge, or without end
                body = random.bytes(1 + random.below(1000), "abcdefghijklmnopqrstuvwxyz0123456789\r\n <>&");
                repeat = random.percent(20) ? 0 : 1 + random.below((1 << 20) / body.size());
                fault += "&repeat=" + std::to_string(repeat);
                break;
            case 2:  // slow
                body.resize(random.below(400));
                fault += "&piece_bytes=" + std::to_string(16 + random.below(200)) +
                         "&piece_ms=" + std::to_string(random.below(4)) +
                         "&delay_ms=" + std::to_string(random.below(30));
                break;
            case 3: fault = "path=/fuzz&count=0&reset=1", cut = true;
                break;
            case 4: fault += "&reset_after=" + std::to_string(random.below(body.size() + 200)), cut = true;
                break;
            case 5: {  // Wine, unlike Windows, overruns its own cookie parser on a long tail: short cookies only
                std::string raw =
                    "HTTP/1.1 " + std::to_string(status) + " Fuzz\r\nContent-Length: " + std::to_string(body.size()) +
                    "\r\nSet-Cookie: f=" + formEscape(random.text(random.length(40))) + "; path=/\r\n\r\n" + body;
                fault = "path=/fuzz&count=0&raw=" +
                        formEscape(random.mutate(
                            raw, {"\r\n", "\r\n\r\n", "HTTP/1.1 ", "Content-Length: 99999\r\n", ":"}, 60, 6, 60000));
                malformed = true;
            }
        }
        clearFaults();
        addFault(malformed ? fault : fault + "&body=" + formEscape(body));
        for (size_t i = 0; i < repeat || (repeat == 0 && expected.size() < replyLimit); ++i) expected += body;
        expected.resize(std::min<size_t>(expected.size(), replyLimit));

        CReplyHolder reply(account.postForm(url.c_str(), "a=b", 3));
        EXPECT_EQ(reply ? 0 : 1, refusedDialogs);
        if (!reply) {
            EXPECT_TRUE(cut || malformed) << "a whole reply came to nothing";
            return;
        }
        const std::string got(reply->replyBody.text(), reply->replyBody.size());
        EXPECT_TRUE(reply->headers.size() == 0 || reply->headers.text()[reply->headers.size() - 1] == 0);
        // A text of one long line held the wizard for minutes in the error list's edit control, which
        // lays out a line in time growing with the square of its length: the list gets lines of at
        // most 256 bytes, nothing lost but line ends.
        std::string shown = withShortLines(got), joined, plain;
        for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = shown.find_first_of("\r\n", start);
            joined += shown.substr(start, end == std::string::npos ? end : end - start);
            EXPECT_LE(std::min(end, shown.size()) - start, 256u);
        }
        std::remove_copy_if(got.begin(), got.end(), std::back_inserter(plain),
                            [](char c) { return c == '\r' || c == '\n'; });
        EXPECT_EQ(plain, joined) << "nothing lost but line ends added";
        if (malformed) return;
        EXPECT_TRUE(reply->statusCode == static_cast<DWORD>(status) ||
                    (cut && reply->statusCode == 0));  // cut before it
        EXPECT_TRUE(keptAsText(expected, got, !cut)) << expected.size() << " bytes sent, " << got.size() << " kept";
    });
    clearFaults();
}
