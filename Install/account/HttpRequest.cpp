#include "account/HttpRequest.h"

#include <cstring>
#include <utility>

#include "InstallLog.h"
#include "SystemLibraries.h"
#include "account/InternetErrorText.h"
#include "wizard/InstallDialog.h"

CEventHandle::~CEventHandle()
{
    if (handle) CloseHandle(handle);
}

CEventHandle::CEventHandle(CEventHandle&& other) noexcept
    : handle(std::exchange(other.handle, nullptr))
{
}

CEventHandle& CEventHandle::operator=(CEventHandle&& other) noexcept
{
    if (this != &other) {
        if (handle) CloseHandle(handle);
        handle = std::exchange(other.handle, nullptr);
    }
    return *this;
}

CInternetHttpRequest::CInternetHttpRequest()
{
    std::memset(&urlParts, 0, sizeof urlParts);
    hostName[0] = userName[0] = password[0] = urlPath[0] = extraInfo[0] = 0;
}

void CInternetFile::release()
{
    if (InterlockedDecrement(&refCount) == 0) delete this;
}

int CInternetHttpRequest::send(const char* url, const char* body)
{
    // 60 bytes in the 32-bit build; WinInet refuses any size but its own.
    std::memset(&urlParts, 0, sizeof urlParts);
    urlParts.dwStructSize = sizeof urlParts;
    hostName[0] = urlPath[0] = 0;
    urlParts.lpszHostName = hostName;
    urlParts.dwHostNameLength = sizeof hostName;
    urlParts.lpszUserName = userName;
    urlParts.dwUserNameLength = sizeof userName;
    urlParts.lpszPassword = password;
    urlParts.dwPasswordLength = sizeof password;
    urlParts.lpszUrlPath = urlPath;
    urlParts.dwUrlPathLength = sizeof urlPath;
    urlParts.lpszExtraInfo = extraInfo;
    urlParts.dwExtraInfoLength = sizeof extraInfo;
    // A URL that does not crack leaves an empty host: the connect step fails.
    systemDll::InternetCrackUrlA(url ? url : "", url ? static_cast<DWORD>(std::strlen(url)) : 0, ICU_ESCAPE,
                      &urlParts);

    postData = body ? body : "";
    ResetEvent(connectedEvent);
    ResetEvent(requestOpenEvent);
    ResetEvent(doneEvent);

    HANDLE worker = CreateThread(nullptr, 0, requestWorker, this, 0, nullptr);
    if (worker) {
        CloseHandle(worker);
        waitPumping(doneEvent, INFINITE);
    } else {
        // Nobody would ever set doneEvent: fail now rather than wait for ever.
        lastError = GetLastError();
        if (!lastError) lastError = ERROR_NOT_ENOUGH_MEMORY;
        installLog.writef("Could not start the request thread (%lu)", lastError);
    }

    if (lastError != 0) {
        std::string text;
        internetErrorText(lastError, text, responseInfo);
        internetErrorName(lastError);
        ERRORMSG(text.c_str(), false);
        return 0;
    }
    return 1;
}

DWORD waitPumping(HANDLE event, DWORD limit)
{
    DWORD start = GetTickCount();
    DWORD result = WaitForSingleObject(event, 10);
    while (result == WAIT_TIMEOUT) {
        pumpMessagesCheckingQuit();
        // Unsigned difference: right across the wrap of the tick count.
        if (limit != INFINITE && GetTickCount() - start >= limit) return WAIT_TIMEOUT;
        result = WaitForSingleObject(event, 10);
    }
    return result;
}
