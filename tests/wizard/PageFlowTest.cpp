// The frame's page flow in this process: the real frame and pages run on the
// main thread while a second thread presses the buttons, as a user would.
#include <gtest/gtest.h>

#include <atomic>

#include "WizardTestSupport.h"
#include "description/PathHelpers.h"
#include "wizard/PlainPages.h"

namespace {
using namespace wizardtest;

// A page whose answers the test sets.
class ScriptedPage : public CInstallPage {
public:
    ScriptedPage(int skip, int next = -1, int close = 0) : CInstallPage(116), skip(skip), next(next), close(close) {}
    int skipCheck(CInstallWizard*) override { ++asked; return skip; }
    int nextPageId(CInstallWizard*) override { return next; }
    int closeKind() override { return close; }
    int onNext(CInstallWizard*) override { ++nexts; return 1; }
    std::atomic<int> skip, next, close, asked{0}, nexts{0};
};
}  // namespace

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
        EXPECT_EQ(skipped->asked, 1);

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
        EXPECT_EQ(wizard.finishing, 1);
        press(wizard, IDCANCEL);  // Finish: onNext of the last page, then the frame ends
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
        EXPECT_EQ(last->nexts, 1);
    });
    EXPECT_EQ(wizard.cancelled, 1) << "the frame's end reaches long work through cancelled";
}

TEST(PageFlow, AgreementGatesNextAndShowsOnlyForANewAccount)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + "tvflow" + std::to_string(GetCurrentProcessId());
    createFolderPath(folder.c_str());
    std::string agreement = "Line one of the licence.\r\nLine two.";
    HANDLE file = CreateFileA((folder + "\\agreement.txt").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written;
    WriteFile(file, agreement.data(), static_cast<DWORD>(agreement.size()), &written, nullptr);
    CloseHandle(file);

    // A fresh machine: the update page passes itself over.
    RegDeleteTreeA(HKEY_CLASSES_ROOT, "CLSID\\{16C7C243-7FA0-11D3-A0E4-0A02B9000000}");
    CInstallWizard wizard(false);
    lstrcpyA(wizard.sourceFolder, folder.c_str());  // the destructor removes it
    wizard.settings.title = "TavRin Personal";
    wizard.settings.agreement = "agreement.txt";
    wizard.settings.destination = "%PROGRAMFILES%\\TavRin";
    registerPages(wizard, false);
    CInstallPage* page = wizard.findPage(110);
    ASSERT_TRUE(page);

    runWizard(wizard, [&] {
        press(wizard, 1001);
        CInstallPage* choice = wizard.findPage(117);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 117) && choice->hwnd && !nextEnabled(wizard); }));
        PostMessageA(GetDlgItem(choice->hwnd, 1030), BM_CLICK, 0, 0);  // a new account
        ASSERT_TRUE(eventually([&] { return nextEnabled(wizard); }));
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 110) && page->hwnd; }));
        EXPECT_EQ(uidriver::controlText(page->hwnd, 1027), agreement);
        EXPECT_FALSE(nextEnabled(wizard)) << "neither radio button is on at the start";
        PostMessageA(GetDlgItem(page->hwnd, 1065), BM_CLICK, 0, 0);
        EXPECT_TRUE(eventually([&] { return nextEnabled(wizard); }));
        PostMessageA(GetDlgItem(page->hwnd, 1066), BM_CLICK, 0, 0);
        EXPECT_TRUE(eventually([&] { return !nextEnabled(wizard); }));
        PostMessageA(GetDlgItem(page->hwnd, 1065), BM_CLICK, 0, 0);
        EXPECT_TRUE(eventually([&] { return nextEnabled(wizard); }));
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 115); })) << "the details form follows";
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 110); }));
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 117); }));
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 110) && nextEnabled(wizard); }))
            << "the choice stays when the user comes back";

        // As the account work leaves them: the agreement passes itself over.
        wizard.settings.createAccount = 0;
        wizard.settings.importRequested = 0;
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); })) << "no new account, no agreement, no forms";
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 117); })) << "and Back passes them all over";
    });
}
