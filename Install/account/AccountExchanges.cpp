// The two exchanges that make an account: the check ("cu") and the sign-up.
// Both post the same 24-key form and are judged by the HTTP status alone.
#include "account/AccountExchanges.h"

#include <cstring>

#include "BoundedText.h"
#include "InstallLog.h"
#include "account/AccountDetails.h"
#include "account/CookieDate.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "engine/ComponentRegistration.h"
#include "wizard/InstallDialog.h"

namespace {
const size_t workSize = 1024;
}

std::vector<std::string> signUpCookies(const char* headers, size_t size, const char* expiry)
{
    std::vector<std::string> cookies;
    const char* end = headers + size;
    for (const char* line = headers; line < end && *line;) {
        size_t length = strnlen(line, end - line);
        if (length >= 11 && startsWithNoCase(line, "Set-Cookie:")) {
            // The name, its colon and one blank are skipped by position.
            std::string text = length > 12 ? std::string(line + 12, length - 12) : std::string();
            if (!containsNoCase(text.c_str(), "expires")) {
                text += "; expires = ";
                text += expiry;
            }
            if (text.size() < workSize)
                cookies.push_back(text);
            else
                installLog.writef("Cookie of %u bytes not stored: too long",
                                  static_cast<unsigned>(text.size()));
        }
        line += length + 1;
    }
    return cookies;
}

bool AccountDetails::validateUserData(const char* url)
{
    Command = "cu";
    buildForm();
    CReplyHolder reply(postForm(url, formBody.c_str(), formLength()));
    if (!reply) {
        // Every failure below HTTP; its true cause has been shown already.
        errorText = "Timed Out Connecting to Server...";
        return false;
    }
    if (reply->statusCode == 200) return true;
    if (reply->statusCode == 404) {
        errorText = "Error connecting to Tavrin Servers...";
        return false;
    }
    if (reply->replyBody.size())
        ERRORMSG(reply->replyBody.text(), true);
    else
        ERRORMSG("Error Registring User.  Please check your internet connection.", false);
    errorText = "Error Validating User Information...";
    return false;
}

bool AccountDetails::registerUser(HWND window, const char* url, const char* command)
{
    Command = command ? command : "";
    buildForm();
    CReplyHolder reply(postForm(url, formBody.c_str(), formLength()));
    // No reply: the request layer has shown why. The user goes back rather
    // than on, as if an account existed that may not.
    if (!reply) return false;
    if (reply->statusCode != 200) {
        ERRORMSG(reply->replyBody.text(), true);
        return false;
    }

    SYSTEMTIME expires;
    GetSystemTime(&expires);
    addSeconds(expires, ownCookieLifetime);
    char date[255];
    formatCookieDate(expires, date, sizeof date);

    // Under the bare host: the path of the URL plays no part.
    char cookieUrl[260];
    formatText(cookieUrl, sizeof cookieUrl, "http://%s", reply->urlParts.lpszHostName);
    for (const std::string& cookie :
         signUpCookies(reply->headers.text(), reply->headers.size(), date)) {
        if (!storeCookie(cookieUrl, cookie.c_str())) showLastSystemError(window);
    }
    return true;
}
