// The account pages in this process against the reference service: the real
// frame and pages run here while a second thread acts as the user. The form
// pages stand in as one plain page; the details are set as they would leave them.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include "FolderLink.h"
#include "TestThread.h"

#include "TestSupport.h"
#include "UiDriver.h"
#include "account/AccountChoicePage.h"
#include "account/AccountPage.h"
#include "account/ConfirmPage.h"
#include "account/CookieStore.h"
#include "account/FavoritesImport.h"
#include "engine/FinishPages.h"
#include "resources/resource.h"
#include "wizard/InstallWizard.h"
#include "wizard/PlainPages.h"

namespace {
const std::string importPath = "/servlet/bookmarks.servlet.install.ImportServlet";

// Where the login and details pages stand: shown only for a new account.
class FormStandIn : public CInstallPage {
public:
    FormStandIn() : CInstallPage(IDD_PAGE_READY) {}
    int skipCheck(CInstallWizard* wizard) override { return wizard->settings.createAccount ? 0 : 1; }
};

const CConnectionCalls offline = {[](DWORD* flags) -> BOOL { return *flags = 0, FALSE; },
                                  [](DWORD*) -> BOOL { return FALSE; }, []() -> BOOL { return FALSE; },
                                  []() -> BOOL { return FALSE; }};

bool eventually(const std::function<bool()>& condition, DWORD timeoutMs = 20000)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 30, Sleep(30))
        if (condition()) return true;
    return false;
}

// The colours of `window` as it stands on the screen, row after row, in `area`.
std::vector<COLORREF> pixels(HWND window, const RECT& area)
{
    std::vector<COLORREF> seen;
    HDC dc = GetDC(window);
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x) seen.push_back(GetPixel(dc, x, y));
    ReleaseDC(window, dc);
    return seen;
}

bool holds(const std::vector<COLORREF>& pixels, COLORREF colour)
{
    return std::find(pixels.begin(), pixels.end(), colour) != pixels.end();
}

// The value behind `key` in a JSON text of the service.
std::string jsonValue(const std::string& json, const std::string& key)
{
    std::vector<std::string> strings = jsonStrings(json);
    for (size_t i = 0; i + 1 < strings.size(); ++i)
        if (strings[i] == key) return strings[i + 1];
    return "(none)";
}

class AccountPages : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
        forgetAccount();
        RegDeleteTreeA(HKEY_CLASSES_ROOT, installedClassKey);  // no installation: page 108 passes itself over
        user = "page" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
        CInstallSettings& settings = wizard.settings;
        settings.title = "TavRin Personal";
        settings.regoServer = registrationUrl();
        settings.importServer = serviceUrl() + importPath;
        settings.serverRoot = serviceUrl();
        AccountDetails& details = settings.AccountDetails;
        details.CommandAction = "Add", details.UserCode = user, details.Email = user + "@mail.example";
        details.Password = details.RepeatPassword = "se cret";
        details.PasswordHint = "usual", details.Gender = "M", details.Zip = "SW1A 1AA";
        details.AgeRange = 23, details.Country = 1;

        wizard.addPage(100, new CInstallWelcomePage);
        wizard.addPage(108, new CInstallUpdatePage);
        wizard.addPage(117, new CInstallAccountChoicePage);
        wizard.addPage(110, new CInstallAgreementPage);
        wizard.addPage(114, new FormStandIn);
        wizard.addPage(116, progress = new CInstallAccountPage);
        wizard.addPage(118, new CInstallConfirmPage);
        wizard.addPage(101, new CInstallPage(IDD_PAGE_READY));  // what follows the account pages
    }
    void TearDown() override
    {
        clearFaults();
        forgetAccount();
    }

    // Later programs in this prefix must find no account.
    static void forgetAccount()
    {
        for (const char* name : {"passport", "RegistrationInfo"})
            storeCookie("http://127.0.0.1/", (std::string(name) + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT").c_str());
    }

    // Runs the frame here and `user` on a second thread; a frame still open at
    // the end is cancelled.
    void run(const std::function<void()>& userActions)
    {
        CTestThread thread([&] {
            HWND frame = nullptr;
            for (int i = 0; i < 200 && !(frame = wizard.hwnd); ++i) Sleep(25);
            if (frame) userActions();
            if (IsWindow(frame)) {
                PostMessageA(frame, WM_COMMAND, IDCANCEL, 0);
                answer("Abort Install", IDYES);
            }
        });
        wizard.showFrame();
        thread.join();
    }

    bool on(int id)
    {
        return eventually([&] {
            CInstallPage* page = wizard.pages[wizard.currentPage];
            return page->id == id && page->hwnd && IsWindowVisible(page->hwnd);
        });
    }
    void press(int id) { PostMessageA(wizard.hwnd, WM_COMMAND, id, 0); }
    bool enabled(int id) { return IsWindowEnabled(GetDlgItem(wizard.hwnd, id)) != FALSE; }
    HWND window(int page) { return wizard.findPage(page)->hwnd; }
    void click(int page, int control) { PostMessageA(GetDlgItem(window(page), control), BM_CLICK, 0, 0); }
    bool checked(int page, int control) { return IsDlgButtonChecked(window(page), control) == BST_CHECKED; }
    // The text of this process's box with that caption, after pressing `button` on it.
    std::string answer(const char* caption, int button)
    {
        HWND box = uidriver::waitForWindow({caption, GetCurrentProcessId(), false}, 10000);
        if (!box) return "(no box)";
        std::string text = uidriver::messageText(box);
        uidriver::pressButton(box, button);
        return text;
    }
    std::string status() { return uidriver::controlText(progress->hwnd, IDC_ACCOUNT_STATUS); }

    // From page 117 with its choice made, from the agreement or from the forms: on to page 116.
    void toTheWork(int from)
    {
        if (from == 117) {
            press(IDC_WIZARD_NEXT);
            ASSERT_TRUE(on(110));
        }
        if (from != 114) {
            click(110, IDC_AGREEMENT_ACCEPT);
            ASSERT_TRUE(eventually([&] { return enabled(IDC_WIZARD_NEXT); }));
            press(IDC_WIZARD_NEXT);
            ASSERT_TRUE(on(114));
        }
        press(IDC_WIZARD_NEXT);
    }

    CInstallWizard wizard{false};
    CInstallAccountPage* progress = nullptr;
    std::string user;
};
}  // namespace

TEST_F(AccountPages, KnownAccountIsAskedAboutThenANewOneMadeAndRemembered)
{
    storeCookie("http://127.0.0.1/", "passport=known; expires=Sat, 01-Jan-2039 12:00:00 GMT");
    CBoxAnswerer none;
    run([&] {
        press(IDC_WIZARD_NEXT);
        ASSERT_TRUE(on(117));
        HWND notice = GetDlgItem(window(117), IDC_CHOICE_DETECTED);
        ASSERT_TRUE(notice) << "not the dialog of a known account";
        ASSERT_TRUE(eventually([&] { return IsWindowVisible(notice) != FALSE; }));
        RECT text;
        GetClientRect(notice, &text);
        std::vector<COLORREF> shown;
        EXPECT_TRUE(eventually([&] { return holds(shown = pixels(notice, text), RGB(255, 0, 0)); }, 3000))
            << "the notice is red";
        EXPECT_FALSE(holds(shown, RGB(0, 0, 0)));
        EXPECT_TRUE(checked(117, IDC_CHOICE_EXISTING) && enabled(IDC_WIZARD_NEXT));
        EXPECT_FALSE(checked(117, IDC_CHOICE_IMPORT)) << "no RegistrationInfo, no import";

        // A new account asked for: No to the question goes on with it, the import ticked.
        click(117, IDC_CHOICE_NEW);
        ASSERT_TRUE(eventually([&] { return checked(117, IDC_CHOICE_IMPORT); }));
        press(IDC_WIZARD_NEXT);
        EXPECT_EQ(answer("TavRin Account", IDNO),
                  "TavRin has detected that you already have an account.\nDo you wish to use the existing account?");
        ASSERT_TRUE(on(110));
        toTheWork(110);
        ASSERT_TRUE(on(118));
        HWND confirm = window(118);
        EXPECT_TRUE(eventually([&] { return uidriver::controlText(confirm, IDC_CONFIRM_USER) == user; }));
        EXPECT_EQ(uidriver::controlText(confirm, IDC_CONFIRM_EMAIL), user + "@mail.example");
        EXPECT_EQ(uidriver::controlText(confirm, IDC_CONFIRM_ZIP), "SW1A 1AA");
        EXPECT_EQ(uidriver::controlText(confirm, IDC_FORM_LINK), "www.tavrin.example/UserInfo");
        EXPECT_FALSE(enabled(IDC_WIZARD_BACK)) << "the account exists: no way back to the work";
        EXPECT_TRUE(eventually([&] { return !wizard.settings.createAccount && !wizard.settings.importRequested; }));

        press(IDC_WIZARD_NEXT);
        EXPECT_TRUE(on(101));
        press(IDC_WIZARD_BACK);
        EXPECT_TRUE(on(117)) << "Back walks past the confirmation, the work, the forms and the agreement";
    });
    EXPECT_TRUE(none.stop().empty());

    std::string account = serviceCall("/__account?user=" + user);
    EXPECT_EQ(jsonValue(account, "email") + jsonValue(account, "zip"), user + "@mail.exampleSW1A 1AA");
    std::string passport = jsonValue(account, "passports");
    ASSERT_EQ(passport.size(), 40u) << account;
    std::vector<SeenRequest> seen = lastRequests(3);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].body.find("Command=cu&"), 0u);
    EXPECT_EQ(seen[1].body.find("Command=Add&"), 0u);
    EXPECT_EQ(seen[2].path, importPath);
    EXPECT_EQ(seen[2].body.find("passport=" + passport + "\r\n"), 0u) << "the import names the new account";
    // A later process finds the new account in the cookie store.
    EXPECT_EQ(runSelf("--read-cookie http://127.0.0.1/ passport"), "passport=" + passport);
    EXPECT_EQ(runSelf("--read-cookie http://127.0.0.1/ RegistrationInfo"), "RegistrationInfo=" + user);
}

TEST_F(AccountPages, FailuresSendTheUserBackAndCancelWaitsForTheWork)
{
    CBoxAnswerer errors;
    run([&] {
        // No connection: by way of the welcome page back to the choice, the flags kept.
        progress->connection = &offline;
        press(IDC_WIZARD_NEXT);
        ASSERT_TRUE(on(117));
        ASSERT_TRUE(eventually([&] { return !enabled(IDC_WIZARD_NEXT); })) << "Next waits for a choice";
        click(117, IDC_CHOICE_NEW);
        toTheWork(117);
        EXPECT_EQ(answer("Error Registering", IDOK), "Could not connect to internet");
        ASSERT_TRUE(on(117));
        EXPECT_EQ(wizard.settings.createAccount + wizard.settings.importRequested, 2);

        // The details refused: back to the form, the status line saying why.
        progress->connection = &systemConnectionCalls();
        wizard.settings.AccountDetails.RepeatPassword = "other";
        toTheWork(117);
        ASSERT_TRUE(eventually([&] { return status() == "Error Validating User Information..."; }));
        ASSERT_TRUE(on(114));

        // Corrected; the check is slow and the sign-up refused. Back, live on
        // this second visit, does nothing while the work runs.
        wizard.settings.AccountDetails.RepeatPassword = "se cret";
        addFault("path=/servlet/bookmarks.servlet.install.registrationServlet&delay_ms=1500");
        addFault("path=/servlet/bookmarks.servlet.install.registrationServlet&status=409&"
                 "body=That+user+name+is+taken%0d%0a");
        toTheWork(114);
        ASSERT_TRUE(on(116));
        EXPECT_TRUE(enabled(IDC_WIZARD_BACK));
        // Until the work begins, Back still goes back: the press waits for it.
        ASSERT_TRUE(eventually([&] { return status() == "Validating User Information..."; }));
        press(IDC_WIZARD_BACK);
        Sleep(500);
        EXPECT_EQ(wizard.pages[wizard.currentPage]->id, 116);
        ASSERT_TRUE(eventually([&] { return status() == "Error Registering User.."; }));
        ASSERT_TRUE(on(117)) << "a refused sign-up leads to the choice, and only there";
        Sleep(300);
        EXPECT_EQ(wizard.pages[wizard.currentPage]->id, 117);

        // The import slow and refused. The bar runs meanwhile, and Yes to
        // Cancel ends the frame only once the work is done.
        addFault("path=" + importPath + "&delay_ms=1500&status=500&body=Import+is+closed");
        toTheWork(117);
        ASSERT_TRUE(eventually([&] { return status() == "Importing Favorites (may take several minutes)..."; }));
        RECT bar;
        GetWindowRect(GetDlgItem(progress->hwnd, IDC_ACCOUNT_BAR), &bar);
        MapWindowPoints(nullptr, progress->hwnd, reinterpret_cast<POINT*>(&bar), 2);
        bar.top += 10, bar.bottom = bar.top + 1;
        std::vector<COLORREF> before = pixels(progress->hwnd, bar);
        Sleep(250);
        EXPECT_TRUE(holds(before, RGB(0, 0, 128)) && holds(before, RGB(0, 0, 255)));
        EXPECT_NE(pixels(progress->hwnd, bar), before) << "the bar stands still";
        press(IDCANCEL);
        EXPECT_EQ(answer("Abort Install", IDYES), "Are you sure you want to cancel this installation?");
        Sleep(300);
        EXPECT_TRUE(IsWindow(wizard.hwnd)) << "the frame went before the work";
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
    });
    EXPECT_EQ(wizard.cancelled, 1);
    EXPECT_EQ(wizard.pages[wizard.currentPage]->id, 118) << "a refused import holds nothing back";
    std::vector<std::string> expected = {"list:Your repeat password does not match your password\r\n",
                                         "list:That user name is taken\r\n", "list:Import is closed"};
    EXPECT_EQ(errors.stop(), expected);
    EXPECT_EQ(jsonValue(serviceCall("/__account?user=" + user), "email"), user + "@mail.example");
}

TEST(FavoritesWalk, WhatCannotBeListedDoesNotFitOrIsALinkAddsNothing)
{
    char temp[MAX_PATH], current[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + "tvwalk" + std::to_string(GetCurrentProcessId());
    CreateDirectoryA(folder.c_str(), nullptr);
    CreateDirectoryA((folder + "-elsewhere").c_str(), nullptr);
    for (const char* name : {"\\A.url", "\\Longer name.url", "-elsewhere\\B.url"})
        WritePrivateProfileStringA("InternetShortcut", "URL", "http://a/", (folder + name).c_str());
    GetCurrentDirectoryA(sizeof current, current);
    SetCurrentDirectoryA(folder.c_str());  // shortcuts where a careless walk would look

    std::string body;
    walkFavorites("", "\\", body);  // no Favorites folder
    walkFavorites((folder + "\\missing").c_str(), "\\", body);
    EXPECT_EQ(body, "");
    // 253 bytes of path: "\A" still fits the 260-byte buffers, the longer name would be cut.
    std::string deep = "\\" + std::string(252, 'r');
    walkFavorites(folder.c_str(), deep.c_str(), body);
    EXPECT_EQ(body, deep + "\\A\xFFhttp://a/\r\n");
    // A junction in Favorites (to C:\\, say) is not walked.
    body.clear();
    {
        FolderLink linked(folder + "\\Linked", folder + "-elsewhere");
        EXPECT_TRUE(linked.listsAsJunction());
        walkFavorites(folder.c_str(), "\\", body);
    }
    EXPECT_NE(body.find("\\A\xFF"), std::string::npos);
    EXPECT_EQ(body.find("\\Linked\\"), std::string::npos) << body;

    SetCurrentDirectoryA(current);
    for (const char* name : {"\\A.url", "\\Longer name.url", "-elsewhere\\B.url"})
        DeleteFileA((folder + name).c_str());
    RemoveDirectoryA(folder.c_str());
    RemoveDirectoryA((folder + "-elsewhere").c_str());
}
