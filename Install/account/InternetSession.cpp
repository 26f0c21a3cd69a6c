#include "account/InternetSession.h"

#include <utility>

#include "InstallLog.h"
#include "SystemLibraries.h"
#include "account/HttpRequest.h"
#include "engine/ComponentRegistration.h"

HINTERNET internetSession = nullptr;

CInternetHandle::~CInternetHandle() { reset(); }

CInternetHandle::CInternetHandle(CInternetHandle&& other) noexcept
    : handle(std::exchange(other.handle, nullptr))
{
}

CInternetHandle& CInternetHandle::operator=(CInternetHandle&& other) noexcept
{
    if (this != &other) reset(std::exchange(other.handle, nullptr));
    return *this;
}

void CInternetHandle::reset(HINTERNET owned)
{
    if (handle) systemDll::InternetCloseHandle(handle);
    handle = owned;
}

CInternetSession::CInternetSession()
{
    installLog.write("Opening Connection to Internet", true);
    // PRECONFIG: the user's proxy settings of the browser apply to us too.
    handle = systemDll::InternetOpenA("TavrinInstallation", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    internetSession = handle;
    if (!handle) {
        isOpen = 0;
        showLastSystemError(GetActiveWindow());
    }
}

CInternetSession::~CInternetSession()
{
    // A worker started later must not connect on a closed handle.
    if (internetSession == handle) internetSession = nullptr;
}

CInternetFile* CInternetSession::postForm(const char* url, const char* body, size_t)
{
    if (!isOpen) return nullptr;
    CInternetFile* reply = new CInternetFile;
    installLog.write("Creating connection to host", true);
    if (reply->send(url, body) != 1) {
        delete reply;
        reply = nullptr;
    }
    installLog.write("Download Complete", true);
    return reply;
}
