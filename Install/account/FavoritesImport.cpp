#include "account/FavoritesImport.h"

#include <windows.h>
#include <shlobj.h>

#include <cstring>
#include <vector>

#include "BoundedText.h"
#include "account/CookieStore.h"
#include "account/HttpRequest.h"
#include "account/InternetSession.h"
#include "description/PathHelpers.h"
#include "wizard/InstallDialog.h"

namespace {
// joinPath into a path buffer; false when the whole join does not fit. A cut
// path would name another file or folder, so the caller leaves such an entry out.
bool joinWhole(const char* folder, const char* name, char* out)
{
    size_t folderLength = std::strlen(folder);
    bool separator = folderLength == 0 || folder[folderLength - 1] != '\\';
    if (folderLength + separator + std::strlen(name) >= MAX_PATH) return false;
    joinPath(folder, name, out, MAX_PATH);
    return true;
}

bool isShortcutName(const char* name)
{
    size_t length = std::strlen(name);
    return length >= 4 && equalsNoCase(name + length - 4, ".url");
}
}  // namespace

void favoritesFolder(char* path, size_t size)
{
    if (size == 0) return;
    path[0] = 0;
    IMalloc* allocator = nullptr;
    if (FAILED(SHGetMalloc(&allocator)) || !allocator) return;
    LPITEMIDLIST folder = nullptr;
    if (SUCCEEDED(SHGetSpecialFolderLocation(nullptr, CSIDL_FAVORITES, &folder)) && folder) {
        char found[MAX_PATH] = "";
        if (SHGetPathFromIDListA(folder, found) && std::strlen(found) < size) copyText(path, found, size);
        allocator->Free(folder);
    }
    allocator->Release();
}

void addShortcut(const char* file, const char* relative, std::string& body)
{
    // A .url file is an INI file; a URL of 260 bytes or more is cut to 259.
    char url[MAX_PATH] = "";
    GetPrivateProfileStringA("InternetShortcut", "URL", "", url, sizeof url, file);
    size_t length = std::strlen(relative);
    body.append(relative, length >= 4 ? length - 4 : 0);
    body += '\xFF';
    body += url;
    body += "\r\n";
}

void walkFavorites(const char* folder, const char* relative, std::string& body)
{
    // The listing is of the current directory: a folder that cannot be entered
    // must add nothing rather than walk whatever folder is current.
    if (!folder[0] || !SetCurrentDirectoryA(folder)) return;
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA("*.*", &found);
    if (search == INVALID_HANDLE_VALUE) return;
    std::vector<std::string> subfolders;
    do {
        const char* name = found.cFileName;
        if (name[0] == '.') continue;  // ".", "..", and every other name that begins with a point
        WalkEntry entry = walkEntryOf(found.dwFileAttributes);
        if (entry == WalkEntry::folder) {
            subfolders.push_back(name);
            continue;
        }
        // A link in Favorites, to a folder or to one shortcut, is followed nowhere.
        if (entry == WalkEntry::link) continue;
        char file[MAX_PATH], path[MAX_PATH];
        if (isShortcutName(name) && joinWhole(folder, name, file) && joinWhole(relative, name, path))
            addShortcut(file, path, body);
        // A walk may take minutes: the window lives meanwhile.
        pumpMessages();
    } while (FindNextFileA(search, &found));
    FindClose(search);

    for (const std::string& name : subfolders) {
        char inner[MAX_PATH], path[MAX_PATH];
        if (joinWhole(folder, name.c_str(), inner) && joinWhole(relative, name.c_str(), path))
            walkFavorites(inner, path, body);
    }
}

int importFavorites(CInternetSession& session, const char* url)
{
    std::string body;
    // The passport names the account; the lookup is under the import URL itself.
    DWORD size = 0;
    readCookie(url, "passport", nullptr, size);
    if (size > 0) {
        std::vector<char> cookie(size + 1, 0);
        if (readCookie(url, "passport", cookie.data(), size)) {
            if (char* end = std::strchr(cookie.data(), ';')) *end = 0;
            body += cookie.data();
            body += "\r\n";
        }
    }

    char current[MAX_PATH] = "";
    GetCurrentDirectoryA(sizeof current, current);
    char folder[MAX_PATH];
    favoritesFolder(folder, sizeof folder);
    walkFavorites(folder, "\\", body);

    // The service answers an import with an empty body: any text, whatever the
    // status, is for the user.
    if (CReplyHolder reply{session.postForm(url, body.c_str(), body.size())})
        if (reply->replyBody.size()) ERRORMSG(reply->replyBody.text(), true);
    SetCurrentDirectoryA(current);
    return 1;
}
