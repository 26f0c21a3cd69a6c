// Time from a program's start to its first page on the screen: SETUP.EXE (which
// unpacks its cabinet, reads its setup description and checks the machine
// before the frame opens) against the one-dialog reference program.
//   startup_bench.exe <SETUP.EXE> <minimal_dialog.exe> [rounds]
// Prints one table row per program: the median in ms.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BenchClock.h"
#include "UiDriver.h"

namespace {
struct Search {
    DWORD processId;
    HWND found;
};

// A visible top-level window of the process with a visible button 1001 (Next)
// or, for the reference, 2 (Cancel): the first page is up.
BOOL CALLBACK findPage(HWND window, LPARAM parameter)
{
    auto* search = reinterpret_cast<Search*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search->processId || !IsWindowVisible(window)) return TRUE;
    HWND next = GetDlgItem(window, 1001);
    if (!next || !IsWindowVisible(next)) return TRUE;
    search->found = window;
    return FALSE;
}

// Starts the program, waits for its first page and returns the time it took
// (-1 on failure); then closes it as a user would, so that no run is left half
// done (SETUP.EXE asks "Abort Install" and removes its extraction folder).
double toFirstPage(const std::string& program, bool isSetup)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info = {};
    std::string commandLine = "\"" + program + "\"";
    double start = now();
    if (!CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info))
        return -1;
    Search search{info.dwProcessId, nullptr};
    double took = -1;
    for (int i = 0; i < 30000 && !search.found; ++i) {
        EnumWindows(findPage, reinterpret_cast<LPARAM>(&search));
        if (search.found) took = now() - start;
        else if (WaitForSingleObject(info.hProcess, 1) == WAIT_OBJECT_0) break;
    }
    if (search.found) {
        PostMessageA(search.found, WM_COMMAND, IDCANCEL, 0);
        if (isSetup) {
            uidriver::WindowQuery box{"Abort Install", info.dwProcessId, false};
            if (HWND question = uidriver::waitForWindow(box, 10000)) uidriver::pressButton(question, IDYES);
        }
    }
    if (WaitForSingleObject(info.hProcess, 20000) != WAIT_OBJECT_0) {
        TerminateProcess(info.hProcess, 9);
        took = -1;
    }
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
    return took;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: startup_bench <SETUP.EXE> <minimal_dialog.exe> [rounds]\n");
        return 2;
    }
    int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
    std::vector<double> setup, minimal;
    // Alternate the two so that both see the same machine.
    for (int round = 0; round < rounds; ++round) {
        double a = toFirstPage(argv[1], true);
        double b = toFirstPage(argv[2], false);
        if (a < 0 || b < 0) {
            std::printf("start to first page: a program did not show its page or did not end\n");
            return 1;
        }
        setup.push_back(a);
        minimal.push_back(b);
    }
    double ours = median(setup), reference = median(minimal);
    std::printf("%-28s %8s %10.1f %12.1f %14s %8.2f\n", "start to first page", "-", ours, reference, "-",
                ours / reference);
    return 0;
}
