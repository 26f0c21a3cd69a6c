#pragma once
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "TestThread.h"

// The reference service: TAVRIN_SERVICE_URL, e.g. http://127.0.0.1:8123.
inline std::string serviceUrl() { return getenv("TAVRIN_SERVICE_URL") ? getenv("TAVRIN_SERVICE_URL") : ""; }
inline std::string registrationUrl() { return serviceUrl() + "/servlet/bookmarks.servlet.install.registrationServlet"; }
// A request of the test's own, beside the program's, with no cookies: a GET,
// or a POST of `form`. The reply's body.
std::string serviceCall(const std::string& path, const char* form = nullptr);
inline void addFault(const std::string& form) { serviceCall("/__fault", form.c_str()); }
inline void clearFaults() { serviceCall("/__clear", "all=1"); }

// One request as the service saw it.
struct SeenRequest {
    std::string path, query, body;
    std::vector<std::pair<std::string, std::string>> headers;
    int count(const char* header) const;
};
std::vector<SeenRequest> lastRequests(int count);
// Every string literal of a JSON text, in order, escapes decoded.
std::vector<std::string> jsonStrings(const std::string& json);

// Answers with OK, from a second thread, every window of this process captioned
// "Error", recording "list:" and the error list's text or "box:" and a message
// box's. The code under test shows its boxes modally, so when it has returned,
// stop() has all of them.
class CBoxAnswerer {
public:
    CBoxAnswerer();
    ~CBoxAnswerer() { stop(); }
    std::vector<std::string> stop();

private:
    std::atomic<bool> stopping{false};
    std::vector<std::string> seen;
    CTestThread thread;
};
