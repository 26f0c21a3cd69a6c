#pragma once
#include <windows.h>
#include <wininet.h>

#include <cstddef>

class CInternetFile;

// Owner of one WinInet handle: closes it when it goes. Move-only, so a handle
// is closed exactly once whoever ends up holding it.
class CInternetHandle {
public:
    CInternetHandle() = default;
    explicit CInternetHandle(HINTERNET owned) : handle(owned) {}
    virtual ~CInternetHandle();
    CInternetHandle(CInternetHandle&& other) noexcept;
    CInternetHandle& operator=(CInternetHandle&& other) noexcept;
    CInternetHandle(const CInternetHandle&) = delete;
    CInternetHandle& operator=(const CInternetHandle&) = delete;

    // Closes what is held and takes `owned` instead.
    void reset(HINTERNET owned = nullptr);

    HINTERNET handle = nullptr;
};

// The one WinInet session of the process, opened on construction. The request
// workers connect on `internetSession`, as they get no pointer to this object.
class CInternetSession : public CInternetHandle {
public:
    CInternetSession();
    ~CInternetSession() override;
    CInternetSession(CInternetSession&&) = delete;
    CInternetSession& operator=(CInternetSession&&) = delete;

    // POSTs `body` to `url` on a worker thread, pumping messages meanwhile. The
    // reply, whatever its HTTP status, or null when a WinInet call failed (the
    // user has been told) or the session never opened. The caller releases it.
    CInternetFile* postForm(const char* url, const char* body, size_t length);

    int isOpen = 1;
};

extern HINTERNET internetSession;
