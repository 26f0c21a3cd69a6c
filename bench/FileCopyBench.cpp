// The install engine's copying, against Windows' own ways of doing the same
// work, each pair measured in the same run:
//   file_copy_bench.exe copy <MB> [rounds]
//     copyFileBlocks against CopyFileA on one file of <MB> megabytes in the
//     temp folder.
//   file_copy_bench.exe install <setup program> <its cabinet> [rounds]
//     a quiet install (<setup program> /Q into an existing folder: extraction,
//     copy, registration, uninstall entry) against extrac32.exe /E of the same
//     cabinet followed by one cmd /c copy of the files its setup.ini lists.
//     (Wine's expand.exe knows no -F:* and writes every member of a cabinet to
//     one output file, so it cannot serve as the reference here.)
// Prints one row: work, MB copied, ours, reference, program start, ratio (ms).
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "BenchClock.h"
#include "description/PathHelpers.h"
#include "engine/FileCopy.h"

namespace {
const char* const installFolder = "C:\\Program Files\\TavRin";

std::string tempPath(const char* name)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    return std::string(temp) + name;
}

long long fileSize(const std::string& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return -1;
    return (static_cast<long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

void printRow(const std::string& work, double megabytes, double ours, double reference, double start)
{
    char startText[32] = "-";
    if (start >= 0) std::snprintf(startText, sizeof startText, "%.1f", start);
    std::printf("%-28s %8.2f %10.1f %12.1f %14s %8.2f\n", work.c_str(), megabytes, ours, reference, startText,
                reference > 0 ? ours / reference : 0.0);
}

int failed(const std::string& work)
{
    std::printf("%-28s failed\n", work.c_str());
    return 1;
}

int benchCopy(int megabytes, int rounds)
{
    const std::string source = tempPath("bench-copy-source.bin"), target = tempPath("bench-copy-target.bin");
    HANDLE file = CreateFileA(source.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return failed("copyFileBlocks/CopyFileA");
    std::vector<char> chunk(1 << 20);
    for (int mb = 0; mb < megabytes; ++mb) {
        for (size_t i = 0; i < chunk.size(); ++i) chunk[i] = static_cast<char>(i * 7 + mb);
        DWORD written = 0;
        WriteFile(file, chunk.data(), static_cast<DWORD>(chunk.size()), &written, nullptr);
    }
    CloseHandle(file);

    std::vector<double> ours, reference;
    const int noCancel = 0;
    for (int r = 0; r < rounds; ++r) {
        // Each goes first in every other round, so that neither always meets a cold cache.
        for (int turn = 0; turn < 2; ++turn) {
            DeleteFileA(target.c_str());
            double start = now();
            bool copied = (turn + r) % 2 ? CopyFileA(source.c_str(), target.c_str(), FALSE)
                                         : copyFileBlocks(source.c_str(), target.c_str(), noCancel, nullptr, nullptr);
            double took = now() - start;
            if (!copied || fileSize(target) != static_cast<long long>(megabytes) << 20)
                return failed("copyFileBlocks/CopyFileA");
            ((turn + r) % 2 ? reference : ours).push_back(took);
        }
    }
    DeleteFileA(target.c_str());
    DeleteFileA(source.c_str());
    printRow("copyFileBlocks/CopyFileA", megabytes, median(ours), median(reference), -1);
    return 0;
}

// A machine without the product, and its folder made for a quiet run.
void clearInstallation(const std::string& folder)
{
    removeTree(installFolder);
    CreateDirectoryA(installFolder, nullptr);
    removeTree(folder.c_str());
    for (const char* id : {"{16C7C243-7FA0-11D3-A0E4-0A02B9000000}", "{16C7C244-7FA0-11D3-A0E4-0A02B9000000}",
                           "{16C7C245-7FA0-11D3-A0E4-0A02B9000000}"})
        RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + id).c_str());
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin");
}

int benchInstall(const char* program, const char* cabinet, int rounds)
{
    const std::string extracted = tempPath("bench-extrac32"), copies = tempPath("bench-copies");
    std::vector<double> ours, reference, start;
    double megabytes = 0;
    for (int r = 0; r < rounds; ++r) {
        clearInstallation(extracted);
        ours.push_back(runProcess("\"" + std::string(program) + "\" /Q"));

        removeTree(copies.c_str());
        CreateDirectoryA(copies.c_str(), nullptr);
        double extract = runProcess("extrac32.exe /Y /E /L \"" + extracted + "\" \"" + cabinet + "\"");
        std::vector<char> keys(32768);
        GetPrivateProfileSectionA("Files", keys.data(), static_cast<DWORD>(keys.size()),
                                  (extracted + "\\setup.ini").c_str());
        std::vector<std::string> names;
        std::string command = "cmd.exe /c";
        for (const char* line = keys.data(); *line; line += std::strlen(line) + 1) {
            names.emplace_back(line, std::strcspn(line, "="));
            if (names.size() > 1) command += " &";
            command += " copy /y \"" + extracted + "\\" + names.back() + "\" \"" + copies + "\" >nul";
        }
        double copy = runProcess(command);
        reference.push_back(extract < 0 || copy < 0 ? -1 : extract + copy);
        // What starting any program costs here: the reference starts two.
        start.push_back(runProcess("cmd.exe /c exit"));

        // Both did the whole work, or the row says so.
        megabytes = 0;
        for (const std::string& name : names) {
            long long size = fileSize(extracted + "\\" + name);
            if (size < 0 || fileSize(installFolder + ("\\" + name)) != size || fileSize(copies + "\\" + name) != size)
                return failed(program);
            megabytes += size / 1048576.0;
        }
        if (ours.back() < 0 || reference.back() < 0 || names.empty()) return failed(program);
    }
    clearInstallation(extracted);
    removeTree(copies.c_str());
    RemoveDirectoryA(installFolder);
    std::string name(program);
    printRow(name.substr(name.find_last_of("\\/") + 1) + " /Q", megabytes, median(ours), median(reference),
             median(start));
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "copy" && argc > 2) return benchCopy(std::max(1, atoi(argv[2])), argc > 3 ? std::max(1, atoi(argv[3])) : 3);
    if (mode == "install" && argc > 3)
        return benchInstall(argv[2], argv[3], argc > 4 ? std::max(1, atoi(argv[4])) : 3);
    std::fprintf(stderr, "usage: file_copy_bench copy <MB> [rounds] | install <setup program> <cabinet> [rounds]\n");
    return 2;
}
