#pragma once
#include <windows.h>
#include "BoundedText.h"

// The installation log, TavRinInstall.log in the Windows directory: the one
// diagnostic output of the program. Each line goes to the file in one WriteFile
// under the lock, so lines of the main thread and the HTTP worker never mix,
// and a crash loses nothing that was written.
class CInstallLog {
public:
    CInstallLog();
    ~CInstallLog();
    CInstallLog(const CInstallLog&) = delete;
    CInstallLog& operator=(const CInstallLog&) = delete;

    // Creates the file afresh in `directory` and writes the two header lines.
    void open(const char* directory);
    void write(const char* text, bool stamped);
    // Formats into 1,024 characters (longer output is cut) and writes it stamped.
    void writef(const char* format, ...) __attribute__((format(ms_printf, 2, 3)));
    // The picture of the machine that opens every log.
    void writeSystemReport();

    // For tests: close the file so that another log can be opened.
    void close();

private:
    HANDLE file;
    CRITICAL_SECTION lock;
};

extern CInstallLog installLog;

// "%02d-%02d-%04d %02d:%02d:%02d": day first, as the support desk reads it.
void formatLogStamp(const SYSTEMTIME& time, char* out, size_t capacity);
