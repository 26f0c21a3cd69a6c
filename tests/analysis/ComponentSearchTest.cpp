// The analysis of /T on drives of the test's own (own-drives.sh): C: of the
// prefix, and M: and N:, which hold copies of the product's files laid out by
// each test. The real pages run in this process; a second thread is the user.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "FolderLink.h"
#include "WizardTestSupport.h"
#include "SetupProcess.h"
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
const char* const olderVersion = "3, 0, 9, 1";

// `path` made with its folders: a copy of the test's file `from`, or these bytes.
void place(const std::string& path, const std::string& from)
{
    createFolderPath(path.substr(0, path.find_last_of('\\')).c_str());
    ASSERT_TRUE(CopyFileA((testFolder() + from).c_str(), path.c_str(), FALSE)) << path;
}

void placeBytes(const std::string& path, const std::string& bytes)
{
    createFolderPath(path.substr(0, path.find_last_of('\\')).c_str());
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << path;
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

bool under(const std::string& path, const char* folder)
{
    return path.size() >= strlen(folder) && _strnicmp(path.c_str(), folder, strlen(folder)) == 0;
}

// The pages of a /T run on a machine without the product, and the payload in
// an extraction folder of its own, loaded as the run loads it.
class Search : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* folder : {"M:", "N:", "C:\\tvsearch"}) emptyFolder(folder);
        RemoveDirectoryA("C:\\tvsearch");
        removeInstallation();
        const std::string source = "C:\\.tvsource";
        createFolderPath(source.c_str());
        for (const char* name : {"TAVRIN.DLL", "TAVRINBH.DLL", "tvdownload.exe", "tvprotocol.dll", "setup.ini"}) {
            place(source + "\\" + name, std::string("payload\\") + name);
            wizard.cabinet.entries.push_back({name, 0});
        }
        lstrcpyA(wizard.sourceFolder, source.c_str());
        ASSERT_EQ(wizard.loadSettings(), 1);
        // The road of a /T run from the welcome page to the finish, without the
        // account pages, which pass themselves over or wait for a choice.
        wizard.addPage(100, new CInstallWelcomePage);
        wizard.addPage(101, new CCloseWindowsPage);
        wizard.addPage(102, new CSearchIntroPage);
        wizard.addPage(103, new CSearchPage);
        wizard.addPage(104, new CInstallDestinationPage);
        wizard.addPage(105, new CInstallPage(116));
        wizard.addPage(106, new CInstallCopyPage);
        wizard.addPage(107, new CInstallFinishPage(144));
        search = dynamic_cast<CSearchPage*>(wizard.findPage(103));
        ASSERT_TRUE(search);
    }
    void TearDown() override
    {
        for (HANDLE file : held) CloseHandle(file);
    }

    // Held open here as a loaded DLL is: others may read it, nobody may write it.
    void holdOpen(const std::string& path)
    {
        held.push_back(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_NE(held.back(), INVALID_HANDLE_VALUE);
    }
    void release()
    {
        for (HANDLE file : held) CloseHandle(file);
        held.clear();
    }

    // "<folder>\<name>, <version>[, in use]" for each found copy under these folders, sorted.
    std::vector<std::string> found(std::initializer_list<const char*> folders)
    {
        std::vector<std::string> result;
        for (const CInstallFile& copy : wizard.settings.foundFiles) {
            bool wanted = false;
            for (const char* folder : folders) wanted = wanted || under(copy.destFolder, folder);
            if (!wanted) continue;
            EXPECT_EQ(copy.sourceFolder, copy.destFolder);
            result.push_back(joinPath(copy.destFolder.c_str(), copy.fileName.c_str(), path, sizeof path) +
                             (", " + copy.version) + (copy.writable ? "" : ", in use"));
        }
        std::sort(result.begin(), result.end());
        return result;
    }
    std::string payloadVersion() const { return wizard.settings.files[0].version; }
    std::string pageText(int id) { return uidriver::controlText(search->hwnd, id); }

    CInstallWizard wizard{false};
    CSearchPage* search = nullptr;
    std::vector<HANDLE> held;
    char path[MAX_PATH];
};
}  // namespace

TEST_F(Search, FindsTheProductsCopiesOnEveryFixedDriveOnce)
{
    place("C:\\tvsearch\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    place("M:\\TavRin\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    place("M:\\TavRin\\tvdownload.exe", "payload\\tvdownload.exe");  // UpgradeCheck FALSE: never looked for
    place("M:\\Other\\TAVRIN.DLL", "othermaker.dll");
    place("M:\\InUse\\TAVRINBH.DLL", "older\\TAVRINBH.DLL");
    holdOpen("M:\\InUse\\TAVRINBH.DLL");
    placeBytes("M:\\NoVersion\\tavrinbh.dll", "no version block here");
    place("M:\\.hidden\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    place("M:\\Deep\\1\\2\\3\\4\\5\\6\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    place("N:\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    // A junction leads to a folder walked anyway: nothing is found through it.
    FolderLink linked("M:\\Linked", "C:\\tvsearch");
    ASSERT_TRUE(linked.listsAsJunction());

    runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return shown(wizard, 102); })) << "no browser window open";
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 104); }, 1000)) << "the analysis moves on by itself";
        EXPECT_EQ(search->searched, 1);
        EXPECT_EQ(pageText(1020), "Searching for components...");
        EXPECT_TRUE(under(pageText(1021), "N:\\")) << "drives in order, N: walked last: " << pageText(1021);

        // Back passes over both analysis pages for good, and so does Next.
        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 100); }));
        press(wizard, 1001);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
    });
    const std::string version = payloadVersion();
    std::vector<std::string> expected = {
        "C:\\tvsearch\\TAVRIN.DLL, " + version,
        "M:\\Deep\\1\\2\\3\\4\\5\\6\\TAVRIN.DLL, " + version,
        "M:\\InUse\\TAVRINBH.DLL, " + std::string(olderVersion) + ", in use",
        "M:\\NoVersion\\TAVRINBH.DLL, " + version,  // keeps the payload's version and company
        "M:\\TavRin\\TAVRIN.DLL, " + version,
        "N:\\TAVRIN.DLL, " + version,
    };
    EXPECT_EQ(found({"C:\\tvsearch", "M:", "N:"}), expected);
    for (const CInstallFile& copy : wizard.settings.foundFiles)
        EXPECT_TRUE(under(copy.destFolder, "C:") || under(copy.destFolder, "M:") || under(copy.destFolder, "N:"))
            << copy.destFolder << ": only fixed drives are walked";
}

TEST_F(Search, SkipIsTakenBackOnReturnAndARefusedRequirementEndsTheWizard)
{
    place("M:\\TAVRIN.DLL", "payload\\TAVRIN.DLL");
    // The run's checks passed before the frame; on the analysis page they fail.
    wizard.settings.registryChecks.push_back({"Internet Explorer", "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Internet Explorer",
                                              "Version", "VERGREATER", "99.0", 1});
    std::string refusal;
    INT_PTR result = runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return shown(wizard, 102); }));
        PostMessageA(wizard.findPage(102)->hwnd, WM_COMMAND, 1012, 0);
        EXPECT_TRUE(eventually([&] { return onPage(wizard, 104); }));
        EXPECT_FALSE(uidriver::findWindow({"Incorrect Version", GetCurrentProcessId(), false}))
            << "Skip repeats no check";

        press(wizard, 1000);
        EXPECT_TRUE(eventually([&] { return shown(wizard, 102); })) << "the question comes back, the Skip is undone";
        press(wizard, 1001);
        HWND box = uidriver::waitForWindow({"Incorrect Version", GetCurrentProcessId(), false}, 10000);
        ASSERT_TRUE(box);
        EXPECT_FALSE(nextEnabled(wizard));
        refusal = uidriver::messageText(box);
        uidriver::pressButton(box, IDOK);
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
    });
    EXPECT_EQ(result, 0);
    EXPECT_NE(refusal.find("Please upgrade your Internet Explorer to 99.0 or higher."), std::string::npos) << refusal;
    EXPECT_TRUE(wizard.settings.foundFiles.empty()) << "no drive was walked";
    EXPECT_EQ(search->searched, 0);

    CInstallWizard plain(false);
    registerPages(plain, false);
    EXPECT_TRUE(plain.findPage(101));
    EXPECT_FALSE(plain.findPage(102) || plain.findPage(103)) << "the analysis pages exist with /T only";
}

TEST_F(Search, CancelDuringTheWalkEndsEveryLevelAndLeavesEachDriveAShortVisit)
{
    for (int i = 0; i < 400; ++i) {
        std::string name = "\\Many\\f" + std::to_string(1000 + i) + "\\TAVRIN.DLL";
        placeBytes("M:" + name, "copy");
        placeBytes("N:" + name, "copy");
    }
    INT_PTR result = runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return shown(wizard, 102); }));
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return search->hwnd && under(pageText(1021), "M:\\Many\\f"); }, 2000));
        press(wizard, IDCANCEL);
        HWND box = uidriver::waitForWindow({"Abort Install", GetCurrentProcessId(), false}, 5000);
        ASSERT_TRUE(box);
        uidriver::pressButton(box, IDYES);
        EXPECT_TRUE(eventually([&] { return !IsWindow(wizard.hwnd); }));
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(wizard.cancelled, 1);
    size_t onM = found({"M:"}).size(), onN = found({"N:"}).size();
    EXPECT_LT(onM, 400u) << "the walk of M: stopped";
    EXPECT_EQ(onN, 1u) << "the drive loop goes on, and N: is entered along its first names only";
}

TEST_F(Search, FilePassLeavesAFoundCopyInUseOfAnotherVersionToTheRestart)
{
    // The destination holds an older helper, in use while the drives are
    // walked and free again by the time the files are copied, and a main DLL
    // without a version block.
    const std::string destination = "M:\\TavRin";
    place(destination + "\\TAVRINBH.DLL", "older\\TAVRINBH.DLL");
    holdOpen(destination + "\\TAVRINBH.DLL");
    placeBytes(destination + "\\TAVRIN.DLL", "an old main DLL without a version block");

    runWizard(wizard, [&] {
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return shown(wizard, 102); }));
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return shown(wizard, 104); }, 1000));
        release();
        uidriver::setControlText(wizard.findPage(104)->hwnd, 1005, destination);
        press(wizard, 1001);
        ASSERT_TRUE(eventually([&] { return onPage(wizard, 105); }));
        press(wizard, 1001);
        HWND box = uidriver::waitForWindow({"Installation Complete", GetCurrentProcessId(), false}, 20000);
        ASSERT_TRUE(box) << "the finish page asks for the restart";
        uidriver::pressButton(box, IDNO);
        EXPECT_TRUE(onPage(wizard, 107));
    });
    EXPECT_EQ(found({"M:"}), (std::vector<std::string>{destination + "\\TAVRIN.DLL, " + payloadVersion(),
                                                          destination + "\\TAVRINBH.DLL, " + olderVersion + ", in use"}));
    EXPECT_EQ(wizard.restartNeeded, 1);
    char installed[256];
    getFileVersionText((destination + "\\TAVRINBH.DLL").c_str(), installed, sizeof installed);
    EXPECT_STREQ(installed, olderVersion) << "the helper is left for the restart, not copied";
    getFileVersionText((destination + "\\TAVRIN.DLL").c_str(), installed, sizeof installed);
    EXPECT_EQ(installed, payloadVersion()) << "a found copy that can be written is replaced";
    for (const CInstallFile& copy : wizard.settings.foundFiles)
        if (under(copy.destFolder, "M:")) {
            EXPECT_EQ(copy.done, copy.writable) << copy.fileName;
        }

    std::string script = readFile(std::string(wizard.sourceFolder) + "\\tavrin.rss");
    std::vector<std::string> copies;
    for (const CRestartCommand& command : readRestartCommands(script.c_str()))
        if (command.kind == CRestartCommand::copy) copies.push_back(command.second);
    EXPECT_EQ(copies, std::vector<std::string>{destination + "\\TAVRINBH.DLL"});

    // What the pass left on this machine besides the drive M:.
    emptyFolder(wizard.sourceFolder);
    RemoveDirectoryA(wizard.sourceFolder);
    removeInstallation();
}

// The whole /T road of the program itself: a browser window open, a copy of
// the product on a drive, the choice of no new account, then 101 closes the
// window, 102 and 103 search, and the install runs to its end.
TEST(TroubleshootingRoad, ClosesTheBrowserSearchesTheDrivesAndInstalls)
{
    removeInstallation();
    emptyFolder("M:");
    place("M:\\old\\TAVRINBH.DLL", "older\\TAVRINBH.DLL");
    std::string record = tempFolder() + "tvroad" + std::to_string(GetCurrentProcessId()) + ".txt";
    DeleteFileA(record.c_str());
    WindowHost browser(record, {"IEFrame=A page - Browser"});

    SetupProcess setup("/T", testFolder() + "SETUP.EXE");
    HWND frame = setup.window(wizardCaption, 20000);
    ASSERT_TRUE(frame);
    uidriver::pressButton(frame, 1001);
    ASSERT_TRUE(keepExistingAccount(frame));

    HWND close = pageShowing(frame, 1014);
    ASSERT_TRUE(close) << "no close windows page";
    for (int i = 0; i < 250 && SendDlgItemMessageA(close, 1014, LB_GETCOUNT, 0, 0) != 1; ++i) Sleep(20);
    EXPECT_EQ(SendDlgItemMessageA(close, 1014, LB_GETCOUNT, 0, 0), 1) << "the browser window is listed";
    uidriver::pressButton(frame, 1001);
    EXPECT_TRUE(browser.ended(5000));
    EXPECT_EQ(readFile(record), "closed A page - Browser\r\n");

    ASSERT_TRUE(pageShowing(frame, 1012)) << "no search question";
    uidriver::pressButton(frame, 1001);
    // The search moves on by itself to the folder page.
    ASSERT_TRUE(pageShowing(frame, 1005, nullptr, 60000)) << "the search did not end";
    // Page 103 came up and searched on its way to the folder page.
    HWND searched = nullptr;
    for (HWND page = FindWindowExA(frame, nullptr, nullptr, nullptr); page; page = FindWindowExA(frame, page, nullptr, nullptr))
        if (GetDlgItem(page, 1021)) searched = page;
    ASSERT_TRUE(searched) << "the search page never came up";
    EXPECT_EQ(uidriver::controlText(searched, 1020), "Searching for components...");
    ASSERT_EQ(installFromFolderPage(setup, frame), "");

    EXPECT_TRUE(exists(installFolder + "\\TAVRIN.DLL"));
    // A found copy outside the destination is only looked at, never changed.
    char text[64] = "";
    getFileVersionText("M:\\old\\TAVRINBH.DLL", text, sizeof text);
    EXPECT_STREQ(text, olderVersion);
    DeleteFileA(record.c_str());
    removeInstallation();
}
