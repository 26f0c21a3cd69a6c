#include "Scenario.h"

#include <windows.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "Machine.h"
#include "Screenshot.h"
#include "UiDriver.h"

namespace scenario {
namespace {

// Waits are bounded: a missing window fails the step instead of hanging the run.
const DWORD windowWait = 20000;  // a frame, a page, a box
const DWORD settleWait = 5000;   // a state after a posted press
const DWORD endWait = 30000;

std::string expand(const std::string& text)
{
    char buffer[4096];
    DWORD length = ExpandEnvironmentStringsA(text.c_str(), buffer, sizeof buffer);
    return length && length <= sizeof buffer ? buffer : text;
}

bool exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

void deleteTree(const std::string& path)
{
    DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        DeleteFileA(path.c_str());
        return;
    }
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((path + "\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            std::string name = found.cFileName;
            if (name != "." && name != "..") deleteTree(path + "\\" + name);
        } while (FindNextFileA(search, &found));
        FindClose(search);
    }
    RemoveDirectoryA(path.c_str());
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// A caption as part of a file name: letters and digits, the rest '-'.
std::string fileNamePart(const std::string& text)
{
    std::string part;
    for (char c : text) part += isalnum(static_cast<unsigned char>(c)) ? c : '-';
    return part;
}

// The started SETUP.EXE; ended when the run fails or stops with it still there.
class Program {
public:
    ~Program() { close(); }
    bool start(const std::string& commandLine)
    {
        close();
        std::vector<char> buffer(commandLine.begin(), commandLine.end());
        buffer.push_back(0);
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        return CreateProcessA(nullptr, buffer.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                              &info) != FALSE;
    }
    bool started() const { return info.hProcess != nullptr; }
    bool running() const { return started() && WaitForSingleObject(info.hProcess, 0) == WAIT_TIMEOUT; }
    // False while it still runs after `ms`.
    bool wait(DWORD ms, DWORD& code) const
    {
        if (!started() || WaitForSingleObject(info.hProcess, ms) != WAIT_OBJECT_0) return false;
        return GetExitCodeProcess(info.hProcess, &code) != FALSE;
    }
    void kill()
    {
        if (!running()) return;
        TerminateProcess(info.hProcess, 9);
        WaitForSingleObject(info.hProcess, 5000);
    }
    DWORD id() const { return info.dwProcessId; }

private:
    void close()
    {
        if (info.hProcess) CloseHandle(info.hProcess);
        if (info.hThread) CloseHandle(info.hThread);
        info = {};
    }
    PROCESS_INFORMATION info = {};
};

struct Windows {
    DWORD processId;
    std::vector<HWND> found;
};

BOOL CALLBACK collectWindow(HWND window, LPARAM parameter)
{
    auto* windows = reinterpret_cast<Windows*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == windows->processId && IsWindowVisible(window)) windows->found.push_back(window);
    return TRUE;
}

class Runner {
public:
    explicit Runner(const RunOptions& options) : options(options), program(options.program) {}
    bool run(const std::vector<Step>& steps);

private:
    bool execute(const Step& step);
    bool fail(const std::string& what) { return failure = what, false; }
    // Polls until `done`; false when the time is up or the program has ended.
    bool waitFor(const std::function<bool()>& done, DWORD ms);
    HWND page() const;
    HWND pageControl(int id) const;
    HWND anyControl(int id) const;
    bool needFrame();
    bool shot(const std::string& name, std::string& path);
    std::string screen();

    RunOptions options;
    std::string program;
    Program process;
    HWND frame = nullptr;
    int shots = 0;
    std::string failure;
};

bool Runner::waitFor(const std::function<bool()>& done, DWORD ms)
{
    for (DWORD start = GetTickCount();; Sleep(50)) {
        if (done()) return true;
        if (!process.running() || GetTickCount() - start >= ms) return done();
    }
}

HWND Runner::page() const
{
    for (HWND child = FindWindowExA(frame, nullptr, "#32770", nullptr); child;
         child = FindWindowExA(frame, child, "#32770", nullptr))
        if (IsWindowVisible(child)) return child;
    return nullptr;
}

HWND Runner::pageControl(int id) const
{
    HWND shown = page();
    return shown ? GetDlgItem(shown, id) : nullptr;
}

HWND Runner::anyControl(int id) const
{
    HWND control = frame ? GetDlgItem(frame, id) : nullptr;
    return control ? control : pageControl(id);
}

bool Runner::needFrame()
{
    if (frame && IsWindow(frame)) return true;
    return fail("no frame: a `frame` step comes first");
}

bool Runner::shot(const std::string& name, std::string& path)
{
    Sleep(200);  // what has just come up is painted
    char number[16];
    snprintf(number, sizeof number, "%02d-", ++shots);
    path = options.shotsFolder + "\\" + number + name + ".bmp";
    return uidriver::saveScreen(path);
}

// What the user would see: the program's windows and the page on show.
std::string Runner::screen()
{
    std::string seen;
    DWORD code = 0;
    if (process.started() && process.wait(0, code))
        return "  the program has ended with exit code " + std::to_string(code) + "\n";
    Windows windows = {process.id(), {}};
    if (process.started()) EnumWindows(collectWindow, reinterpret_cast<LPARAM>(&windows));
    for (HWND window : windows.found) {
        seen += "  window " + quoted(uidriver::windowText(window));
        std::string message = uidriver::messageText(window);
        if (!message.empty()) seen += " says " + quoted(message);
        seen += "\n";
    }
    if (HWND shown = frame ? page() : nullptr) {
        seen += "  page:";
        for (const uidriver::Control& control : uidriver::listControls(shown))
            if (control.visible && !control.text.empty())
                seen += " " + (control.id == 0xFFFF ? "" : std::to_string(control.id) + "=") +
                        quoted(control.text.substr(0, 60));
        seen += "\n";
    }
    return seen;
}

bool Runner::run(const std::vector<Step>& steps)
{
    for (const Step& step : steps) {
        failure.clear();
        if (!execute(step)) {
            std::printf("line %d failed: %s\n  %s\n%s", step.line, step.source.c_str(), failure.c_str(),
                        screen().c_str());
            std::string path;
            if (!options.shotsFolder.empty() && shot("failed", path))
                std::printf("  screen: %s\n", path.c_str());
            process.kill();
            return false;
        }
        std::printf("%4d ok  %s\n", step.line, step.source.c_str());
        std::fflush(stdout);
    }
    if (process.running()) {
        std::printf("the program still runs after the last step: an `end` step is missing\n");
        process.kill();
        return false;
    }
    return true;
}

bool Runner::execute(const Step& step)
{
    const std::string& verb = step.verb;
    const std::vector<std::string>& args = step.args;
    int id = args.empty() ? 0 : std::atoi(args[0].c_str());  // the steps on a control start with its id
    std::string text = args.size() > 1 ? args.back() : "";

    if (verb == "program") {
        program = expand(args[0]);
        if (program.size() < 2 || (program[1] != ':' && program[0] != '\\'))
            program = options.program.substr(0, options.program.find_last_of('\\') + 1) + program;
        return exists(program) || fail("no such file: " + program);
    }
    if (verb == "start") {
        if (process.running()) return fail("the program started before still runs");
        frame = nullptr;
        std::string commandLine = quoted(program) + (args.empty() ? "" : " " + args[0]);
        return process.start(commandLine) ||
               fail("cannot start " + program + ": error " + std::to_string(GetLastError()));
    }
    if (verb == "frame") {
        if (!process.started()) return fail("nothing started");
        uidriver::WindowQuery query;
        query.caption = args[0];
        query.processId = process.id();
        waitFor([&] { return (frame = uidriver::findWindow(query)) != nullptr; }, windowWait);
        return frame || fail("no window " + quoted(args[0]) + " within 20 s");
    }
    if (verb == "box") {
        if (!process.started()) return fail("nothing started");
        uidriver::WindowQuery query;
        query.caption = args[0];
        query.processId = process.id();
        HWND box = nullptr;
        if (!waitFor([&] { return (box = uidriver::findWindow(query)) != nullptr; }, windowWait))
            return fail("no box " + quoted(args[0]) + " within 20 s");
        std::string message = uidriver::messageText(box);
        if (args.size() > 2 && message != args[2]) return fail("the box says " + quoted(message));
        // Every box is pictured: a box is a page of its road too.
        std::string path;
        if (!options.shotsFolder.empty() && !shot("box-" + fileNamePart(args[0]), path))
            return fail("cannot write " + path);
        uidriver::pressButton(box, buttonId(args[1]));
        return waitFor([&] { return !IsWindow(box) || !IsWindowVisible(box); }, settleWait) ||
               fail("the box is still there after " + args[1]);
    }
    if (verb == "end") {
        DWORD expected = args.empty() ? 0 : std::strtoul(args[0].c_str(), nullptr, 10), code = 0;
        if (!process.started()) return fail("nothing started");
        if (!process.wait(endWait, code)) return fail("still running after 30 s");
        return code == expected || fail("exit code " + std::to_string(code));
    }
    if (verb == "expect-running") {
        DWORD code = 0;
        if (!process.started()) return fail("nothing started");
        return !process.wait(id, code) || fail("the program ended with exit code " + std::to_string(code));
    }
    if (verb == "shot") {
        std::string path;
        if (options.shotsFolder.empty()) return true;
        return shot(args[0], path) || fail("cannot write " + path);
    }
    if (verb == "expect-file" || verb == "expect-no-file") {
        // While the program runs it may still be on its way: a box closed,
        // the folder it asked about not yet made.
        std::string path = expand(args[0]);
        bool wanted = verb == "expect-file";
        return waitFor([&] { return exists(path) == wanted; }, windowWait) ||
               fail(wanted ? "no " + path : path + " is there");
    }
    if (verb == "delete-tree") {
        std::string path = expand(args[0]);
        deleteTree(path);
        return !exists(path) || fail(path + " could not be removed");
    }
    if (verb == "reg-delete") {
        HKEY root;
        std::string key;
        if (!machine::splitKey(args[0], root, key) || key.empty())
            return fail("no registry root in " + quoted(args[0]));
        LONG result = RegDeleteTreeA(root, key.c_str());
        return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND ||
               fail("cannot delete the key: error " + std::to_string(result));
    }
    if (verb == "reg-set" || verb == "expect-reg") {
        HKEY root;
        std::string key, value = expand(args[2]);
        if (!machine::splitKey(args[0], root, key)) return fail("no registry root in " + quoted(args[0]));
        if (verb == "reg-set") {
            LONG result = machine::writeValue(root, key, args[1], value);
            return result == ERROR_SUCCESS || fail("cannot write the value: error " + std::to_string(result));
        }
        // Other processes may still be on their way to it (an uninstall stage, say).
        std::string seen;
        for (DWORD start = GetTickCount(); (seen = machine::readValue(root, key, args[1])) != value &&
                                           GetTickCount() - start < windowWait;)
            Sleep(100);
        return seen == value || fail("it reads " + quoted(seen));
    }
    if (verb == "expect-log" || verb == "expect-no-log") {
        const std::string line = "- " + expand(args[0]) + "\r\n";
        bool wanted = verb == "expect-log", found = false;
        return waitFor([&] { return (found = machine::logText().find(line) != std::string::npos) == wanted; },
                       windowWait) ||
               fail(found ? "the log has that line" : "the log has no such line");
    }
    if (verb == "unique") {
        std::string value = args[1] + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
        return SetEnvironmentVariableA(args[0].c_str(), value.c_str()) || fail("not set");
    }
    if (verb == "forget-account") return machine::forgetAccount() || fail("the passport is still there");
    if (verb == "expect-cookie") {
        std::string url = expand(args[0]), seen = machine::cookies(url);
        return seen.find(expand(args[1])) != std::string::npos || fail("the cookies of " + url + ": " + quoted(seen));
    }
    if (verb == "service" || verb == "expect-service") {
        if (machine::serviceUrl().empty()) return fail("TAVRIN_SERVICE_URL is not set");
        // `service` posts the text as a form, `expect-service` looks for it in the answer.
        std::string path = expand(args[0]), text = args.size() > 1 ? expand(args[1]) : "";
        bool post = verb == "service" && args.size() > 1;
        machine::Reply reply = machine::serviceCall(path, post ? &text : nullptr);
        if (reply.status == 0) return fail("no answer from " + machine::serviceUrl());
        if (verb == "service")
            return (reply.status >= 200 && reply.status <= 299) ||
                   fail("the service answers " + std::to_string(reply.status) + ": " + quoted(reply.body));
        // Any status: a refusal's text (404 "no such account") can be what is expected.
        return reply.body.find(text) != std::string::npos ||
               fail("the service answers " + quoted(reply.body.substr(0, 2000)));
    }

    // The rest acts on or reads the wizard's windows.
    if (!needFrame()) return false;
    if (verb == "page")
        return waitFor([&] { HWND c = pageControl(id); return c && IsWindowVisible(c); }, windowWait) ||
               fail("no page with control " + args[0] + " within 20 s");
    if (verb == "page-text") {
        auto shows = [&] {
            HWND shown = page();
            if (!shown) return false;
            for (const uidriver::Control& control : uidriver::listControls(shown))
                if (control.visible && control.text == args[0]) return true;
            return false;
        };
        return waitFor(shows, windowWait) || fail("no page showing " + quoted(args[0]) + " within 20 s");
    }
    bool onPage =
        verb == "click-page" || verb == "type" || verb == "pick" || verb == "tick" || verb == "untick";
    HWND control = nullptr;
    waitFor([&] { return (control = onPage ? pageControl(id) : anyControl(id)) != nullptr; }, settleWait);
    if (!control) return fail("no control " + args[0] + (onPage ? " on the page on show" : ""));
    LONG style = GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK;
    bool checkBox =
        style == BS_CHECKBOX || style == BS_AUTOCHECKBOX || style == BS_3STATE || style == BS_AUTO3STATE;
    bool radio = style == BS_RADIOBUTTON || style == BS_AUTORADIOBUTTON;
    auto checked = [&] { return SendMessageA(control, BM_GETCHECK, 0, 0) == BST_CHECKED; };
    auto usable = [&] { return IsWindowVisible(control) && IsWindowEnabled(control); };

    if (verb == "click" || verb == "click-page") {
        if (!waitFor(usable, settleWait))
            return fail(quoted(uidriver::windowText(control)) +
                        (IsWindowVisible(control) ? " is disabled" : " is hidden"));
        // A radio or check box changes its own state on a click; BN_CLICKED alone would not.
        if (verb == "click-page" && (checkBox || radio))
            return PostMessageA(control, BM_CLICK, 0, 0) || fail("not sent");
        return uidriver::pressButton(GetParent(control), id) || fail("not sent");
    }
    if (verb == "tick" || verb == "untick") {
        bool wanted = verb == "tick";
        if (!checkBox) return fail("control " + args[0] + " is no check box");
        if (checked() != wanted && !usable()) return fail("the check box is disabled or hidden");
        if (checked() != wanted) PostMessageA(control, BM_CLICK, 0, 0);
        return waitFor([&] { return checked() == wanted; }, settleWait) ||
               fail("the check box did not change");
    }
    if (verb == "type") {
        text = expand(text);
        uidriver::setControlText(GetParent(control), id, text);
        return uidriver::windowText(control) == text ||
               fail("it reads " + quoted(uidriver::windowText(control)));
    }
    if (verb == "pick") {
        int row = std::atoi(args[1].c_str());
        if (SendMessageA(control, CB_SETCURSEL, row, 0) != row)
            return fail("the combo box has no row " + args[1]);
        // CB_SETCURSEL sends no notification: the page learns of the pick as from a user.
        return PostMessageA(GetParent(control), WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE),
                            reinterpret_cast<LPARAM>(control)) || fail("not sent");
    }
    if (verb == "expect-enabled" || verb == "expect-disabled") {
        bool wanted = verb == "expect-enabled";
        return waitFor([&] { return (IsWindowEnabled(control) != FALSE) == wanted; }, settleWait) ||
               fail(wanted ? "it is disabled" : "it is enabled");
    }
    if (verb == "expect-checked" || verb == "expect-unchecked") {
        bool wanted = verb == "expect-checked";
        return waitFor([&] { return checked() == wanted; }, settleWait) ||
               fail(wanted ? "it is not checked" : "it is checked");
    }
    if (verb == "expect-text") {
        text = expand(text);
        return waitFor([&] { return uidriver::windowText(control) == text; }, settleWait) ||
               fail("it reads " + quoted(uidriver::windowText(control)));
    }
    return fail("no such step");
}
}  // namespace

bool runScenario(const std::vector<Step>& steps, const RunOptions& options)
{
    Runner runner(options);
    return runner.run(steps);
}

}  // namespace scenario
