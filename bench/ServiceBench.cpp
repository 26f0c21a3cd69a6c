// The exchanges with the TavRin service as the progress page makes them: the
// check ("cu") and the sign-up of a new account, and the import of 10,000
// shortcuts, through the program's own request path (a worker thread per POST,
// the message pump while it runs). run-bench.sh posts the same bodies with curl
// to the same service, one round of curl beside each round of ours, so that
// both see the same load on the machine.
//   service_bench.exe <service URL> <folder> <rounds> <imports>
// Writes curl's bodies to <folder>: cu-NN.txt and add-NN.txt per round, with
// user names of their own, before it prints "ready", and shortcuts.txt, the
// import's lines after the passport, before it answers the last round. Each line
// on standard input starts one round (later one import), answered by "round
// <ms>" or "import <ms>", or by "failed <why>". A last line "reference <round
// trip ms> <import ms> <curl start ms> <curl peak RSS KB, or -1>" gets the two
// table rows.
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include "TestThread.h"
#include <vector>

#include "BenchClock.h"
#include "account/AccountDetails.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"

namespace {
const char* const registrationPath = "/servlet/bookmarks.servlet.install.registrationServlet";
const char* const importPath = "/servlet/bookmarks.servlet.install.ImportServlet";
const int shortcutCount = 10000;

// Under Wine only the working set has a true peak: PeakPagefileUsage comes back
// as the private bytes of the moment, which are back down once a body is freed.
struct Memory {
    size_t workingSet = 0, peakWorkingSet = 0;
};

Memory memoryNow()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    Memory m;
    if (GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) {
        m.workingSet = counters.WorkingSetSize / 1024;
        m.peakWorkingSet = counters.PeakWorkingSetSize / 1024;
    }
    return m;
}

// User names of the same length for both sides, so that their bodies weigh the
// same: "prog-NN-<stamp>" for the client, "curl-NN-<stamp>" for curl.
std::string userName(const char* side, int round)
{
    char name[40];
    snprintf(name, sizeof name, "%s-%02d-%08lx", side, round,
             static_cast<unsigned long>(GetTickCount() ^ (GetCurrentProcessId() << 16)));
    return name;
}

// A personal sign-up the service takes, as the wizard's pages fill it in.
void fillDetails(AccountDetails& details, const std::string& user)
{
    details.CommandAction = "Add";
    details.UserCode = user;
    details.Password = details.RepeatPassword = "bench pass";
    details.PasswordHint = "usual";
    details.Email = user + "@mail.example";
    details.Gender = "F";
    details.AgeRange = 23;
    details.Zip = "90210";
    details.Country = 1;
}

// The import's lines after the passport: a Favorites tree of 40 folders, some
// of them two deep, with a shortcut name and a URL of everyday length each.
void appendShortcutLines(std::string& body)
{
    static const char* const topics[] = {"News", "Work", "Travel", "Shopping", "Music",
                                         "Sports", "Reference", "Finance"};
    char line[512];
    for (int i = 0; i < shortcutCount; ++i) {
        int folder = i / 250;  // 40 folders of 250
        const char* topic = topics[folder % 8];
        int written;
        if (folder % 3 == 0)
            written = snprintf(line, sizeof line,
                               "\\%s\\Folder %02d\\Shortcut %05d - Example Page\xff"
                               "http://www.site%04d.example/%s/page-%05d.html\r\n",
                               topic, folder, i, i % 1000, topic, i);
        else
            written = snprintf(line, sizeof line,
                               "\\%s %02d\\Shortcut %05d\xff"
                               "http://www.site%04d.example/index.html?item=%05d\r\n",
                               topic, folder, i, i % 1000, i);
        body.append(line, static_cast<size_t>(written));
    }
}

bool writeFile(const std::string& path, const std::string& data)
{
    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return false;
    bool ok = std::fwrite(data.data(), 1, data.size(), out) == data.size();
    return std::fclose(out) == 0 && ok;
}

// curl's account forms, built by the same code as ours: cu-NN.txt, add-NN.txt.
bool writeForms(AccountDetails& details, const std::string& folder, int rounds)
{
    for (int r = 1; r <= rounds; ++r) {
        fillDetails(details, userName("curl", r));
        char name[32];
        details.Command = "cu";
        details.buildForm();
        snprintf(name, sizeof name, "\\cu-%02d.txt", r);
        if (!writeFile(folder + name, details.formBody)) return false;
        details.Command = "Add";
        details.buildForm();
        snprintf(name, sizeof name, "\\add-%02d.txt", r);
        if (!writeFile(folder + name, details.formBody)) return false;
    }
    return true;
}

bool writeShortcuts(const std::string& folder)
{
    std::string lines;
    appendShortcutLines(lines);
    return writeFile(folder + "\\shortcuts.txt", lines);
}

// Answers every box captioned "Error" that the client puts up (a refusal or a
// failed request), so that a failing run ends with the text instead of waiting
// for a click that never comes.
class CBoxCloser {
public:
    CBoxCloser()
        : thread([this] {
              while (!stopping) {
                  EnumWindows(closeBox, reinterpret_cast<LPARAM>(this));
                  looked = true;
                  Sleep(50);
              }
          })
    {
    }
    ~CBoxCloser()
    {
        stopping = true;
        thread.join();
    }
    std::atomic<int> closed{0};
    std::atomic<bool> looked{false};

private:
    static BOOL CALLBACK closeBox(HWND window, LPARAM self)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        char caption[16] = "";
        if (process != GetCurrentProcessId() || !IsWindowVisible(window) ||
            !GetWindowTextA(window, caption, sizeof caption) || std::string(caption) != "Error")
            return TRUE;
        EnumChildWindows(window, printText, 0);
        PostMessageA(window, WM_COMMAND, IDOK, 0);
        ++reinterpret_cast<CBoxCloser*>(self)->closed;
        Sleep(200);  // time to go before the next look
        return TRUE;
    }
    static BOOL CALLBACK printText(HWND control, LPARAM)
    {
        char text[2048] = "";
        if (GetWindowTextA(control, text, sizeof text) && GetDlgCtrlID(control) != IDOK)
            std::fprintf(stderr, "service_bench: box says: %s\n", text);
        return TRUE;
    }

    std::atomic<bool> stopping{false};
    CTestThread thread;
};

std::string readPassport(const std::string& url)
{
    char text[512] = "";
    DWORD size = sizeof text;
    if (!readCookie(url.c_str(), "passport", text, size)) return "";
    text[sizeof text - 1] = 0;
    return text;
}

// The next line of standard input; false at its end (the driver has gone).
bool nextLine(char* line, size_t size)
{
    return std::fgets(line, static_cast<int>(size), stdin) != nullptr;
}

void say(const char* what, double ms = -1)
{
    if (ms < 0)
        std::printf("%s\n", what);
    else
        std::printf("%s %.3f\n", what, ms);
    std::fflush(stdout);
}

int fail(const std::string& why, const CBoxCloser& boxes)
{
    std::printf("failed %s%s\n", why.c_str(),
                boxes.closed ? " (the client showed an error box)" : "");
    std::fflush(stdout);
    return 1;
}

int run(const std::string& service, const std::string& folder, int rounds, int imports)
{
    const std::string registration = service + registrationPath;
    const std::string importUrl = service + importPath;
    // What a window program has before it talks to anyone: its message queue and
    // the display side (the box closer's first look brings that up).
    CBoxCloser boxes;
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
    while (!boxes.looked) Sleep(10);
    const Memory atStart = memoryNow();

    AccountDetails details;  // the one session, opened as the program opens it
    if (!writeForms(details, folder, rounds)) return fail("could not write to " + folder, boxes);
    say("ready");

    std::vector<double> roundTrips, importTimes;
    std::vector<std::string> passports;
    Memory afterRoundTrips;
    char line[256];
    for (int r = 1; r <= rounds; ++r) {
        if (!nextLine(line, sizeof line)) return 1;
        fillDetails(details, userName("prog", r));
        double start = now();
        bool ok = details.validateUserData(registration.c_str()) &&
                  details.registerUser(nullptr, registration.c_str(), "Add");
        roundTrips.push_back(now() - start);
        passports.push_back(readPassport(importUrl));
        if (!ok) return fail("round trip: " + details.errorText, boxes);
        if (passports.back().empty()) return fail("no passport cookie after the sign-up", boxes);
        if (r == rounds) {
            // The import's lines, for curl, once our peak of the round trips is taken.
            afterRoundTrips = memoryNow();
            if (!writeShortcuts(folder)) return fail("could not write to " + folder, boxes);
        }
        say("round", roundTrips.back());
    }

    for (int i = 0; i < imports; ++i) {
        if (!nextLine(line, sizeof line)) return 1;
        // Each import to an account of its own, as a first import is.
        std::string body = passports[passports.size() - 1 - i % passports.size()] + "\r\n";
        appendShortcutLines(body);
        double start = now();
        CReplyHolder reply(details.postForm(importUrl.c_str(), body.c_str(), body.size()));
        importTimes.push_back(now() - start);
        if (!reply) return fail("import: no reply", boxes);
        if (reply->statusCode != 200 || reply->replyBody.size())
            return fail("import: status " + std::to_string(reply->statusCode) + " " +
                            reply->replyBody.text(),
                        boxes);
        say("import", importTimes.back());
    }
    const Memory afterImports = memoryNow();

    // The prefix is thrown away after the run, but no later program of it
    // should find an account all the same.
    for (const char* name : {"passport", "RegistrationInfo"})
        storeCookie("http://127.0.0.1/",
                    (std::string(name) + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT").c_str());
    if (boxes.closed) return fail("", boxes);

    double curlRoundTrip = 0, curlImport = 0, curlStart = 0, curlPeak = 0;
    if (!nextLine(line, sizeof line) ||
        std::sscanf(line, "reference %lf %lf %lf %lf", &curlRoundTrip, &curlImport, &curlStart,
                    &curlPeak) != 4)
        return 1;
    char curlRss[32] = "-";  // unknown without GNU time on the host
    if (curlPeak > 0) snprintf(curlRss, sizeof curlRss, "%.0f", curlPeak);
    auto row = [&](const char* name, double mine, double reference, double starts,
                   const Memory& memory) {
        std::printf("%-32s %8.1f %8.1f %6.2f %10.1f %9zu %9zu %9s\n", name, mine, reference,
                    reference > 0 ? mine / reference : 0.0, starts, memory.peakWorkingSet,
                    atStart.workingSet, curlRss);
    };
    row("round trip (validate + sign-up)", median(roundTrips), curlRoundTrip, 2 * curlStart,
        afterRoundTrips);
    row("import 10,000 shortcuts", median(importTimes), curlImport, curlStart, afterImports);
    std::fflush(stdout);
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: service_bench <service URL> <folder> <rounds> <imports>\n");
        return 2;
    }
    return run(argv[1], argv[2], std::max(1, atoi(argv[3])), std::max(1, atoi(argv[4])));
}
