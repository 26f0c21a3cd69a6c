// The road of a user without an account, through every account page of the
// real SETUP.EXE against the reference service: the choice, the agreement, the
// details form (personal, or business for a trial copy), the login form, the
// sign-up, the confirmation, and on to the finished install. The account the
// service then holds is checked field by field.
#include <gtest/gtest.h>
#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <vector>

#include "../account/TestSupport.h"
#include "SetupProcess.h"
#include "account/CookieStore.h"

namespace {
const char* const debugKey = "SOFTWARE\\Tavrin\\Debug";

struct Field {
    int id;
    const char* text;
};

// The value of `key` in the service's account report: a string without its
// quotes, or a number as written.
std::string reported(const std::string& json, const std::string& key)
{
    size_t at = json.find("\"" + key + "\": ");
    if (at == std::string::npos) return "(none)";
    at += key.size() + 4;
    if (json[at] == '"') return json.substr(at + 1, json.find('"', at + 1) - at - 1);
    return json.substr(at, json.find_first_of(",}", at) - at);
}

void typeInto(HWND page, const std::vector<Field>& fields)
{
    for (const Field& field : fields) uidriver::setControlText(page, field.id, field.text);
}

void pick(HWND page, int id, int row)
{
    SendDlgItemMessageA(page, id, CB_SETCURSEL, row, 0);
}

class NewAccountRoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
        clearFaults();
        removeInstallation();
        forgetPassport();
        RegSetKeyValueA(HKEY_CURRENT_USER, debugKey, "RegoServer", REG_SZ, registrationUrl().c_str(),
                        static_cast<DWORD>(registrationUrl().size() + 1));
        std::string import = serviceUrl() + "/servlet/bookmarks.servlet.install.ImportServlet";
        RegSetKeyValueA(HKEY_CURRENT_USER, debugKey, "ImportServer", REG_SZ, import.c_str(),
                        static_cast<DWORD>(import.size() + 1));
        user = "fresh" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
    }
    void TearDown() override
    {
        forgetPassport();
        RegDeleteTreeA(HKEY_CURRENT_USER, debugKey);
        removeInstallation();
    }
    static void forgetPassport()
    {
        storeCookie(registrationUrl().c_str(), "passport=; expires=Sat, 01-Jan-2000 00:00:00 GMT");
        storeCookie("http://127.0.0.1/", "passport=; expires=Sat, 01-Jan-2000 00:00:00 GMT");
    }

    // From the first page to the finished install; `fillDetails` fills the
    // details form. The report of the account the service then holds.
    std::string signUpAndInstall(const std::string& program, void (*fillDetails)(HWND))
    {
        SetupProcess setup("", program);
        answerBox(setup, "Server Override");
        HWND frame = setup.window(wizardCaption, 20000);
        if (!frame) return "no frame";
        uidriver::pressButton(frame, 1001);

        HWND choice = pageShowing(frame, 1017);
        if (!choice || GetDlgItem(choice, 1071)) return "no choice page, or one for a known account";
        PostMessageA(GetDlgItem(choice, 1030), BM_CLICK, 0, 0);
        HWND next = GetDlgItem(frame, 1001);
        for (int i = 0; i < 100 && !IsWindowEnabled(next); ++i) Sleep(20);
        uidriver::pressButton(frame, 1001);

        HWND agreement = pageShowing(frame, 1065);
        if (!agreement) return "no agreement";
        PostMessageA(GetDlgItem(agreement, 1065), BM_CLICK, 0, 0);
        for (int i = 0; i < 100 && !IsWindowEnabled(next); ++i) Sleep(20);
        uidriver::pressButton(frame, 1001);

        HWND details = pageShowing(frame, 1081);
        if (!details) return "no details form";
        fillDetails(details);
        uidriver::pressButton(frame, 1001);

        HWND login = pageShowing(frame, 1032);
        if (!login) return "the details form did not let the user on";
        std::string email = user + "@mail.example";
        typeInto(login, {{1030, user.c_str()}, {1031, "sesame"}, {1032, "sesame"}, {1033, "the usual"},
                         {1034, email.c_str()}});
        uidriver::pressButton(frame, 1001);

        HWND confirm = pageShowing(frame, 1069, nullptr, 30000);
        if (!confirm) return "no confirmation page";
        // The details are filled in once the page is ready.
        for (int i = 0; i < 100 && uidriver::controlText(confirm, 1030).empty(); ++i) Sleep(20);
        EXPECT_EQ(uidriver::controlText(confirm, 1030), user);
        EXPECT_EQ(uidriver::controlText(confirm, 1034), email);
        EXPECT_EQ(uidriver::controlText(confirm, 1069), "90210");
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(frame, 1000))) << "the account exists: no way back";
        uidriver::pressButton(frame, 1001);

        if (!pageShowing(frame, 1005)) return "no folder page";
        uidriver::pressButton(frame, 1001);
        answerBox(setup, "Create Folder", IDYES);
        if (!pageShowing(frame, 0, "TavRin Personal Installation is almost complete!")) return "no ready page";
        uidriver::pressButton(frame, 1001);
        HWND finish = pageShowing(frame, 1018);
        if (!finish) return "no finish page";
        finishOpeningNothing(frame, finish);
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_TRUE(exists(installFolder + "\\TAVRIN.DLL"));
        return serviceCall("/__account?user=" + user);
    }

    // The passport the service gave is in Wine's cookie store for a later run.
    void expectPassportStored(const std::string& account)
    {
        std::vector<std::string> strings = jsonStrings(account);
        auto at = std::find(strings.begin(), strings.end(), "passports");
        ASSERT_TRUE(at != strings.end() && at + 1 != strings.end()) << account;
        char cookies[4096] = "";
        DWORD size = sizeof cookies;
        InternetGetCookieA(registrationUrl().c_str(), nullptr, cookies, &size);
        EXPECT_NE(std::string(cookies).find("passport=" + *(at + 1)), std::string::npos) << cookies;
    }

    std::string user;
};
}  // namespace

TEST_F(NewAccountRoad, PersonalFormReachesTheServiceWithItsCodes)
{
    std::string account = signUpAndInstall(setupPath(), [](HWND details) {
        typeInto(details, {{1040, "Ada"}, {1041, "Lovelace"}, {1081, "90210"}});
        pick(details, 1038, 3);    // 23 to 27
        pick(details, 1039, 2);    // Female
        pick(details, 1043, 238);  // the last country
        pick(details, 1044, 2);
        pick(details, 1045, 1);
    });
    ASSERT_EQ(account.find('{'), 0u) << account;
    EXPECT_EQ(reported(account, "first_name"), "Ada");
    EXPECT_EQ(reported(account, "last_name"), "Lovelace");
    EXPECT_EQ(reported(account, "zip"), "90210");
    EXPECT_EQ(reported(account, "age_range"), "23");
    EXPECT_EQ(reported(account, "gender"), "F");
    EXPECT_EQ(reported(account, "country"), "238");
    EXPECT_EQ(reported(account, "industry"), "2");
    EXPECT_EQ(reported(account, "occupation"), "1");
    EXPECT_EQ(reported(account, "password_hint"), "the usual");
    EXPECT_EQ(reported(account, "command"), "Add");
    expectPassportStored(account);
    std::string log = readLog();
    EXPECT_NE(log.find("- Registering user\r\n"), std::string::npos) << log;
    EXPECT_NE(log.find("- Importing Favorites\r\n"), std::string::npos) << "a new account imports by default";
}

TEST_F(NewAccountRoad, BusinessFormOfATrialCopy)
{
    std::string account = signUpAndInstall(variantPath("trial"), [](HWND details) {
        typeInto(details, {{1040, "Grace"}, {1041, "Hopper"}, {1042, "Compilers Ltd"}, {1047, "Rear Admiral"},
                           {1048, "www.compilers.example"}, {1079, "555 0100"}, {1081, "90210"}});
        pick(details, 1083, 1);
        pick(details, 1075, 2);  // 5 to 10
        pick(details, 1043, 1);
    });
    ASSERT_EQ(account.find('{'), 0u) << account;
    EXPECT_EQ(reported(account, "company_name"), "Compilers Ltd");
    EXPECT_EQ(reported(account, "job_title"), "Rear Admiral");
    EXPECT_EQ(reported(account, "website"), "www.compilers.example");
    EXPECT_EQ(reported(account, "phone"), "555 0100");
    EXPECT_EQ(reported(account, "number_of_employees"), "10");
    EXPECT_EQ(reported(account, "country"), "1");
    EXPECT_NE(reported(account, "company_type"), "");
    EXPECT_EQ(reported(account, "command"), "AddTrial");
    expectPassportStored(account);
}
