// Page 101 in this process against windows of other processes (windowhost.exe
// of the process tests), with the product's [DetectKill] classes: what the
// scan finds, what Next and Skip do, and the rescan on every walk past it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "WizardTestSupport.h"
#include "SetupProcess.h"
#include "analysis/CloseWindowsPage.h"

using namespace wizardtest;

namespace {
// Two plain pages round page 101, which reads the product's description.
class CloseWindows : public ::testing::Test {
protected:
    void SetUp() override
    {
        record = tempFolder() + "tvclosed" + std::to_string(GetCurrentProcessId()) + ".txt";
        DeleteFileA(record.c_str());
        wizard.settings.load(&wizard, (testFolder() + "..\\..\\payload\\setup.ini").c_str());
        ASSERT_EQ(wizard.settings.detectKills.size(), 2u);
        wizard.addPage(100, new CInstallPage(116));
        wizard.addPage(101, page = new CCloseWindowsPage);
        wizard.addPage(104, new CInstallPage(116));
    }
    void TearDown() override { DeleteFileA(record.c_str()); }

    // The rows of list box 1014 as they stand.
    std::vector<std::string> rows()
    {
        std::vector<std::string> result;
        HWND list = GetDlgItem(page->hwnd, 1014);
        LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < count; ++i) {
            char text[256] = "";
            SendMessageA(list, LB_GETTEXT, i, reinterpret_cast<LPARAM>(text));
            result.push_back(text);
        }
        return result;
    }
    bool showsRows(const std::vector<std::string>& expected)
    {
        return eventually([&] { return onPage(wizard, 101) && IsWindowVisible(page->hwnd) && rows() == expected; });
    }
    std::string closed() { return readFile(record); }
    // The windows that were asked to close, in sorted order.
    std::vector<std::string> closedLines()
    {
        std::vector<std::string> lines;
        std::string text = closed();
        for (size_t start = 0, end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
            lines.push_back(text.substr(start, end - start));
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    CInstallWizard wizard{false};
    CCloseWindowsPage* page = nullptr;
    std::string record;
};

// Titles equal, hidden, empty, a class in other letters, and one class not listed.
const std::vector<std::string> firstWindows = {"IEFrame=Zebra page", "hidden:IEFrame=Apple page",
                                               "cabinetwclass=Middle folder", "cabinetwclass=Middle folder",
                                               "IEFrame=", "OtherClass=Not listed"};
}  // namespace

TEST_F(CloseWindows, ListsTheScanSortedSkipLeavesThemAndEveryWalkPastRescans)
{
    WindowHost first(record, firstWindows);
    std::vector<std::string> listed = {"", "Apple page", "Middle folder", "Middle folder", "Zebra page"};
    runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(showsRows(listed)) << "rows in sorted order, whatever the order of the scan";

        WindowHost late(record, {"IEFrame=Late window"});
        PostMessageA(page->hwnd, WM_COMMAND, 1012, 0);  // Skip
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
        Sleep(300);
        EXPECT_EQ(closed(), "") << "Skip closes nothing";

        listed.insert(listed.begin() + 2, "Late window");
        press(wizard, 1000);
        EXPECT_TRUE(showsRows(listed)) << "walking back past the page scans again";
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 100); }));
        press(wizard, 1001);
        EXPECT_TRUE(showsRows(listed)) << "and so does walking forward";

        // The earlier Skip is forgotten: Next closes every window of the scan.
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
        EXPECT_TRUE(late.ended(5000));
        std::vector<std::string> expected = {"closed ", "closed Apple page", "closed Late window",
                                             "closed Middle folder", "closed Middle folder", "closed Zebra page"};
        EXPECT_TRUE(eventually([&] { return closedLines() == expected; })) << closed();
        EXPECT_FALSE(first.ended(0)) << "the window of another class stays";
    });
}

TEST_F(CloseWindows, NextClosesOnlyWhatTheLastScanFoundAndNoWindowMeansNoPage)
{
    runWizard(wizard, [&] {
        {
            WindowHost first(record, {"IEFrame=Scanned"});
            press(wizard, 1001);
            ASSERT_TRUE(showsRows({"Scanned"}));
            WindowHost after(record, {"CabinetWClass=Opened after the scan"});
            press(wizard, 1001);
            EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
            EXPECT_TRUE(first.ended(5000));
            EXPECT_EQ(closed(), "closed Scanned\r\n");
            EXPECT_FALSE(after.ended(300)) << "a window that opened after the scan is not asked to close";

            press(wizard, 1000);
            EXPECT_TRUE(showsRows({"Opened after the scan"}));
            press(wizard, 1000);
            EXPECT_TRUE(eventually([&] { return onPage(wizard, 100); }));
        }
        // No window of the classes: the page passes itself over both ways.
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 100); }));
        EXPECT_EQ(closed(), "closed Scanned\r\n");
    });
}
