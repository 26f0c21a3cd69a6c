// Favorites trees, deep and wide, with long names, odd bytes and odd .url files: the walk's
// body holds one whole line per shortcut whose paths fit, and nothing of those that do not.
#include <gtest/gtest.h>

#include <algorithm>

#include "BoundedText.h"
#include "Fuzz.h"
#include "account/FavoritesImport.h"

namespace {
// Paths beyond MAX_PATH are made and removed through the wide calls.
std::wstring longPath(const std::string& path)
{
    std::wstring wide(path.size() + 1, L'\0');
    wide.resize(std::max(MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, &wide[0], static_cast<int>(wide.size())), 1) -
                1);
    return L"\\\\?\\" + wide;
}
}  // namespace

TEST(Fuzz, FavoritesTrees)
{
    const std::string base = fuzzFolder("fav");
    char current[MAX_PATH];
    GetCurrentDirectoryA(sizeof current, current);
    int kept = 0, leftOut = 0;
    runCases("favorites", 250, [&](CFuzzRandom& random) {
        // A root whose length puts the limit anywhere in the tree.
        const std::string root =
            base + "\\r" + std::to_string(100000 + random.below(900000)) + std::string(random.below(120), 'p');
        ASSERT_TRUE(CreateDirectoryA(root.c_str(), nullptr));
        std::vector<std::string> folders = {""}, made = {""}, expected, lines;  // made: to remove, last first
        for (size_t entry = 0, count = random.percent(5) ? 300 : random.below(30); entry < count; ++entry) {
            // A name Windows can hold: no reserved characters, none at its end that it would drop, never a
            // device name (each begins with its number), within the host's 255 bytes. A dot first: passed over.
            std::string rel = (random.percent(70) ? folders.back() : random.pick(folders)) +
                              (random.percent(10) ? "\\.n" : "\\n") + std::to_string(entry) + "-" +
                              random.bytes(random.percent(5) ? 70 + random.below(10) : random.below(12),
                                           "abcXYZ019 !#$%&'()+,;=@[]^_`{}~.\x80\x81\x9f\xa0\xe9\xfe\xff");
            while (rel.back() == '.' || rel.back() == ' ') rel.pop_back();
            if (random.percent(25)) {
                if (CreateDirectoryW(longPath(root + rel).c_str(), nullptr))
                    folders.push_back(rel), made.push_back(rel);
                continue;
            }
            rel += random.pick(Tokens{".url", ".URL", ".Url", ".txt", "", ".url.txt", ".ur"});
            std::string url = random.percent(80)
                                  ? "http://" + random.bytes(random.length(random.percent(10) ? 400 : 40),
                                                             "abc/?&=%#;:.-_~ \x80\xe9\xff")
                                  : "";
            url.erase(url.find_last_not_of(' ') + 1);
            const bool wellFormed = random.percent(85);
            const std::string content =
                wellFormed ? "[InternetShortcut]\r\nURL=" + url + "\r\n" : random.text(random.length(100));
            HANDLE file = CreateFileW(longPath(root + rel).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
            DWORD written = 0;
            if (file == INVALID_HANDLE_VALUE) continue;
            WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr), CloseHandle(file),
                made.push_back(rel);
            if (rel.find("\\.") != std::string::npos || !equalsNoCase(rel.c_str() + rel.size() - 4, ".url")) continue;
            if ((root + rel).size() >= MAX_PATH || rel.size() >= MAX_PATH) ++leftOut;
            else
                expected.push_back(rel.substr(0, rel.size() - 4) + '\xFF' + (wellFormed ? url.substr(0, 259) : "") +
                                   "\r\n");
        }
        std::string body;
        walkFavorites(root.c_str(), "\\", body);
        SetCurrentDirectoryA(current);
        for (size_t at = 0, end; at < body.size(); at = end + 2) {
            ASSERT_NE(std::string::npos, end = body.find("\r\n", at)) << "a line without its end";
            lines.push_back(body.substr(at, end + 2 - at));
        }
        std::sort(lines.begin(), lines.end()), std::sort(expected.begin(), expected.end());
        EXPECT_EQ(expected, lines);
        kept += static_cast<int>(lines.size());
        for (auto path = made.rbegin(); path != made.rend(); ++path)
            DeleteFileW(longPath(root + *path).c_str()) || RemoveDirectoryW(longPath(root + *path).c_str());
    });
    EXPECT_TRUE(kept > 800 && leftOut > 50) << kept << " kept, " << leftOut << " left out";  // both sides, often
    RemoveDirectoryA(base.c_str());
}
