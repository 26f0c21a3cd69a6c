// Page 101 in this process against windows of other processes (windowhost.exe
// of the process tests), with the product's [DetectKill] classes: what the
// scan finds, what Next and Skip do, and the rescan on every walk past it. And
// the administrator check on Wine's real token, and on lists of groups made
// here, since Wine offers no token without the group.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "AdministratorCheck.h"
#include "SetupProcess.h"
#include "WizardTestSupport.h"
#include "analysis/CloseWindowsPage.h"

using namespace wizardtest;

TEST(CloseWindows, ListsTheScanSortedNextClosesWhatTheLastScanFoundSkipNothing)
{
    const std::string record = tempFolder() + "tvclosed" + std::to_string(GetCurrentProcessId()) + ".txt";
    DeleteFileA(record.c_str());
    CInstallWizard wizard(false);
    wizard.settings.load(&wizard, (testFolder() + "..\\..\\payload\\setup.ini").c_str());
    ASSERT_EQ(wizard.settings.detectKills.size(), 2u);
    CCloseWindowsPage* page = new CCloseWindowsPage;
    wizard.addPage(100, new CInstallPage(116));
    wizard.addPage(101, page);
    wizard.addPage(104, new CInstallPage(116));
    auto rows = [&](int id, std::vector<std::string> expected) {  // on 101 the rows shown, else the windows closed
        return eventually([&] {
            std::vector<std::string> lines;
            std::string text = readFile(record);
            char row[256];
            for (LRESULT i = 0, n = SendDlgItemMessageA(page->hwnd, 1014, LB_GETCOUNT, 0, 0); id == 101 && i < n; ++i)
                lines.push_back(SendDlgItemMessageA(page->hwnd, 1014, LB_GETTEXT, i, LPARAM(row)) < 0 ? "?" : row);
            for (size_t start = 0, end; id != 101 && (end = text.find("\r\n", start)) != std::string::npos;
                 start = end + 2)
                lines.push_back(text.substr(start, end - start));
            if (id != 101) std::sort(lines.begin(), lines.end());  // closed in any order, listed sorted
            return onPage(wizard, id) && IsWindowVisible(wizard.findPage(id)->hwnd) && lines == expected;
        });
    };
    auto go = [&](int button, int to) { press(wizard, button); return eventually([&] { return onPage(wizard, to); }); };
    // Titles equal, hidden, empty, a class in other letters, and one class not listed.
    WindowHost first(record, {"IEFrame=Zebra page", "hidden:IEFrame=Apple page", "cabinetwclass=Middle folder",
                              "cabinetwclass=Middle folder", "IEFrame=", "OtherClass=Not listed"});
    std::vector<std::string> listed = {"", "Apple page", "Middle folder", "Middle folder", "Zebra page"};
    runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(rows(101, listed));
        WindowHost late(record, {"IEFrame=Late window"});
        PostMessageA(page->hwnd, WM_COMMAND, 1012, 0);  // Skip
        Sleep(300);
        EXPECT_TRUE(rows(104, {})) << "Skip closes nothing";
        listed.insert(listed.begin() + 2, "Late window");
        press(wizard, 1000);
        EXPECT_TRUE(rows(101, listed)) << "walking back past the page scans again";
        {
            WindowHost after(record, {"CabinetWClass=Opened after the scan"});
            press(wizard, 1001);  // the earlier Skip is forgotten
            EXPECT_TRUE(rows(104, {"closed ", "closed Apple page", "closed Late window", "closed Middle folder",
                                   "closed Middle folder", "closed Zebra page"})) << readFile(record);
            EXPECT_TRUE(late.ended(5000));
            EXPECT_FALSE(first.ended(0)) << "the window of another class stays";
            EXPECT_FALSE(after.ended(300)) << "a window that opened after the scan is not asked to close";
            press(wizard, 1000);
            EXPECT_TRUE(rows(101, {"Opened after the scan"}));
            EXPECT_TRUE(go(1000, 100));
        }
        // No window of the classes: the page passes itself over both ways.
        EXPECT_TRUE(go(1001, 104));
        EXPECT_TRUE(go(1000, 100));
    });
    DeleteFileA(record.c_str());
}

TEST(AdministratorCheck, GoesByTheAdministratorsSidOfTheToken)
{
    ASSERT_TRUE(isWindowsNT()) << "the token is asked on NT only";
    EXPECT_TRUE(isUserAdministrator()) << "Wine's user is a member of S-1-5-32-544";
    PSID sids[3] = {};  // Administrators, Users, Power Users
    const DWORD rids[] = {DOMAIN_ALIAS_RID_ADMINS, DOMAIN_ALIAS_RID_USERS, DOMAIN_ALIAS_RID_POWER_USERS};
    SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(AllocateAndInitializeSid(&nt, 2, SECURITY_BUILTIN_DOMAIN_RID, rids[i], 0, 0, 0, 0, 0, 0, &sids[i]));
    HANDLE process = nullptr, unreadable = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &process) &&
                DuplicateHandle(GetCurrentProcess(), process, GetCurrentProcess(), &unreadable, TOKEN_QUERY_SOURCE,
                                FALSE, 0));
    EXPECT_FALSE(isTokenAdministrator(unreadable)) << "a token whose groups may not be read gives no";
    CloseHandle(unreadable), CloseHandle(process);

    auto holds = [](const std::vector<SID_AND_ATTRIBUTES>& groups) {  // a TOKEN_GROUPS as Windows lays it out
        std::vector<BYTE> buffer(offsetof(TOKEN_GROUPS, Groups) + groups.size() * sizeof(SID_AND_ATTRIBUTES));
        auto* list = reinterpret_cast<TOKEN_GROUPS*>(buffer.data());
        list->GroupCount = static_cast<DWORD>(groups.size());
        for (size_t i = 0; i < groups.size(); ++i) list->Groups[i] = groups[i];
        return holdsAdministrators(*list);
    };
    const DWORD on = SE_GROUP_ENABLED | SE_GROUP_MANDATORY;
    EXPECT_FALSE(holds({{sids[1], on}, {sids[2], on}})) << "Power Users are no administrators";
    EXPECT_TRUE(holds({{sids[1], on}, {sids[0], SE_GROUP_USE_FOR_DENY_ONLY}, {sids[2], on}})) << "deny only counts";
    for (PSID sid : sids) FreeSid(sid);
}
