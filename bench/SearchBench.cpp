// The component search's walk of a folder tree, as page 103 walks each fixed
// drive, against a plain recursive FindFirstFileA walk of the same tree in the
// same run. Each walk runs in a process of its own, so that each has its own
// peak working set.
//   search_bench.exe <tree> [rounds]        the table row
//   search_bench.exe walk search|plain <tree>  one walk: "<ms> <files> <found> <peak KB> <start KB>"
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BenchClock.h"
#include "analysis/ComponentSearch.h"
#include "wizard/InstallWizard.h"

namespace {
size_t plainWalk(const std::string& folder, size_t& folders)
{
    ++folders;
    size_t files = 0;
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA((folder + "\\*.*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return 0;
    do {
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            if (lstrcmpA(entry.cFileName, ".") && lstrcmpA(entry.cFileName, ".."))
                files += plainWalk(folder + "\\" + entry.cFileName, folders);
        } else {
            ++files;
        }
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    return files;
}

size_t workingSetKB(bool peak)
{
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
    return (peak ? counters.PeakWorkingSetSize : counters.WorkingSetSize) / 1024;
}

// The product's [Files], as the description gives them: the two main DLLs are looked for.
void productFiles(CInstallSettings& settings)
{
    const struct {
        const char* name;
        bool upgradeCheck;
    } files[] = {{"TAVRIN.DLL", true}, {"TAVRINBH.DLL", true}, {"tvdownload.exe", false}, {"tvprotocol.dll", false}};
    for (const auto& file : files) {
        CInstallFile entry;
        entry.fileName = file.name;
        entry.upgradeCheck = file.upgradeCheck;
        entry.company = "TavRin Inc";
        entry.version = "3, 1, 0, 12";
        settings.files.push_back(entry);
    }
}

int walk(const std::string& kind, const std::string& tree)
{
    size_t files = 0, found = 0, folders = 0;
    double took = 0;
    size_t start = 0;
    if (kind == "plain") {
        start = workingSetKB(false);
        double begin = now();
        files = plainWalk(tree, folders);
        took = now() - begin;
    } else {
        CInstallWizard wizard(false);
        productFiles(wizard.settings);
        CSearchPage page;
        page.wizard = &wizard;
        start = workingSetKB(false);
        double begin = now();
        page.searchFolder(tree.c_str());
        took = now() - begin;
        found = wizard.settings.foundFiles.size();
    }
    std::printf("%.1f %zu %zu %zu %zu\n", took, files, found, workingSetKB(true), start);
    return 0;
}

struct Walk {
    double ms = -1;
    size_t files = 0, found = 0, peak = 0, start = 0;
};

Walk runWalk(const char* self, const char* kind, const std::string& tree)
{
    Walk result;
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE reader = nullptr, writer = nullptr;
    if (!CreatePipe(&reader, &writer, &inherit, 0)) return result;
    SetHandleInformation(reader, HANDLE_FLAG_INHERIT, 0);
    std::string commandLine = std::string("\"") + self + "\" walk " + kind + " \"" + tree + "\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writer;
    PROCESS_INFORMATION info = {};
    bool started = CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                  nullptr, &startup, &info);
    CloseHandle(writer);
    std::string output;
    char chunk[256];
    DWORD got = 0;
    while (started && ReadFile(reader, chunk, sizeof chunk, &got, nullptr) && got) output.append(chunk, got);
    CloseHandle(reader);
    if (!started) return result;
    WaitForSingleObject(info.hProcess, INFINITE);
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
    if (std::sscanf(output.c_str(), "%lf %zu %zu %zu %zu", &result.ms, &result.files, &result.found, &result.peak,
                    &result.start) != 5)
        result.ms = -1;
    return result;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::string(argv[1]) == "walk") return walk(argv[2], argv[3]);
    if (argc < 2) {
        std::fprintf(stderr, "usage: search_bench <tree> [rounds] | walk search|plain <tree>\n");
        return 2;
    }
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    const std::string tree = argv[1];
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    size_t folders = 0, files = plainWalk(tree, folders);
    std::vector<double> ours, plain;
    Walk search, reference;
    for (int r = 0; r < rounds; ++r) {
        // Each goes first in every other round, so that neither always meets a cold cache.
        for (int turn = 0; turn < 2; ++turn) {
            bool mine = (turn + r) % 2 == 0;
            Walk w = runWalk(self, mine ? "search" : "plain", tree);
            if (w.ms < 0) {
                std::printf("%-28s failed\n", mine ? "search walk" : "plain walk");
                return 1;
            }
            (mine ? ours : plain).push_back(w.ms);
            (mine ? search : reference) = w;
        }
    }
    std::printf("%-24s %8zu %8zu %7zu %10.1f %10.1f %6.2f %9zu %9zu %9zu %9zu\n", "generated tree", folders - 1,
                files, search.found, median(ours), median(plain), median(plain) > 0 ? median(ours) / median(plain) : 0,
                search.peak, search.start, reference.peak, reference.start);
    return 0;
}
