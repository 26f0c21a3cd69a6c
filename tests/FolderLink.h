#pragma once
// A link to a folder, for the tests of the walks. Wine 8 makes no junction
// (FSCTL_SET_REPARSE_POINT fails with error 50, CreateSymbolicLinkA answers
// TRUE and makes nothing, cmd's mklink /j fails), but it lists a Unix symbolic
// link to a folder as Windows lists a junction: a directory with
// FILE_ATTRIBUTE_REPARSE_POINT. So the link is made with ln -s, started through
// Wine's \\?\unix\ path, which needs no Z: drive. It goes with rm: Wine's
// RemoveDirectoryA and DeleteFileA follow such a link (they fail on a target
// that holds anything and delete an empty one).
#include <windows.h>

#include <string>

class FolderLink {
public:
    FolderLink(const std::string& link, const std::string& target) : path(link)
    {
        runUnix("ln -s '" + unixName(target) + "' '" + unixName(link) + "'");
    }
    ~FolderLink() { runUnix("rm -f '" + unixName(path) + "'"); }
    FolderLink(const FolderLink&) = delete;
    FolderLink& operator=(const FolderLink&) = delete;

    // The link stands and lists as a junction does.
    bool listsAsJunction() const
    {
        const DWORD wanted = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
        DWORD attributes = GetFileAttributesA(path.c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) == wanted;
    }

private:
    static std::string unixName(const std::string& windowsPath)
    {
        using UnixName = char*(CDECL*)(const WCHAR*);
        auto toUnix = reinterpret_cast<UnixName>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
        WCHAR wide[MAX_PATH] = L"";
        MultiByteToWideChar(CP_ACP, 0, windowsPath.c_str(), -1, wide, MAX_PATH);
        char* name = toUnix ? toUnix(wide) : nullptr;
        std::string result = name ? name : "";
        HeapFree(GetProcessHeap(), 0, name);
        return result;
    }
    // Wine gives no handle to wait on for a Unix program: it removes a marker
    // file of ours as its last step, and that is waited for.
    static void runUnix(const std::string& command)
    {
        char marker[MAX_PATH];
        GetTempPathA(sizeof marker, marker);
        lstrcatA(marker, "tvlink.run");
        CloseHandle(CreateFileA(marker, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        std::string line = "\\\\?\\unix\\bin\\sh -c \"" + command + "; rm -f '" + unixName(marker) + "'\"";
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started = {};
        if (!CreateProcessA(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
            return;
        for (int waited = 0; waited < 10000 && GetFileAttributesA(marker) != INVALID_FILE_ATTRIBUTES; waited += 20)
            Sleep(20);
    }

    std::string path;
};
