// The account form pages in this process: what a user types, the one box of
// complaints in its order, the labels that go bold, the codes that reach the
// account record, and what stays when the user goes back.
#include <gtest/gtest.h>

#include <string>

#include "WizardTestSupport.h"
#include "account/DetailsPage.h"
#include "account/LoginPage.h"

using namespace wizardtest;

namespace {
const int next = 1001, back = 1000;

std::string lines(std::initializer_list<const char*> texts)
{
    std::string joined;
    for (const char* text : texts) joined += std::string(text) + "\r\n";
    return joined;
}

// Presses Next. The text of the "Validation Errors" box, closed again, or an
// empty text when the wizard moved on without one.
std::string submit(CInstallWizard& wizard)
{
    int page = wizard.pages[wizard.currentPage]->id;
    press(wizard, next);
    uidriver::WindowQuery query{"Validation Errors", GetCurrentProcessId(), true};
    for (int i = 0; i < 150; ++i) {
        if (HWND box = uidriver::findWindow(query)) {
            std::string text = uidriver::messageText(box);
            uidriver::pressButton(box, IDOK);
            uidriver::waitForWindowGone(query, 3000);
            Sleep(100);
            return text.empty() ? "(empty box)" : text;
        }
        if (!onPage(wizard, page)) return "";
        Sleep(30);
    }
    return "(no box and no move)";
}

void type(HWND page, std::initializer_list<std::pair<int, const char*>> fields)
{
    for (const auto& field : fields) EXPECT_TRUE(uidriver::setControlText(page, field.first, field.second));
}

void select(HWND page, int combo, int row) { SendDlgItemMessageA(page, combo, CB_SETCURSEL, row, 0); }
int selected(HWND page, int combo) { return static_cast<int>(SendDlgItemMessageA(page, combo, CB_GETCURSEL, 0, 0)); }

// Pixels of a label drawn in anything but the face colour (bold text has
// more), or only the red ones. Text is smoothed: red means red by far.
int ink(HWND page, int label, bool redOnly = false)
{
    Capture shot = capture(page);
    RECT rect = clientRectOf(page, label);
    COLORREF face = GetSysColor(COLOR_BTNFACE);
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x) {
            COLORREF pixel = shot.at(x, y);
            bool red = GetRValue(pixel) > GetGValue(pixel) + 100 && GetRValue(pixel) > GetBValue(pixel) + 100;
            count += redOnly ? red : pixel != face;
        }
    return count;
}

// Waits for the page's window and its ready timer.
HWND shownPage(CInstallWizard& wizard, int id)
{
    CInstallPage* page = wizard.findPage(id);
    if (!eventually([&] { return onPage(wizard, id) && page->hwnd && IsWindowVisible(page->hwnd); })) return nullptr;
    Sleep(300);
    return page->hwnd;
}

const char* const noUser = "Please provide a username for logging into your TavRin account";
const char* const noPassword = "Please provide a password for logging into your TavRin account";
const char* const noRepeat = "Please repeat your password for verification";
const char* const noHint = "Please provide a hint for remembering your password";
const char* const noEmail = "Please provide an email address";
const char* const mismatch = "Your repeat password does not match your password";
const char* const badEmail = "The email address entered is not valid, please try again";
const char* const shortPassword = "Your password must be a least 4 characters";
}  // namespace

TEST(FormPages, LoginRulesFilterAndBoldLabels)
{
    CInstallWizard wizard(false);
    wizard.settings.createAccount = 1;
    wizard.addPage(114, new CInstallLoginPage);
    wizard.addPage(200, new CInstallPage(116));
    AccountDetails& details = wizard.settings.AccountDetails;

    runWizard(wizard, [&] {
        HWND page = shownPage(wizard, 114);
        ASSERT_TRUE(page);
        for (char c : std::string("a b!B_9\b")) SendDlgItemMessageA(page, 1030, WM_CHAR, static_cast<BYTE>(c), 1);
        EXPECT_EQ(uidriver::controlText(page, 1030), "abB_") << "blank and '!' dropped, backspace works";
        EXPECT_GT(ink(page, 1067, true), 0) << "the star of the note is red";

        int userInk = ink(page, 1048), passwordInk = ink(page, 1049), emailInk = ink(page, 1052);
        type(page, {{1030, "alice"}});
        EXPECT_EQ(submit(wizard), lines({noPassword, noRepeat, noHint, noEmail}));
        EXPECT_EQ(ink(page, 1048), userInk) << "a field that passed keeps a plain label";
        EXPECT_GT(ink(page, 1049), passwordInk + passwordInk / 10) << "a wanting field's label is bold";

        struct Case {
            const char *user, *password, *repeat, *hint, *email;
            std::string expected;
        } const cases[] = {
            {"", "", "", "", "", lines({noUser, noPassword, noRepeat, noHint, noEmail})},
            {"alice", "abc", "abc", "h", "a@b.c", lines({shortPassword})},
            {"alice", "abc", "abd", "h", "a@b.c", lines({mismatch, shortPassword})},
            {"alice", "", "abcd", "h", "a@b.c", lines({noPassword, mismatch})},
            {"alice", "abcd", "", "h", "a@b.c", lines({noRepeat})},
            {"alice", "abcd", "abcD", "h", "a@b.c", lines({mismatch})},
            {"alice", "abcd", "abcd", "h", "a@.b.c", lines({badEmail})},
            {"alice", "abcd", "abcd", "h", "a.b@c", lines({badEmail})},
            {"alice", "abcd", "abcd", "h", "a@b.", lines({badEmail})},
            {"alice", "abcd", "abcd", "h", "@b.c", lines({badEmail})},
            {"alice", "abcd", "abcd", "h", "a b@c.d", lines({badEmail})},
            {"alice", "abcd", "abcd", "h", "a;b@c.d", lines({badEmail})},
        };
        for (const Case& c : cases) {
            type(page, {{1030, c.user}, {1031, c.password}, {1032, c.repeat}, {1033, c.hint}, {1034, c.email}});
            EXPECT_EQ(submit(wizard), c.expected) << c.password << " / " << c.repeat << " / " << c.email;
        }
        EXPECT_EQ(ink(page, 1049), passwordInk) << "plain again once the password passed";
        EXPECT_GT(ink(page, 1052), emailInk + emailInk / 10) << "bold while the address is not valid";

        // A second at sign is no error, and a last point after an earlier one is fine.
        type(page, {{1030, "alice"}, {1031, "a+b c"}, {1032, "a+b c"}, {1033, "pets"}, {1034, "a@b@c.d."}});
        EXPECT_EQ(submit(wizard), "");
        EXPECT_TRUE(onPage(wizard, 200));
        EXPECT_EQ(details.UserCode, "alice");
        EXPECT_EQ(details.Password, "a+b c");
        EXPECT_EQ(details.Email, "a@b@c.d.");

        press(wizard, back);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 114); }));
        EXPECT_EQ(uidriver::controlText(page, 1033), "pets") << "the form keeps what was typed";
        EXPECT_EQ(submit(wizard), "");
    });
}

TEST(FormPages, PersonalDetailsStoreTheirCodesAndSurviveBack)
{
    CInstallWizard wizard(false);
    wizard.settings.createAccount = 1;
    wizard.addPage(115, new CInstallDetailsPage);
    wizard.addPage(114, new CInstallLoginPage);
    AccountDetails& details = wizard.settings.AccountDetails;

    runWizard(wizard, [&] {
        HWND page = shownPage(wizard, 115);
        ASSERT_TRUE(page);
        EXPECT_TRUE(IsDlgButtonChecked(page, 1017)) << "the notification box starts ticked";
        int zipInk = ink(page, 1080), firstNameInk = ink(page, 1054);
        EXPECT_EQ(submit(wizard), lines({"Please select your gender", "Please select your age range",
                                         "Please type in your zip code", "Please select your country"}));
        EXPECT_GT(ink(page, 1080), zipInk + zipInk / 10);
        EXPECT_EQ(ink(page, 1054), firstNameInk) << "names are optional";

        type(page, {{1040, "Ann"}, {1081, "12345"}});
        select(page, 1038, 2);    // "16 to 20"
        select(page, 1039, 2);    // "Female"
        select(page, 1043, 238);  // "Other", the last row
        select(page, 1044, 16);
        select(page, 1045, 3);
        CheckDlgButton(page, 1017, BST_UNCHECKED);
        EXPECT_EQ(submit(wizard), "");
        ASSERT_TRUE(onPage(wizard, 114));
        EXPECT_EQ(details.AgeRange, 18);
        EXPECT_EQ(details.Gender, "F");
        EXPECT_EQ(details.Country, 238);
        EXPECT_EQ(details.Industry, 16);
        EXPECT_EQ(details.Occupation, 3);
        EXPECT_EQ(details.NewServices, 0);
        EXPECT_EQ(details.FirstName, "Ann");
        EXPECT_EQ(details.Zip, "12345");
        EXPECT_EQ(details.number_of_employees, 0) << "the personal form leaves the business fields alone";
        EXPECT_EQ(details.company_type, "");

        HWND login = shownPage(wizard, 114);
        ASSERT_TRUE(login);
        type(login, {{1030, "ann"}, {1034, "ann@example.org"}});
        press(wizard, back);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 115); }));
        EXPECT_EQ(uidriver::controlText(page, 1040), "Ann");
        EXPECT_EQ(uidriver::controlText(page, 1081), "12345");
        EXPECT_EQ(selected(page, 1043), 238);
        select(page, 1044, 0);  // back to the prompt
        EXPECT_EQ(submit(wizard), "");
        ASSERT_TRUE(onPage(wizard, 114));
        EXPECT_EQ(details.Industry, 0) << "the prompt row stores 0 again";
        EXPECT_EQ(uidriver::controlText(login, 1030), "ann");
        EXPECT_EQ(uidriver::controlText(login, 1034), "ann@example.org");
    });
}

TEST(FormPages, TrialTakesTheBusinessForm)
{
    CInstallWizard wizard(false);
    wizard.settings.createAccount = 1;
    wizard.settings.regoCommand = "addTRIAL";
    wizard.addPage(115, new CInstallDetailsPage);
    wizard.addPage(200, new CInstallPage(116));
    wizard.chooseDetailsForm();
    AccountDetails& details = wizard.settings.AccountDetails;
    details.Gender = "untouched";

    runWizard(wizard, [&] {
        HWND page = shownPage(wizard, 115);
        ASSERT_TRUE(page);
        EXPECT_TRUE(GetDlgItem(page, 1042)) << "company name: the business form";
        EXPECT_FALSE(GetDlgItem(page, 1038)) << "no age range on the business form";
        EXPECT_EQ(submit(wizard),
                  lines({"Please enter your first name", "Please enter your last name", "Please enter your company name",
                         "Please enter your title", "Please select your company type", "Please select employee count",
                         "Please enter your website", "Please select your country", "Please enter your phone number",
                         "Please type in your zip code"}));

        type(page, {{1040, "Ann"}, {1041, "Lee"}, {1042, "Lee & Co"}, {1047, "Owner"}, {1048, "lee.example"},
                    {1079, "555 0100"}, {1081, "1"}});
        select(page, 1083, 6);
        select(page, 1075, 1);  // "1 to 5"
        select(page, 1043, 1);
        EXPECT_EQ(submit(wizard), lines({"Please type in your zip code"}));
        EXPECT_EQ(details.company_type, "Home (Personal Use)");
        EXPECT_EQ(details.number_of_employees, 1) << "the first row stands for its lower bound";

        type(page, {{1081, "12"}});
        select(page, 1075, 2);  // "5 to 10"
        EXPECT_EQ(submit(wizard), "");
        EXPECT_TRUE(onPage(wizard, 200));
        EXPECT_EQ(details.number_of_employees, 10) << "the other rows stand for their upper bound";
        EXPECT_EQ(details.Country, 1);
        EXPECT_EQ(details.company_name, "Lee & Co");
        EXPECT_EQ(details.NewServices, 1);
        EXPECT_EQ(details.AgeRange, 0);
        EXPECT_EQ(details.Industry, 0);
        EXPECT_EQ(details.Gender, "untouched") << "the business form has no gender to store";
    });
}
