// The account pages run here against the reference service, a second thread acting as the
// user. One plain page stands in for the forms; the details are set as they would leave them.
#include <gtest/gtest.h>

#include <string>

#include "../wizard/WizardTestSupport.h"
#include "TestSupport.h"
#include "account/AccountChoicePage.h"
#include "account/AccountPage.h"
#include "account/ConfirmPage.h"
#include "account/CookieStore.h"
#include "engine/FinishPages.h"
#include "resources/resource.h"
#include "wizard/PlainPages.h"

using namespace wizardtest;

namespace {
const std::string importPath = "/servlet/bookmarks.servlet.install.ImportServlet";

// Where the login and details pages stand: shown only for a new account.
class FormStandIn : public CInstallPage {
public:
    FormStandIn() : CInstallPage(IDD_PAGE_READY) {}
    int skipCheck(CInstallWizard* wizard) override { return wizard->settings.createAccount ? 0 : 1; }
};

// The text of this process's box with that caption, after pressing `button` on it.
std::string answer(const char* caption, int button)
{
    HWND box = uidriver::waitForWindow({caption, GetCurrentProcessId(), false}, 10000);
    if (!box) return "(no box)";
    std::string text = uidriver::messageText(box);
    uidriver::pressButton(box, button);
    return text;
}
}  // namespace

TEST(AccountPages, FailuresSendTheUserBackAndCancelWaitsForTheWork)
{
    ASSERT_FALSE(serviceUrl().empty()) << "TAVRIN_SERVICE_URL is not set";
    clearFaults();
    for (const char* name : {"passport", "RegistrationInfo"})  // no account known from an earlier program
        storeCookie("http://127.0.0.1/", (std::string(name) + "=; expires=Sat, 01-Jan-2000 00:00:00 GMT").c_str());
    RegDeleteTreeA(HKEY_CLASSES_ROOT, installedClassKey);  // no installation: page 108 passes itself over
    CInstallWizard wizard(false);
    wizard.settings.regoServer = registrationUrl();
    wizard.settings.importServer = serviceUrl() + importPath;
    wizard.settings.serverRoot = serviceUrl();
    AccountDetails& details = wizard.settings.AccountDetails;
    std::string user = "page" + std::to_string(GetCurrentProcessId()) + "x" + std::to_string(GetTickCount());
    details.CommandAction = "Add", details.UserCode = user, details.Email = user + "@mail.example";
    details.Password = details.RepeatPassword = "se cret", details.PasswordHint = "usual";
    details.Gender = "M", details.Zip = "SW1A 1AA", details.AgeRange = 23, details.Country = 1;
    auto* progress = new CInstallAccountPage;
    wizard.addPage(100, new CInstallWelcomePage);
    wizard.addPage(108, new CInstallUpdatePage);
    wizard.addPage(117, new CInstallAccountChoicePage);
    wizard.addPage(110, new CInstallAgreementPage);
    wizard.addPage(114, new FormStandIn);
    wizard.addPage(116, progress);
    wizard.addPage(118, new CInstallConfirmPage);
    wizard.addPage(101, new CInstallPage(IDD_PAGE_READY));  // what follows the account pages

    auto status = [&](const char* text) {
        return eventually([&] { return uidriver::controlText(progress->hwnd, IDC_ACCOUNT_STATUS) == text; }, 300);
    };
    // From page 117 with its choice made, over the agreement and the forms on to page 116.
    auto toTheWork = [&] {
        press(wizard, IDC_WIZARD_NEXT);
        ASSERT_TRUE(shownPage(wizard, 110));
        PostMessageA(GetDlgItem(wizard.findPage(110)->hwnd, IDC_AGREEMENT_ACCEPT), BM_CLICK, 0, 0);
        ASSERT_TRUE(eventually([&] { return nextEnabled(wizard); }));
        press(wizard, IDC_WIZARD_NEXT);
        ASSERT_TRUE(shownPage(wizard, 114));
        press(wizard, IDC_WIZARD_NEXT);
    };
    static const CConnectionCalls offline = {[](DWORD* flags) -> BOOL { return *flags = 0, FALSE; },
                                             [](DWORD*) -> BOOL { return FALSE; }, []() -> BOOL { return FALSE; },
                                             []() -> BOOL { return FALSE; }};
    CBoxAnswerer errors;
    runWizard(wizard, [&] {
        // No connection: by way of the welcome page back to the choice, the flags kept.
        progress->connection = &offline;
        press(wizard, IDC_WIZARD_NEXT);
        ASSERT_TRUE(shownPage(wizard, 117));
        ASSERT_TRUE(eventually([&] { return !nextEnabled(wizard); })) << "Next waits for a choice";
        PostMessageA(GetDlgItem(wizard.findPage(117)->hwnd, IDC_CHOICE_NEW), BM_CLICK, 0, 0);
        toTheWork();
        EXPECT_EQ(answer("Error Registering", IDOK), "Could not connect to internet");
        ASSERT_TRUE(shownPage(wizard, 117));
        EXPECT_EQ(wizard.settings.createAccount + wizard.settings.importRequested, 2);

        // A slow check and a refused sign-up: Back does nothing while the work runs.
        progress->connection = &systemConnectionCalls();
        addFault("path=/servlet/bookmarks.servlet.install.registrationServlet&delay_ms=1500");
        addFault("path=/servlet/bookmarks.servlet.install.registrationServlet&status=409&"
                 "body=That+user+name+is+taken%0d%0a");
        toTheWork();
        ASSERT_TRUE(shownPage(wizard, 116) && status("Validating User Information..."));
        press(wizard, IDC_WIZARD_BACK);
        Sleep(500);
        EXPECT_TRUE(onPage(wizard, 116));
        ASSERT_TRUE(status("Error Registering User.."));
        ASSERT_TRUE(shownPage(wizard, 117)) << "a refused sign-up leads to the choice";

        // The import slow and refused: Yes to Cancel ends the frame only once the work is done.
        addFault("path=" + importPath + "&delay_ms=1500&status=500&body=Import+is+closed");
        toTheWork();
        ASSERT_TRUE(status("Importing Favorites (may take several minutes)..."));
        press(wizard, IDCANCEL);
        EXPECT_EQ(answer("Abort Install", IDYES), "Are you sure you want to cancel this installation?");
        Sleep(300);
        EXPECT_TRUE(IsWindow(wizard.hwnd)) << "the frame went before the work";
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }, 300));
    });
    EXPECT_EQ(wizard.cancelled, 1);
    EXPECT_TRUE(onPage(wizard, 118)) << "a refused import holds nothing back";
    EXPECT_EQ(errors.stop(), (std::vector<std::string>{"list:That user name is taken\r\n", "list:Import is closed"}));
    clearFaults();
}
