// The worker thread of one request: plain blocking WinInet calls, no callback,
// no asynchronous mode. It never touches a window of ours; its last act is to
// set doneEvent, after which it leaves the request alone.
#include <cstring>
#include <vector>

#include "BoundedText.h"
#include "InstallLog.h"
#include "SystemLibraries.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"

namespace {
// A connection that keeps being reset after a good send would otherwise be
// sent again for ever.
const int maxResetRepeats = 3;
const int maxProxyDialogs = 3;

void addHeader(HINTERNET request, const char* header)
{
    systemDll::HttpAddRequestHeadersA(request, header, static_cast<DWORD>(-1),
                           HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
}

// True when the reply was cut at the limit, its rest unread.
bool readReply(HINTERNET request, CTextBuffer& body)
{
    char piece[1024];
    DWORD total = 0;
    for (;;) {
        std::memset(piece, 0, sizeof piece);
        DWORD got = 0;
        if (!systemDll::InternetReadFile(request, piece, sizeof piece - 1, &got)) got = 0;
        if (got == 0) break;
        // A reply is text for the user: what lies beyond the limit is not
        // read, so that a reply without end cannot hold the wizard for ever.
        if (got > replyLimit - total) got = replyLimit - total;
        total += got;
        piece[got] = 0;
        // As text: a zero byte inside a piece ends what is kept of it.
        body.appendText(piece);
        if (total == replyLimit) {
            installLog.writef("Reply cut after %lu bytes", static_cast<unsigned long>(total));
            return true;
        }
    }
    return false;
}

void noteResponseInfo(char* out, size_t capacity)
{
    DWORD code = 0;
    DWORD length = static_cast<DWORD>(capacity);
    if (!systemDll::InternetGetLastResponseInfoA(&code, out, &length)) out[0] = 0;
    out[capacity - 1] = 0;
}
}  // namespace

DWORD WINAPI requestWorker(void* argument)
{
    CInternetHttpRequest& request = *static_cast<CInternetHttpRequest*>(argument);
    CInternetHandle connection;
    CInternetHandle handle;
    char proxyUser[256] = "";
    char proxyPassword[256] = "";
    int sends = 0;
    int resetRepeats = 0;
    bool cut = false;

    request.lastError = 0;
    installLog.write("Connecting to host", true);
    connection.reset(systemDll::InternetConnectA(internetSession, request.urlParts.lpszHostName,
                                      request.urlParts.nPort, "", "", INTERNET_SERVICE_HTTP, 0, 0));
    if (connection.handle)
        SetEvent(request.connectedEvent);
    else
        request.lastError = GetLastError();

    bool openRequest = true;
    for (;;) {
        if (openRequest) {
            installLog.write("Sending request to host", true);
            handle.reset();
            if (request.lastError) break;
            // The URL's extra info, a query string among it, is not sent.
            // WinInet keeps the cookies of every reply, as a service may expect
            // of a browser's library: a session that the check's reply opens
            // goes along with the sign-up.
            handle.reset(systemDll::HttpOpenRequestA(connection.handle, "POST", request.urlParts.lpszUrlPath,
                                          nullptr, nullptr, nullptr,
                                          INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                                              INTERNET_FLAG_KEEP_CONNECTION,
                                          0));
            if (!handle.handle) {
                request.lastError = GetLastError();
                break;
            }
            SetEvent(request.requestOpenEvent);
            if (proxyPassword[0]) {
                systemDll::InternetSetOptionA(handle.handle, INTERNET_OPTION_PROXY_USERNAME, proxyUser,
                                   static_cast<DWORD>(std::strlen(proxyUser)));
                systemDll::InternetSetOptionA(handle.handle, INTERNET_OPTION_PROXY_PASSWORD, proxyPassword,
                                   static_cast<DWORD>(std::strlen(proxyPassword)));
            }
            openRequest = false;
        }

        CTextBuffer cookieHeader;
        buildCookieHeader(cookieHeader, request.urlParts.lpszHostName);
        addHeader(handle.handle, "Content-Type: application/x-www-form-urlencoded\r\n");
        if (cookieHeader.size()) addHeader(handle.handle, cookieHeader.text());

        if (!systemDll::HttpSendRequestA(handle.handle, nullptr, 0, const_cast<char*>(request.postData.c_str()),
                              static_cast<DWORD>(request.postData.size()))) {
            DWORD error = GetLastError();
            // A kept-alive connection the server has dropped meanwhile. (Wine
            // reconnects by itself there, and reports other resets as ABORTED.)
            if (error == ERROR_INTERNET_CONNECTION_RESET && sends > 0 &&
                resetRepeats < maxResetRepeats) {
                ++resetRepeats;
                installLog.writef("Connection reset by host, sending again (%d)", resetRepeats);
                openRequest = true;
                continue;
            }
            request.lastError = error;
            break;
        }

        ++sends;
        installLog.write("Receiving Data from Host", true);
        DWORD size = sizeof request.statusCode;
        BOOL statusRead = systemDll::HttpQueryInfoA(handle.handle, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER,
                                         &request.statusCode, &size, nullptr);
        // A send that went through to a status of 0 had no answer: the server
        // dropped the connection after taking the request. Wine reports that so
        // at times, where at others (and on Windows) the send itself fails; the
        // user is told the same either way.
        if (statusRead && request.statusCode == 0) {
            request.lastError = ERROR_INTERNET_CONNECTION_ABORTED;
            break;
        }

        if ((request.statusCode == HTTP_STATUS_PROXY_AUTH_REQ ||
             request.statusCode == HTTP_STATUS_FORBIDDEN) &&
            sends <= maxProxyDialogs) {
            // The system's credentials dialog, over the desktop: it runs on this
            // thread, and the wizard stays live behind it.
            DWORD answer = systemDll::InternetErrorDlg(GetDesktopWindow(), handle.handle,
                                            ERROR_INTERNET_INCORRECT_PASSWORD,
                                            FLAGS_ERROR_UI_FILTER_FOR_ERRORS |
                                                FLAGS_ERROR_UI_FLAGS_CHANGE_OPTIONS |
                                                FLAGS_ERROR_UI_FLAGS_GENERATE_DATA,
                                            nullptr);
            if (answer == ERROR_INTERNET_FORCE_RETRY) {
                DWORD length = 255;
                if (!systemDll::InternetQueryOptionA(handle.handle, INTERNET_OPTION_PROXY_USERNAME, proxyUser,
                                          &length))
                    proxyUser[0] = 0;
                length = 255;
                if (!systemDll::InternetQueryOptionA(handle.handle, INTERNET_OPTION_PROXY_PASSWORD,
                                          proxyPassword, &length))
                    proxyPassword[0] = 0;
                proxyUser[sizeof proxyUser - 1] = proxyPassword[sizeof proxyPassword - 1] = 0;
                continue;  // the same request handle goes out again
            }
        }

        cut = readReply(handle.handle, request.replyBody);
        readRawHeaders(handle.handle, request.headers);
        installLog.write("Request Complete", true);
        break;
    }

    if (request.lastError == ERROR_INTERNET_EXTENDED_ERROR)
        noteResponseInfo(request.responseInfo, sizeof request.responseInfo);
    if (cut) {
        // Closing a request whose reply is unread to its announced length makes
        // WinInet read all the rest first, gigabytes if the server says so: the
        // caller has its reply and does not wait for that. The handles are this
        // thread's own; the request is not touched again.
        SetEvent(request.doneEvent);
        handle.reset();
        connection.reset();
        return 0;
    }
    handle.reset();
    connection.reset();
    SetEvent(request.doneEvent);
    return 0;
}

void readRawHeaders(HINTERNET request, CTextBuffer& buffer)
{
    DWORD size = 0;
    systemDll::HttpQueryInfoA(request, HTTP_QUERY_RAW_HEADERS, nullptr, &size, nullptr);
    if (size == 0) return;
    std::vector<char> raw(size + 1, 0);
    DWORD length = size;
    if (!systemDll::HttpQueryInfoA(request, HTTP_QUERY_RAW_HEADERS, raw.data(), &length, nullptr)) return;
    buffer.append(raw.data(), raw.size());
}

void buildCookieHeader(CTextBuffer& buffer, const char* host)
{
    char url[260];
    copyText(url, "http://", sizeof url);
    appendText(url, host, sizeof url);
    DWORD size = 0;
    if (!systemDll::InternetGetCookieA(url, "", nullptr, &size) || size == 0) return;
    std::vector<char> cookies(size + 1, 0);
    DWORD length = size;
    if (!systemDll::InternetGetCookieA(url, "", cookies.data(), &length)) return;
    buffer.appendText("Cookie: ");
    buffer.appendText(cookies.data());
    buffer.appendText("\r\n");
}
