// The analysis of /T on drives of the test's own (own-drives.sh): C: of the
// prefix, and M: and N:, which hold copies of the product's files laid out by
// each test. The real pages run in this process; a second thread is the user.
#include <gtest/gtest.h>

#include <algorithm>

#include "FolderLink.h"
#include "SetupProcess.h"
#include "WizardTestSupport.h"
#include "analysis/CloseWindowsPage.h"
#include "analysis/ComponentSearch.h"
#include "description/PathHelpers.h"
#include "description/VersionInfo.h"
#include "engine/FinishPages.h"
#include "engine/InstallCopyPage.h"
#include "engine/RestartScript.h"
#include "wizard/PlainPages.h"

using namespace wizardtest;

namespace {
const std::string older = "3, 0, 9, 1";

// `path` made with its folders: a copy of the test's file `from`, or these bytes.
void place(const std::string& path, const std::string& from, const char* bytes = nullptr)
{
    createFolderPath(path.substr(0, path.find_last_of('\\')).c_str());
    if (bytes) return writeFile(path, bytes);
    ASSERT_TRUE(CopyFileA((testFolder() + from).c_str(), path.c_str(), FALSE)) << path;
}
bool under(const std::string& path, const char* folder) { return !_strnicmp(path.c_str(), folder, strlen(folder)); }
std::string version(const std::string& path)
{
    char text[64] = "";
    getFileVersionText(path.c_str(), text, sizeof text);
    return text;
}

// The pages of a /T run, welcome to finish without the account pages, on a machine
// without the product; the payload in an extraction folder of its own, loaded as a run does.
class Search : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* folder : {"M:", "N:", "C:\\tvsearch"}) emptyFolder(folder);
        removeInstallation();
        for (const char* name : {"TAVRIN.DLL", "TAVRINBH.DLL", "tvdownload.exe", "tvprotocol.dll", "setup.ini"}) {
            place(std::string("C:\\.tvsource\\") + name, std::string("payload\\") + name);
            wizard.cabinet.entries.push_back({name, 0});
        }
        lstrcpyA(wizard.sourceFolder, "C:\\.tvsource");
        ASSERT_EQ(wizard.loadSettings(), 1);
        CInstallPage* pages[] = {new CInstallWelcomePage, new CCloseWindowsPage, new CSearchIntroPage,
                                 search = new CSearchPage, new CInstallDestinationPage, new CInstallPage(116),
                                 new CInstallCopyPage, new CInstallFinishPage(144)};
        for (int i = 0; i < 8; ++i) wizard.addPage(100 + i, pages[i]);
    }
    // "<folder>\<name>, <version>[, in use]" for each found copy under `folder`, sorted.
    std::vector<std::string> found(const char* folder)
    {
        std::vector<std::string> result;
        char path[MAX_PATH];
        for (const CInstallFile& copy : wizard.settings.foundFiles) {
            EXPECT_TRUE(copy.sourceFolder == copy.destFolder && (under(copy.destFolder, "C:") ||
                        under(copy.destFolder, "M:") || under(copy.destFolder, "N:"))) << copy.destFolder;
            if (under(copy.destFolder, folder))
                result.push_back(joinPath(copy.destFolder.c_str(), copy.fileName.c_str(), path, sizeof path) +
                                 (", " + copy.version) + (copy.writable ? "" : ", in use"));
        }
        std::sort(result.begin(), result.end());
        return result;
    }
    bool go(int button, int to, int tries = 100)
    {
        press(wizard, button);
        return eventually([&] { return shown(wizard, to); }, tries);
    }

    CInstallWizard wizard{false};
    CSearchPage* search = nullptr;
};
}  // namespace

// The destination M:\TavRin holds an older helper, in use during the walk and free by the copy,
// and a main DLL without a version block; other copies lie all over the drives.
TEST_F(Search, SkipIsTakenBackFindsCopiesOnEveryFixedDriveOnceLeavesOneInUseToTheRestart)
{
    const std::string destination = "M:\\TavRin", deep = "M:\\D\\1\\2\\3\\4\\5\\6\\TAVRIN.DLL";
    place(destination + "\\TAVRINBH.DLL", "older\\TAVRINBH.DLL");
    // Held as a loaded DLL is: others may read it, nobody may write it.
    HANDLE held = CreateFileA("M:\\TavRin\\TAVRINBH.DLL", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, 0);
    place(destination + "\\tavrin.dll", "", "an old main DLL without a version block");
    place(destination + "\\tvdownload.exe", "payload\\tvdownload.exe");  // UpgradeCheck FALSE: never looked for
    for (std::string copy : {"C:\\tvsearch\\TAVRIN.DLL", "N:\\TAVRIN.DLL", "M:\\.hidden\\TAVRIN.DLL", deep.c_str()})
        place(copy, "payload\\TAVRIN.DLL");
    place("M:\\Other\\TAVRIN.DLL", "othermaker.dll");
    FolderLink linked("M:\\Linked", "C:\\tvsearch");  // leads to a folder walked anyway: nothing found through it
    ASSERT_TRUE(linked.listsAsJunction());
    runWizard(wizard, [&] {
        ASSERT_TRUE(go(1001, 102)) << "no browser window open: 101 passes itself over";
        PostMessageA(wizard.findPage(102)->hwnd, WM_COMMAND, 1012, 0);  // Skip
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
        EXPECT_TRUE(go(1000, 102)) << "the question comes back, the Skip is undone";
        ASSERT_TRUE(go(1001, 104, 1000)) << "the analysis moves on by itself";
        EXPECT_EQ(uidriver::controlText(search->hwnd, 1020), "Searching for components...");
        EXPECT_TRUE(under(uidriver::controlText(search->hwnd, 1021), "N:\\")) << "drives in order, N: walked last";
        EXPECT_TRUE(go(1000, 100)) << "Back passes over both analysis pages for good";
        EXPECT_TRUE(go(1001, 104)) << "and so does Next";
        EXPECT_EQ(search->searched, 1);
        CloseHandle(held);
        uidriver::setControlText(wizard.findPage(104)->hwnd, 1005, destination);
        ASSERT_TRUE(go(1001, 105));
        press(wizard, 1001);
        HWND box = uidriver::waitForWindow({"Installation Complete", GetCurrentProcessId(), false}, 20000);
        ASSERT_TRUE(box) << "the finish page asks for the restart";
        uidriver::pressButton(box, IDNO);
    });
    const std::string now = wizard.settings.files[0].version;
    EXPECT_EQ(found("C:\\tvsearch"), std::vector<std::string>{"C:\\tvsearch\\TAVRIN.DLL, " + now});
    EXPECT_EQ(found("N:"), std::vector<std::string>{"N:\\TAVRIN.DLL, " + now});
    EXPECT_EQ(found("M:"), (std::vector<std::string>{deep + ", " + now, destination + "\\TAVRIN.DLL, " + now,
                                                      destination + "\\TAVRINBH.DLL, " + older + ", in use"}));
    EXPECT_EQ(wizard.restartNeeded, 1);
    EXPECT_EQ(version(destination + "\\TAVRINBH.DLL"), older) << "the helper is left for the restart, not copied";
    EXPECT_EQ(version(destination + "\\TAVRIN.DLL"), now) << "a found copy that can be written is replaced";
    std::vector<std::string> copies;
    for (const CRestartCommand& command : readRestartCommands(readFile("C:\\.tvsource\\tavrin.rss").c_str()))
        if (command.kind == CRestartCommand::copy) copies.push_back(command.second);
    EXPECT_EQ(copies, std::vector<std::string>{destination + "\\TAVRINBH.DLL"});
    emptyFolder("C:\\.tvsource");  // what the pass left on this machine besides the drive M:
    removeInstallation();
    CInstallWizard plain(false), troubleshooting(false);
    registerPages(plain, false);
    registerPages(troubleshooting, true);
    EXPECT_TRUE(plain.findPage(101) && !plain.findPage(102) && !plain.findPage(103)) << "the search is for /T only";
    EXPECT_TRUE(troubleshooting.findPage(102) && troubleshooting.findPage(103));
}

TEST_F(Search, CancelDuringTheWalkEndsEveryLevelAndLeavesEachDriveAShortVisit)
{
    for (int i = 0; i < 400; ++i)
        for (std::string drive : {"M:", "N:"})
            place(drive + "\\Many\\f" + std::to_string(1000 + i) + "\\TAVRIN.DLL", "", "copy");
    INT_PTR result = runWizard(wizard, [&] {
        ASSERT_TRUE(go(1001, 102));
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return search->hwnd && under(uidriver::controlText(search->hwnd, 1021),
                                                                  "M:\\Many\\f"); }, 2000));
        press(wizard, IDCANCEL);
        HWND box = uidriver::waitForWindow({"Abort Install", GetCurrentProcessId(), false}, 5000);
        ASSERT_TRUE(box);
        uidriver::pressButton(box, IDYES);
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
    });
    EXPECT_TRUE(result == 1 && wizard.cancelled == 1);
    EXPECT_LT(found("M:").size(), 400u) << "the walk of M: stopped";
    EXPECT_EQ(found("N:").size(), 1u) << "the drive loop goes on, and N: is entered along its first names only";
}
