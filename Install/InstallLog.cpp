#include "InstallLog.h"

#include <cstdarg>
#include <cstdio>

#include "BoundedText.h"
#include "DeploymentConfig.h"
#include "TextBuffer.h"
#include "description/PathHelpers.h"

CInstallLog installLog;

CInstallLog::CInstallLog() : file(nullptr) { InitializeCriticalSection(&lock); }

CInstallLog::~CInstallLog()
{
    close();
    DeleteCriticalSection(&lock);
}

void CInstallLog::close()
{
    EnterCriticalSection(&lock);
    if (file && file != INVALID_HANDLE_VALUE) CloseHandle(file);
    file = nullptr;
    LeaveCriticalSection(&lock);
}

void CInstallLog::open(const char* directory)
{
    char path[MAX_PATH];
    joinPath(directory, "TavRinInstall.log", path, sizeof path);
    close();  // an earlier log's handle would refuse the new file by its share mode
    HANDLE created = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    EnterCriticalSection(&lock);
    if (file && file != INVALID_HANDLE_VALUE) CloseHandle(file);
    // INVALID_HANDLE_VALUE is kept as it is: every later write then fails quietly.
    file = created;
    LeaveCriticalSection(&lock);
    write("TavRin Installation Log", true);
    write("If you experience any problems during the installation, please forward this log to "
          TAVRIN_SUPPORT_EMAIL, true);
}

void formatLogStamp(const SYSTEMTIME& t, char* out, size_t capacity)
{
    formatText(out, capacity, "%02d-%02d-%04d %02d:%02d:%02d", t.wDay, t.wMonth, t.wYear, t.wHour,
             t.wMinute, t.wSecond);
}

void CInstallLog::write(const char* text, bool stamped)
{
    if (!file) return;
    EnterCriticalSection(&lock);
    CTextBuffer line;
    if (stamped) {
        SYSTEMTIME now;
        GetLocalTime(&now);
        char stamp[255];
        formatLogStamp(now, stamp, sizeof stamp);
        line.appendText(stamp);
        line.appendText("- ");
    }
    line.appendText(text);
    line.appendText("\r\n");
    DWORD written = 0;
    WriteFile(file, line.text(), static_cast<DWORD>(line.size()), &written, nullptr);
    LeaveCriticalSection(&lock);
}

void CInstallLog::writef(const char* format, ...)
{
    char text[1024];
    va_list args;
    va_start(args, format);
    formatTextList(text, sizeof text, format, args);  // cuts at 1,023 characters
    va_end(args);
    write(text, true);
}
