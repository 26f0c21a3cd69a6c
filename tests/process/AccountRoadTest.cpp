// The roads of a user whose cookie store knows an account, from the first page
// to the finished install, against the reference service: with and without the
// import of the Favorites.
#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "../account/TestSupport.h"
#include "SetupProcess.h"
#include "account/CookieStore.h"

namespace {
using Shortcut = std::pair<std::string, std::string>;  // path from the Favorites root, URL

const char* const debugKey = "SOFTWARE\\Tavrin\\Debug";

std::string favorites()
{
    char path[MAX_PATH] = "";
    SHGetFolderPathA(nullptr, CSIDL_FAVORITES, nullptr, 0, path);
    return path;
}

void shortcut(const std::string& relative, const std::string& url)
{
    std::string text = "[InternetShortcut]\r\n";
    text += url.empty() ? "IconIndex=0\r\n" : "URL=" + url + "\r\n";
    writeFile(favorites() + relative, text);
}

// The Favorites the service holds for `user`, in the order they arrived.
std::vector<Shortcut> heldFavorites(const std::string& user)
{
    std::vector<std::string> s = jsonStrings(serviceCall("/__account?user=" + user));
    std::vector<Shortcut> held;
    for (size_t i = 0; i + 3 < s.size(); ++i)
        if (s[i] == "path" && s[i + 2] == "url") held.emplace_back(s[i + 1], s[i + 3]);
    return held;
}

class AccountRoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
        removeInstallation();
        emptyFolder(favorites());
        // The account exists on the service, and the store has its passport
        // from an earlier run, as the sign-up leaves it.
        user = "road" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
        std::string form = "Command=Add&CommandAction=Add&Email=" + user + "@mail.example&FirstName=&Gender=F&"
                           "LastName=&Industry=0&NewServices=N&Occupation=0&Password=secret&RepeatPassword=secret&"
                           "PasswordHint=usual&UserCode=" + user + "&Zip=90210&Country=1&AgeRange=23&Phone=&"
                           "company_name=&number_of_employees=0&company_type=&JobTitle=&website=&MID=&TimeZone=";
        serviceCall("/servlet/bookmarks.servlet.install.registrationServlet", form.c_str());
        std::vector<std::string> account = jsonStrings(serviceCall("/__account?user=" + user));
        auto at = std::find(account.begin(), account.end(), "passports");
        ASSERT_TRUE(at != account.end() && at + 1 != account.end()) << "no account made";
        passport = *(at + 1);
        ASSERT_TRUE(storeCookie("http://127.0.0.1/", ("passport=" + passport +
                                                     "; expires=Sat, 01-Jan-2039 12:00:00 GMT").c_str()));
        // The program talks to the service named in the development override.
        RegSetKeyValueA(HKEY_CURRENT_USER, debugKey, "RegoServer", REG_SZ, registrationUrl().c_str(),
                        static_cast<DWORD>(registrationUrl().size() + 1));
        std::string import = serviceUrl() + "/servlet/bookmarks.servlet.install.ImportServlet";
        RegSetKeyValueA(HKEY_CURRENT_USER, debugKey, "ImportServer", REG_SZ, import.c_str(),
                        static_cast<DWORD>(import.size() + 1));
    }
    void TearDown() override
    {
        storeCookie("http://127.0.0.1/", "passport=; expires=Sat, 01-Jan-2000 00:00:00 GMT");
        RegDeleteTreeA(HKEY_CURRENT_USER, debugKey);
        emptyFolder(favorites());
        removeInstallation();
    }

    // Page 117 shows the known account, and the user keeps it, with or without
    // the import. Then on to the end of the install.
    void install(bool import)
    {
        SetupProcess setup("");
        EXPECT_NE(answerBox(setup, "Server Override").find(registrationUrl()), std::string::npos);
        HWND frame = setup.window(wizardCaption, 20000);
        ASSERT_TRUE(frame);
        uidriver::pressButton(frame, 1001);
        HWND choice = pageShowing(frame, 1071);
        ASSERT_TRUE(choice) << "no notice of the known account";
        ASSERT_EQ(IsDlgButtonChecked(choice, 1017), BST_UNCHECKED) << "no RegistrationInfo: the import is off";
        // The import: "I want a new account" ticks the box, and Yes to the
        // question keeps the known account with the box as it stands.
        if (import) PostMessageA(GetDlgItem(choice, 1030), BM_CLICK, 0, 0);
        for (int i = 0; i < 250 && (IsDlgButtonChecked(choice, 1017) == BST_CHECKED) != import; ++i) Sleep(20);
        uidriver::pressButton(frame, 1001);
        if (import) {
            EXPECT_EQ(answerBox(setup, "TavRin Account", IDYES),
                      "TavRin has detected that you already have an account.\nDo you wish to use the existing account?");
        }

        ASSERT_EQ(installFromFolderPage(setup, frame), "");
        EXPECT_TRUE(exists(installFolder + "\\TAVRIN.DLL"));
        EXPECT_NE(readLog().find("- Account Already Exists\r\n"), std::string::npos);
    }

    std::string user, passport;
};
}  // namespace

TEST_F(AccountRoad, ImportSendsTheWholeFavoritesTreeAndNothingElse)
{
    ASSERT_EQ(GetACP(), 1252u) << "the names below are bytes of code page 1252";
    const std::vector<Shortcut> tree = {
        {"\\News", "http://news.example/today"},
        {"\\Caf\xE9 cr\xE8me", "http://cafe.example/menu?a=1&b=2"},
        {"\\No address", ""},
        {"\\SHOUT", "http://shout.example/"},
        {"\\My.Links\\Deep", "http://deep.example/"},
        {"\\My.Links\\Inner\\Far", "ftp://far.example/file"},
    };
    for (const char* folder : {"\\My.Links", "\\My.Links\\Inner", "\\Empty", "\\.hidden"})
        CreateDirectoryA((favorites() + folder).c_str(), nullptr);
    for (const Shortcut& item : tree) {
        bool capitals = item.first == "\\SHOUT";
        shortcut(item.first + (capitals ? ".URL" : ".url"), item.second);
    }
    // None of these is a shortcut the walk takes.
    shortcut("\\.url", "http://point.example/");
    shortcut("\\.hidden\\Secret.url", "http://secret.example/");
    writeFile(favorites() + "\\desktop.ini", "[.ShellClassInfo]\r\n");
    writeFile(favorites() + "\\notes.txt", "URL=http://not.example/\r\n");

    install(true);

    std::vector<Shortcut> held = heldFavorites(user);
    // Each folder's shortcuts come before those of its subfolders.
    auto depth = [](const Shortcut& s) { return std::count(s.first.begin(), s.first.end(), '\\'); };
    EXPECT_TRUE(std::is_sorted(held.begin(), held.end(),
                               [&](const Shortcut& a, const Shortcut& b) { return depth(a) < depth(b); }));
    std::vector<Shortcut> expected = tree;
    std::sort(held.begin(), held.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(held, expected);

    std::vector<SeenRequest> seen = lastRequests(1);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].path, "/servlet/bookmarks.servlet.install.ImportServlet");
    EXPECT_EQ(seen[0].body.find("passport=" + passport + "\r\n\\"), 0u) << "the passport line first";
    EXPECT_NE(seen[0].body.find("\\SHOUT\xFFhttp://shout.example/\r\n"), std::string::npos) << seen[0].body;
    EXPECT_NE(readLog().find("- Importing Favorites\r\n"), std::string::npos);
}

TEST_F(AccountRoad, WithoutTheImportNothingReachesTheService)
{
    shortcut("\\News.url", "http://news.example/today");
    std::vector<SeenRequest> before = lastRequests(1);
    install(false);
    std::vector<SeenRequest> after = lastRequests(1);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].body, before.at(0).body) << "the last request is still the test's own sign-up";
    EXPECT_TRUE(heldFavorites(user).empty());
    EXPECT_EQ(readLog().find("Importing Favorites"), std::string::npos);
}
