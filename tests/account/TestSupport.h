#pragma once
#include <windows.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

// The reference service the tests talk to: TAVRIN_SERVICE_URL, e.g.
// http://127.0.0.1:8123 (no slash at the end).
std::string serviceUrl();
std::string registrationUrl();

struct ServiceAnswer {
    DWORD status = 0;
    std::string body;
};
// A request of the test's own, beside the program's: no cookies either way.
ServiceAnswer serviceCall(const char* verb, const std::string& path, const std::string& form = "");
// POST /__fault with a form such as "path=/x&status=500".
void addFault(const std::string& form);
void clearFaults();

// One request as the service saw it.
struct SeenRequest {
    std::string method, path, query, body;
    std::vector<std::pair<std::string, std::string>> headers;
    int headerCount(const char* name) const;
    std::string header(const char* name) const;
};
std::vector<SeenRequest> lastRequests(int count);

// Every string literal of a JSON text, in order, with escapes decoded
// (\u00XX as that byte).
std::vector<std::string> jsonStrings(const std::string& json);

// A user name no earlier run has taken.
std::string freshUserName(const char* prefix);

// Answers, from a second thread, every visible window of this process with
// `caption` (a message box or the error list), until stopped; records what
// each showed: "list:" and the error list's text, or "box:" and the message.
class CBoxAnswerer {
public:
    explicit CBoxAnswerer(const char* caption = "Error", int button = IDOK);
    ~CBoxAnswerer();
    // Stops and returns what was shown. Call after the code under test returned:
    // its boxes are modal, so each has been answered by then.
    std::vector<std::string> stop();

private:
    std::string caption;
    int button;
    std::atomic<bool> stopping{false};
    std::vector<std::string> seen;
    std::thread thread;
};

// Runs this test program again with `arguments` and extra environment
// variables ("NAME=value"); returns its standard output and exit code.
std::string runSelf(const std::string& arguments, const std::vector<std::string>& environment,
                    DWORD* exitCode = nullptr);
