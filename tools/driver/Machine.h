#pragma once
#include <windows.h>

#include <string>

// What a scenario reads and sets on the machine besides the windows: registry
// values, the installation log, the TavRin service in test mode (its address
// in TAVRIN_SERVICE_URL) and the browser's cookie store.
namespace machine {

// "HKCU\SOFTWARE\Tavrin" into its root and key; false without a known root.
bool splitKey(const std::string& path, HKEY& root, std::string& key);
// A string value ("@" names the key's default value); "(none)" when there is none.
std::string readValue(HKEY root, const std::string& key, const std::string& name);
// Creates the key if need be; the Windows error code, 0 on success.
LONG writeValue(HKEY root, const std::string& key, const std::string& name, const std::string& value);

// TavRinInstall.log of the Windows folder as it stands, also while a run writes it.
std::string logText();

std::string serviceUrl();
struct Reply {
    int status = 0;  // 0: no answer
    std::string body;
};
// A GET of `path` on the service, or a POST of the form when one is given.
// No cookies go along or are kept.
Reply serviceCall(const std::string& path, const std::string* form);

// The cookies WinInet holds for `url`, as name=value pairs parted by "; ".
std::string cookies(const std::string& url);
// Drops the service's passport and RegistrationInfo cookies: a machine that
// never signed up.
bool forgetAccount();

}  // namespace machine
