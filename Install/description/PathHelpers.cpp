#include "description/PathHelpers.h"

#include <cctype>
#include <cstring>

#include "BoundedText.h"

char* joinPath(const char* folder, const char* name, char* out, size_t capacity)
{
    copyText(out, folder, capacity);
    size_t length = std::strlen(out);
    if (length == 0 || out[length - 1] != '\\') appendText(out, "\\", capacity);
    if (name) appendText(out, name, capacity);
    return out;
}

size_t joinedLength(const char* folder, const char* name)
{
    size_t length = std::strlen(folder);
    bool separator = length == 0 || folder[length - 1] != '\\';
    return length + separator + (name ? std::strlen(name) : 0);
}

bool fileExists(const char* folder, const char* name)
{
    char path[MAX_PATH];
    if (name)
        joinPath(folder, name, path, sizeof path);
    else
        copyText(path, folder, sizeof path);
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

bool isPlainMemberName(const char* name)
{
    if (!*name || name[0] == '\\' || name[0] == '/') return false;
    for (const char* p = name; *p; ++p)
        if (*p == ':' || (p[0] == '.' && p[1] == '.')) return false;
    return true;
}

bool folderExists(const char* path)
{
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(path, &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    bool folder = false;
    do {
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            folder = true;
            break;
        }
    } while (FindNextFileA(search, &found));
    FindClose(search);
    return folder;
}

bool createFolderPath(const char* path)
{
    char copy[MAX_PATH];
    copyText(copy, path, sizeof copy);
    char* p = copy;
    if (copy[0] && copy[1] == ':') p = copy + 2;
    if (*p == '\\') ++p;
    for (; *p; ++p) {
        if (*p != '\\') continue;
        *p = 0;
        CreateDirectoryA(copy, nullptr);
        *p = '\\';
    }
    CreateDirectoryA(copy, nullptr);
    return folderExists(copy);
}

WalkEntry walkEntryOf(DWORD attributes)
{
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) return WalkEntry::link;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? WalkEntry::folder : WalkEntry::file;
}

bool removeTree(const char* path)
{
    // Decided on the path itself, not on the listing that named it: a folder
    // put in the place of a listed one is taken as what it is now.
    DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if (walkEntryOf(attributes) == WalkEntry::link) {
        // Removing a junction or a link to a folder takes the link, never its target.
        if (attributes & FILE_ATTRIBUTE_DIRECTORY) return RemoveDirectoryA(path) == TRUE;
        return DeleteFileA(path) == TRUE;
    }
    char pattern[MAX_PATH];
    joinPath(path, "*.*", pattern, sizeof pattern);
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(pattern, &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if (found.cFileName[0] == '.') continue;
            char full[MAX_PATH];
            joinPath(path, found.cFileName, full, sizeof full);
            // A name that does not fit the buffer is left alone rather than cut
            // into the name of something else.
            if (std::strlen(path) + 1 + std::strlen(found.cFileName) >= sizeof full) continue;
            if (walkEntryOf(found.dwFileAttributes) == WalkEntry::file)
                DeleteFileA(full);
            else
                removeTree(full);
        } while (FindNextFileA(search, &found));
        FindClose(search);
    }
    return RemoveDirectoryA(path) == TRUE;
}

DWORD fileSizeOf(const char* path)
{
    HANDLE file =
        CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 0;
    DWORD size = GetFileSize(file, nullptr);
    CloseHandle(file);
    return size == INVALID_FILE_SIZE ? 0 : size;
}

char* trimSpaces(char* text)
{
    if (!text) return text;
    char* start = text;
    while (*start && std::isspace(static_cast<unsigned char>(*start))) ++start;
    size_t length = std::strlen(start);
    while (length && std::isspace(static_cast<unsigned char>(start[length - 1]))) --length;
    std::memmove(text, start, length);
    text[length] = 0;
    return text;
}

std::string shortPathOf(const char* path)
{
    char shortPath[MAX_PATH];
    DWORD length = GetShortPathNameA(path, shortPath, sizeof shortPath);
    if (length == 0 || length >= sizeof shortPath) return "";
    return shortPath;
}

std::string quotedProgram(const char* path)
{
    if (path[0] == '"' || !std::strchr(path, ' ')) return path;
    return std::string("\"") + path + "\"";
}

std::string commandFromSystemFolder(const char* commandLine)
{
    const char* blank = std::strchr(commandLine, ' ');
    std::string program(commandLine, blank ? static_cast<size_t>(blank - commandLine) : std::strlen(commandLine));
    if (program.empty() || program.find_first_of("\\/:\"") != std::string::npos) return commandLine;
    char system[MAX_PATH] = "", windows[MAX_PATH] = "";
    UINT systemLength = GetSystemDirectoryA(system, sizeof system);
    UINT windowsLength = GetWindowsDirectoryA(windows, sizeof windows);
    if (!systemLength || systemLength >= sizeof system || !windowsLength || windowsLength >= sizeof windows)
        return commandLine;
    const std::string folders = std::string(system) + ";" + windows;
    char found[MAX_PATH];
    char* name = nullptr;
    DWORD length = SearchPathA(folders.c_str(), program.c_str(), ".exe", sizeof found, found, &name);
    if (length == 0 || length >= sizeof found) return commandLine;
    return quotedProgram(found) + (blank ? blank : "");
}

std::string fileNameOf(const std::string& path)
{
    size_t slash = path.find_last_of('\\');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}
