// Extraction of a cabinet as the program does it (one pass over the cabinet per
// member), against Wine's own extrac32.exe on the same cabinet in the same run
// (Wine's expand.exe unpacks no multi-file cabinet into a folder).
//   extract_bench.exe <cabinet> [rounds]
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "BenchClock.h"
#include "analysis/CabinetFile.h"
#include "description/PathHelpers.h"

namespace {
std::string scratchFolder(const char* name)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + name;
    removeTree(folder.c_str());
    createFolderPath(folder.c_str());
    return folder;
}

double ours(const char* cabinet, size_t& members)
{
    std::string folder = scratchFolder("bench-ours");
    double start = now();
    CCabinetFile file;
    file.listFiles(cabinet);
    for (size_t i = 0; i < file.fileCount(); ++i) file.extractFile(i, folder.c_str());
    double took = now() - start;
    members = file.fileCount();
    removeTree(folder.c_str());
    return took;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: extract_bench <cabinet> [rounds]\n");
        return 2;
    }
    int rounds = argc > 2 ? std::max(1, atoi(argv[2])) : 5;
    std::vector<double> mine, expand, start;
    size_t members = 0;
    for (int r = 0; r < rounds; ++r) {
        mine.push_back(ours(argv[1], members));
        std::string folder = scratchFolder("bench-expand");
        expand.push_back(runProcess("extrac32.exe /Y /E /L \"" + folder + "\" \"" + std::string(argv[1]) + "\""));
        if (!fileExists(folder.c_str(), "setup.ini")) expand.back() = -1;  // the reference must really unpack
        removeTree(folder.c_str());
        // What starting any program costs here, to read expand.exe's figure against.
        start.push_back(runProcess("cmd.exe /c exit"));
    }
    double m = median(mine), e = median(expand), s = median(start);
    std::printf("%-28s %8zu %10.1f %12.1f %14.1f %8.2f\n", argv[1] + std::string(argv[1]).find_last_of("\\/") + 1,
                members, m, e, s, e > 0 ? m / e : 0.0);
    return 0;
}
