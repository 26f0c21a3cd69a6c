#pragma once
#include <windows.h>
#include <wininet.h>

#include <memory>
#include <string>

#include "TextBuffer.h"

// Owner of a manual-reset event that starts signalled. Move-only.
class CEventHandle {
public:
    CEventHandle() : handle(CreateEventA(nullptr, TRUE, TRUE, nullptr)) {}
    ~CEventHandle();
    CEventHandle(CEventHandle&& other) noexcept;
    CEventHandle& operator=(CEventHandle&& other) noexcept;
    CEventHandle(const CEventHandle&) = delete;
    CEventHandle& operator=(const CEventHandle&) = delete;
    operator HANDLE() const { return handle; }

private:
    HANDLE handle;
};

// One form POST and its reply. Between the start of its worker and `doneEvent`
// only the worker touches the members; the caller reads them after the event.
class CInternetHttpRequest {
public:
    CInternetHttpRequest();
    CInternetHttpRequest(const CInternetHttpRequest&) = delete;
    CInternetHttpRequest& operator=(const CInternetHttpRequest&) = delete;

    // Makes the request on a worker thread and waits for its end, pumping
    // messages. 1 when a reply came (any HTTP status); 0 after showing the error.
    int send(const char* url, const char* body);

    CEventHandle connectedEvent;
    CEventHandle requestOpenEvent;
    CEventHandle doneEvent;
    URL_COMPONENTSA urlParts;
    std::string postData;
    DWORD lastError = 0;
    CTextBuffer headers;
    CTextBuffer replyBody;
    DWORD statusCode = 0;
    // The server's last response text, taken on the worker when a call fails
    // with ERROR_INTERNET_EXTENDED_ERROR: WinInet keeps it per thread.
    char responseInfo[1024] = "";

private:
    char hostName[260];
    char userName[100];
    char password[100];
    char urlPath[260];
    char extraInfo[260];
};

// A request as the session hands it out: on the heap, counted, released once
// by its one holder.
class CInternetFile : public CInternetHttpRequest {
public:
    virtual ~CInternetFile() = default;
    void release();

    LONG refCount = 1;
};

// Holds a reply and releases it when it goes.
struct CReplyRelease {
    void operator()(CInternetFile* reply) const { reply->release(); }
};
using CReplyHolder = std::unique_ptr<CInternetFile, CReplyRelease>;

// The most of a reply's body that is read; the rest is left unread. A reply
// is text for the user, shown in the error list, and no page of text a
// person reads comes near this; the list shows this much in a moment.
const DWORD replyLimit = 64 * 1024;

DWORD WINAPI requestWorker(void* request);

// Waits for `event` in 10 ms slices, dispatching window messages between them
// (WM_QUIT too: it does not end the wait). `limit` in ms, INFINITE for none.
// The last wait's result, or WAIT_TIMEOUT when the limit ran out.
DWORD waitPumping(HANDLE event, DWORD limit);

// The raw reply headers: status line and each header zero-terminated, then an
// empty string.
void readRawHeaders(HINTERNET request, CTextBuffer& buffer);
// Appends "Cookie: <all cookies WinInet has for http://host>\r\n", if any.
void buildCookieHeader(CTextBuffer& buffer, const char* host);
