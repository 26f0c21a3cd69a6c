#pragma once
#include <windows.h>

// Reads a file's fixed version ("a.b.c.d") through version.dll, loaded at run time.
class CFileVersionInfo {
public:
    CFileVersionInfo();
    ~CFileVersionInfo();
    CFileVersionInfo(const CFileVersionInfo&) = delete;
    CFileVersionInfo& operator=(const CFileVersionInfo&) = delete;

    // On failure `text` is not touched.
    bool read(const char* path, char* text, size_t capacity);

private:
    typedef DWORD(WINAPI* SizeFunction)(LPCSTR, LPDWORD);
    typedef BOOL(WINAPI* InfoFunction)(LPCSTR, DWORD, DWORD, LPVOID);
    typedef BOOL(WINAPI* QueryFunction)(LPCVOID, LPCSTR, LPVOID*, PUINT);
    HMODULE module;
    SizeFunction getFileVersionInfoSize;
    InfoFunction getFileVersionInfo;
    QueryFunction verQueryValue;
};

// The value of the "Connection Type" line for the flags of InternetGetConnectedState.
const char* connectionTypeText(DWORD flags, char* out, size_t capacity);
