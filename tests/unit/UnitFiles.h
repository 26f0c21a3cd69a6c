#pragma once
// File helpers the unit tests share.
#include <windows.h>

#include <string>

// "<temp folder><name> <process id>", made if missing.
inline std::string tempFolder(const std::string& name)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = temp + name + " " + std::to_string(GetCurrentProcessId());
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

inline bool writeFile(const std::string& path, const std::string& content)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    bool ok = WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(file);
    return ok && written == content.size();
}

// The whole file, also while a writer holds it open; empty if there is none.
inline std::string readFile(const std::string& path)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "";
    std::string data(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    ReadFile(file, &data[0], static_cast<DWORD>(data.size()), &got, nullptr);
    CloseHandle(file);
    return data.substr(0, got);
}
