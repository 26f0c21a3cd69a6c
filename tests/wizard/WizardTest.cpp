// The frame in this process, the user on a second thread pressing its buttons:
// the page flow, and the login page as a user fills it in (the one box of
// complaints, the labels that go bold, what Back keeps). Before them, the
// complaints of the form checks in their order. (The lists' codes: the
// scenarios of a new account.)
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "WizardTestSupport.h"
#include "account/LoginPage.h"

using namespace wizardtest;

namespace {
// A page whose answers the test sets.
class ScriptedPage : public CInstallPage {
public:
    ScriptedPage(int skip, int next = -1, int close = 0) : CInstallPage(116), skip(skip), next(next), close(close) {}
    int skipCheck(CInstallWizard*) override { return ++asked, skip; }
    int nextPageId(CInstallWizard*) override { return next; }
    int closeKind() override { return close; }
    int onNext(CInstallWizard*) override { return ++nexts, 1; }
    std::atomic<int> skip, next, close, asked{0}, nexts{0};
};

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
    press(wizard, 1001);
    uidriver::WindowQuery query{"Validation Errors", GetCurrentProcessId(), true};
    for (int i = 0; i < 150 && onPage(wizard, page); ++i, Sleep(30))
        if (HWND box = uidriver::findWindow(query)) {
            std::string text = uidriver::messageText(box);
            uidriver::pressButton(box, IDOK);
            uidriver::waitForWindowGone(query, 3000);
            Sleep(100);
            return text.empty() ? "(empty box)" : text;
        }
    return onPage(wizard, page) ? "(no box and no move)" : "";
}

void type(HWND page, std::initializer_list<std::pair<int, const char*>> fields)
{
    for (const auto& field : fields) EXPECT_TRUE(uidriver::setControlText(page, field.first, field.second));
}

// Pixels of a label drawn in anything but the face colour: bold text has more.
int ink(HWND page, int label)
{
    RECT rect;
    GetWindowRect(GetDlgItem(page, label), &rect);
    MapWindowPoints(nullptr, page, reinterpret_cast<POINT*>(&rect), 2);
    HDC dc = GetDC(page);
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x) count += GetPixel(dc, x, y) != GetSysColor(COLOR_BTNFACE);
    ReleaseDC(page, dc);
    return count;
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

TEST(FormChecks, ComplaintsInTheirOrder)
{
    struct Case {
        const char *user, *password, *repeat, *email;
        std::string expected;
    } const cases[] = {
        {"", "", "", "", lines({noUser, noPassword, noRepeat, noHint, noEmail})},
        {"al", "abc", "abd", "a@b.c", lines({mismatch, shortPassword})},
        {"al", "", "abcd", "a@b.c", lines({noPassword, mismatch})},
        {"al", "abcd", "", "a@b.c", lines({noRepeat})},
        {"al", "abcd", "abcD", "a@b.c", lines({mismatch})},
        {"al", "abcd", "abcd", "a@b@c.d.", ""},  // a second at sign, a last point after an earlier one
        {"al", "abcd", "abcd", "a@.b.c", lines({badEmail})},
        {"al", "abcd", "abcd", "a.b@c", lines({badEmail})},
        {"al", "abcd", "abcd", "a@b.", lines({badEmail})},
        {"al", "abcd", "abcd", "@b.c", lines({badEmail})},
        {"al", "abcd", "abcd", "a b@c.d", lines({badEmail})},
    };
    for (const Case& c : cases) {
        AccountDetails d;
        d.UserCode = c.user, d.Password = c.password, d.RepeatPassword = c.repeat, d.Email = c.email;
        d.PasswordHint = *c.user ? "h" : "";
        EXPECT_EQ(c.expected.empty(), d.checkLoginFields());
        EXPECT_EQ(c.expected, d.errorText) << c.password << " / " << c.repeat << " / " << c.email;
    }
    AccountDetails d;
    d.Zip = "1";
    EXPECT_FALSE(d.checkDetailFields("Add"));
    EXPECT_EQ(lines({"Please select your gender", "Please select your age range", "Please type in your zip code",
                     "Please select your country"}), d.errorText);
    d.Gender = "F", d.AgeRange = 18, d.Country = 1, d.Zip = "12";
    EXPECT_TRUE(d.checkDetailFields("Add"));
    EXPECT_FALSE(d.checkDetailFields("addTRIAL")) << "any case of AddTrial takes the business checks";
}

TEST(FormPages, LoginFiltersTheNameShowsOneBoxAndKeepsWhatWasTyped)
{
    CInstallWizard wizard(false);
    wizard.settings.createAccount = 1;
    wizard.addPage(114, new CInstallLoginPage);
    wizard.addPage(200, new CInstallPage(116));
    runWizard(wizard, [&] {
        HWND page = shownPage(wizard, 114);
        ASSERT_TRUE(page);
        Sleep(300);  // the page's ready timer
        for (char c : std::string("a b!B_9\b")) SendDlgItemMessageA(page, 1030, WM_CHAR, static_cast<BYTE>(c), 1);
        EXPECT_EQ(uidriver::controlText(page, 1030), "abB_") << "blank and '!' dropped, backspace works";
        int userInk = ink(page, 1048), passwordInk = ink(page, 1049);
        type(page, {{1030, "alice"}, {1031, "abc"}, {1032, "abc"}});
        EXPECT_EQ(submit(wizard), lines({noHint, noEmail, shortPassword}));
        EXPECT_EQ(ink(page, 1048), userInk) << "a field that passed keeps a plain label";
        EXPECT_GT(ink(page, 1049), passwordInk + passwordInk / 10) << "a wanting field's label is bold";
        type(page, {{1031, "a+b c"}, {1032, "a+b c"}, {1033, "pets"}, {1034, "a@.b.c"}});
        EXPECT_EQ(submit(wizard), lines({badEmail}));
        EXPECT_EQ(ink(page, 1049), passwordInk) << "plain again once the password passed";
        type(page, {{1034, "a@b.c"}});
        EXPECT_EQ(submit(wizard), "");
        EXPECT_TRUE(onPage(wizard, 200));
        AccountDetails& details = wizard.settings.AccountDetails;
        EXPECT_EQ(details.UserCode + "/" + details.Password + "/" + details.Email, "alice/a+b c/a@b.c");
        press(wizard, 1000);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 114); }));
        EXPECT_EQ(uidriver::controlText(page, 1033), "pets") << "the form keeps what was typed";
    });
}

TEST(PageFlow, SkipsUnknownIdsAndTheEndsOfTheRoad)
{
    CInstallWizard wizard(false);
    auto* first = new ScriptedPage(0);
    auto* skipped = new ScriptedPage(1);
    auto* middle = new ScriptedPage(0, 999);  // names a page that does not exist
    auto* wall = new ScriptedPage(2);         // stops any walk that reaches it
    auto* last = new ScriptedPage(0, -1, 1);  // turns Cancel into Finish
    for (CInstallPage* page : std::initializer_list<CInstallPage*>{first, skipped, middle, wall, last})
        wizard.addPage(static_cast<int>(wizard.pages.size()) + 200, page);

    runWizard(wizard, [&] {
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return wizard.currentPage == 2; })) << "the skipping page is passed over";
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return middle->nexts == 1; }));
        Sleep(200);
        EXPECT_EQ(wizard.currentPage, 2) << "an unknown id moves nothing, though onNext ran";
        middle->next = -1;
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return wall->asked == 1; }));
        Sleep(200);
        EXPECT_EQ(wizard.currentPage, 2) << "a page that stops the walk leaves the wizard where it is";
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return wizard.currentPage == 0; }));
        EXPECT_EQ(skipped->asked, 2) << "skipped pages are asked on the way back too";

        wall->skip = 1;
        last->skip = 1;
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return wizard.currentPage == 2; }));
        press(wizard, 1001);
        Sleep(300);
        EXPECT_EQ(wizard.currentPage, 2) << "a walk off the end leaves the page in place";
        last->skip = 0;
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return wizard.currentPage == 4; }));
        EXPECT_EQ(uidriver::controlText(wizard.hwnd, IDCANCEL), "&Finish");
        press(wizard, IDCANCEL);  // Finish: onNext of the last page, then the frame ends
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
        EXPECT_EQ(last->nexts, 1);
    });
    EXPECT_EQ(wizard.cancelled, 1) << "the frame's end reaches long work through cancelled";
}
