// Favorites trees, deep and wide, with long names, odd bytes and odd .url
// files: the walk's body holds one whole line per shortcut whose paths fit,
// and nothing of those that do not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "BoundedText.h"
#include "Fuzz.h"
#include "account/FavoritesImport.h"

namespace {
// Paths beyond MAX_PATH are made and removed through the wide calls.
std::wstring longPath(const std::string& path)
{
    std::wstring wide(path.size() + 1, L'\0');
    int n = MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, &wide[0], static_cast<int>(wide.size()));
    wide.resize(n > 0 ? n - 1 : 0);
    return L"\\\\?\\" + wide;
}

void removeLongTree(const std::wstring& folder)
{
    WIN32_FIND_DATAW found;
    HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            std::wstring name = found.cFileName;
            if (name == L"." || name == L"..") continue;
            if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                removeLongTree(folder + L"\\" + name);
            else
                DeleteFileW((folder + L"\\" + name).c_str());
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    RemoveDirectoryW(folder.c_str());
}

// The bytes a name takes on the host's file system, where it is UTF-8 with
// room for 255 bytes (Wine shortens a longer one).
size_t hostBytes(const std::string& name)
{
    std::wstring wide = longPath(name).substr(4);
    return static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr));
}

// A name Windows can hold: no reserved characters, none at its end that it
// would drop, never a device name (each begins with its own number), and
// short enough for the host once `extension` is added.
std::string entryName(CFuzzRandom& random, int number, const std::string& extension = "")
{
    static const std::string odd = "abcXYZ019 !#$%&'()+,;=@[]^_`{}~.\x80\x81\x9f\xa0\xe9\xfe\xff";
    std::string name = "n" + std::to_string(number) + "-";
    if (random.percent(10)) name = "." + name;  // passed over by the walk
    name += random.bytes(random.percent(5) ? 150 + random.below(100) : random.below(12), odd);
    while (hostBytes(name + extension) > 250) name.pop_back();
    while (!name.empty() && (name.back() == '.' || name.back() == ' ')) name.pop_back();
    return name + extension;
}

struct CTree {
    std::vector<std::string> lines;  // expected, in no particular order
    int entries = 0;
    int tooLong = 0;  // shortcuts left out for their length
};

void grow(CFuzzRandom& random, const std::string& folder, const std::string& relative, bool walked, int depth,
          CTree& tree)
{
    static const char* const extensions[] = {".url", ".URL", ".Url", ".url", ".txt", "", ".url.txt", ".ur"};
    size_t files = random.percent(3) ? random.below(150) : random.below(5);
    for (size_t i = 0; i < files && tree.entries < 400; ++i) {
        std::string name = entryName(random, tree.entries++, extensions[random.below(8)]);
        std::string url = random.percent(80) ? "http://" + random.bytes(random.length(random.percent(10) ? 400 : 40),
                                                                          "abc/?&=%#;:.-_~ \x80\xe9\xff")
                                             : "";
        while (!url.empty() && url.back() == ' ') url.pop_back();
        std::string content = random.percent(85) ? "[InternetShortcut]\r\nURL=" + url + "\r\n"
                                                 : random.text(random.length(100));
        const std::string path = folder + "\\" + name, rel = relative + "\\" + name;
        HANDLE file = CreateFileW(longPath(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) continue;
        DWORD written = 0;
        WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
        CloseHandle(file);
        bool shortcut = name.size() >= 4 && equalsNoCase(name.c_str() + name.size() - 4, ".url");
        if (!walked || name[0] == '.' || !shortcut) continue;
        if (path.size() >= MAX_PATH || rel.size() >= MAX_PATH) {
            ++tree.tooLong;
            continue;
        }
        if (content.rfind("[InternetShortcut]\r\nURL=", 0) != 0) url.clear();
        tree.lines.push_back(rel.substr(0, rel.size() - 4) + '\xFF' + url.substr(0, 259) + "\r\n");
    }
    if (depth == 0) return;
    size_t folders = random.percent(20) ? 1 + random.below(4) : random.below(2);
    for (size_t i = 0; i < folders && tree.entries < 400; ++i) {
        std::string name = entryName(random, tree.entries++);
        const std::string path = folder + "\\" + name;
        if (!CreateDirectoryW(longPath(path).c_str(), nullptr)) continue;
        grow(random, path, relative + "\\" + name, walked && name[0] != '.', depth - 1, tree);
    }
}
}  // namespace

TEST(Fuzz, FavoritesTrees)
{
    const std::string base = fuzzFolder("fav");
    char current[MAX_PATH];
    GetCurrentDirectoryA(sizeof current, current);
    int kept = 0, leftOut = 0;
    runCases("favorites", 500, [&](CFuzzRandom& random) {
        // A root whose length puts the limit anywhere in the tree.
        char id[16];
        std::snprintf(id, sizeof id, "\\r%06u", static_cast<unsigned>(random.below(1000000)));
        std::string root = base + id + std::string(random.below(120), 'p');
        removeLongTree(longPath(root));
        ASSERT_TRUE(CreateDirectoryA(root.c_str(), nullptr));
        CTree tree;
        grow(random, root, "", true, random.percent(10) ? 40 : static_cast<int>(random.below(4)), tree);

        std::string body;
        walkFavorites(root.c_str(), "\\", body);
        SetCurrentDirectoryA(current);
        std::vector<std::string> lines;
        for (size_t at = 0; at < body.size();) {
            size_t end = body.find("\r\n", at);
            ASSERT_NE(std::string::npos, end) << "a line without its end";
            lines.push_back(body.substr(at, end + 2 - at));
            at = end + 2;
        }
        std::sort(lines.begin(), lines.end());
        std::sort(tree.lines.begin(), tree.lines.end());
        EXPECT_EQ(tree.lines, lines);
        kept += static_cast<int>(lines.size());
        leftOut += tree.tooLong;
        removeLongTree(longPath(root));
    });
    // The trees reach both sides of the limit, each often.
    EXPECT_GT(kept, 1000);
    EXPECT_GT(leftOut, 100);
    RemoveDirectoryA(base.c_str());
}
