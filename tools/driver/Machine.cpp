#include "Machine.h"

#include <wininet.h>

#include <cstdlib>
#include <vector>

namespace machine {

bool splitKey(const std::string& path, HKEY& root, std::string& key)
{
    size_t slash = path.find('\\');
    std::string name = path.substr(0, slash);
    if (name == "HKCR" || name == "HKEY_CLASSES_ROOT") root = HKEY_CLASSES_ROOT;
    else if (name == "HKCU" || name == "HKEY_CURRENT_USER") root = HKEY_CURRENT_USER;
    else if (name == "HKLM" || name == "HKEY_LOCAL_MACHINE") root = HKEY_LOCAL_MACHINE;
    else if (name == "HKU" || name == "HKEY_USERS") root = HKEY_USERS;
    else return false;
    key = slash == std::string::npos ? "" : path.substr(slash + 1);
    return true;
}

std::string readValue(HKEY root, const std::string& key, const std::string& name)
{
    std::vector<char> value(4096);
    DWORD size = static_cast<DWORD>(value.size() - 1);
    if (RegGetValueA(root, key.c_str(), name == "@" ? nullptr : name.c_str(), RRF_RT_REG_SZ, nullptr,
                     value.data(), &size) != ERROR_SUCCESS)
        return "(none)";
    return value.data();
}

LONG writeValue(HKEY root, const std::string& key, const std::string& name, const std::string& value)
{
    return RegSetKeyValueA(root, key.c_str(), name == "@" ? nullptr : name.c_str(), REG_SZ, value.c_str(),
                           static_cast<DWORD>(value.size() + 1));
}

std::string logText()
{
    char path[MAX_PATH];
    UINT length = GetWindowsDirectoryA(path, MAX_PATH - 20);
    if (!length || length >= MAX_PATH - 20) return "";
    lstrcatA(path, "\\TavRinInstall.log");
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    std::string text;
    if (file == INVALID_HANDLE_VALUE) return text;
    char piece[4096];
    DWORD got = 0;
    while (ReadFile(file, piece, sizeof piece, &got, nullptr) && got) text.append(piece, got);
    CloseHandle(file);
    return text;
}

std::string serviceUrl()
{
    const char* url = std::getenv("TAVRIN_SERVICE_URL");
    return url ? url : "";
}

namespace {
// Closes a WinInet handle when it goes out of scope.
struct Handle {
    HINTERNET handle;
    ~Handle()
    {
        if (handle) InternetCloseHandle(handle);
    }
};

// The host of the service, e.g. "127.0.0.1", and its port.
bool serviceHost(std::string& host, INTERNET_PORT& port)
{
    std::string url = serviceUrl();
    if (url.compare(0, 7, "http://") != 0) return false;
    host = url.substr(7, url.find_first_of(":/", 7) - 7);
    size_t colon = url.find(':', 7);
    port = static_cast<INTERNET_PORT>(colon == std::string::npos ? 80 : std::atoi(url.c_str() + colon + 1));
    return !host.empty();
}
}  // namespace

Reply serviceCall(const std::string& path, const std::string* form)
{
    Reply reply;
    std::string host;
    INTERNET_PORT port = 0;
    if (!serviceHost(host, port)) return reply;
    Handle session{InternetOpenA("driver", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0)};
    Handle connection{InternetConnectA(session.handle, host.c_str(), port, "", "", INTERNET_SERVICE_HTTP, 0, 0)};
    const DWORD flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_COOKIES;
    Handle request{HttpOpenRequestA(connection.handle, form ? "POST" : "GET", path.c_str(), nullptr, nullptr,
                                    nullptr, flags, 0)};
    const char* type = "Content-Type: application/x-www-form-urlencoded";
    if (!request.handle ||
        !HttpSendRequestA(request.handle, form ? type : nullptr, form ? static_cast<DWORD>(-1) : 0,
                          form ? const_cast<char*>(form->data()) : nullptr,
                          form ? static_cast<DWORD>(form->size()) : 0))
        return reply;
    DWORD status = 0, size = sizeof status;
    HttpQueryInfoA(request.handle, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
    reply.status = static_cast<int>(status);
    char piece[4096];
    DWORD got = 0;
    while (InternetReadFile(request.handle, piece, sizeof piece, &got) && got) reply.body.append(piece, got);
    return reply;
}

std::string cookies(const std::string& url)
{
    DWORD size = 0;
    InternetGetCookieA(url.c_str(), nullptr, nullptr, &size);
    if (!size) return "";
    std::vector<char> text(size + 1);
    if (!InternetGetCookieA(url.c_str(), nullptr, text.data(), &size)) return "";
    return text.data();
}

bool forgetAccount()
{
    std::string host;
    INTERNET_PORT port = 0;
    // The program keeps the cookies under the bare host of the service.
    std::string url = "http://" + (serviceHost(host, port) ? host : std::string("127.0.0.1")) + "/";
    bool forgotten = true;
    for (const char* name : {"passport", "RegistrationInfo"}) {
        std::string gone = std::string(name) + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT";
        forgotten = InternetSetCookieA(url.c_str(), nullptr, gone.c_str()) && forgotten;
    }
    return forgotten && cookies(url).find("passport=") == std::string::npos;
}

}  // namespace machine
