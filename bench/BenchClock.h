#pragma once
// What every benchmark here needs: a millisecond clock, the median of rounds,
// and a command line run to its end and timed.
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

inline double now()
{
    LARGE_INTEGER count, frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * count.QuadPart / frequency.QuadPart;
}

inline double median(std::vector<double> values)
{
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Its time in ms, or -1 if it did not start, failed or hung (3 minutes).
inline double runProcess(std::string commandLine)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;  // no console output in the table
    PROCESS_INFORMATION info = {};
    double start = now();
    if (!CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &info))
        return -1;
    DWORD code = 1;
    if (WaitForSingleObject(info.hProcess, 180000) == WAIT_OBJECT_0)
        GetExitCodeProcess(info.hProcess, &code);
    else
        TerminateProcess(info.hProcess, 9);
    double took = now() - start;
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
    return code == 0 ? took : -1;
}
