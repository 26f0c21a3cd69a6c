// Installs as a user makes them: quiet, on the screen, over an existing
// installation, and with a file in use finished by the restart run.
#include <gtest/gtest.h>

#include <memory>

#include "SetupProcess.h"
#include "description/PathHelpers.h"

namespace {
const std::string& folder = installFolder;
const char* const payload[] = {"TAVRIN.DLL", "TAVRINBH.DLL", "tvdownload.exe", "tvprotocol.dll"};
const char* const uninstallKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin";
const char* const runOnceKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";


std::string registeredServer()
{
    return readValue(HKEY_CLASSES_ROOT, "CLSID\\{16C7C243-7FA0-11D3-A0E4-0A02B9000000}\\InprocServer32", nullptr);
}

std::string windowsFolder()
{
    char windows[MAX_PATH];
    GetWindowsDirectoryA(windows, sizeof windows);
    return windows;
}

void expectInstalled()
{
    for (const char* name : payload) EXPECT_TRUE(exists(folder + "\\" + name)) << name;
    EXPECT_EQ(registeredServer(), folder + "\\TAVRIN.DLL");
    EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "DisplayName"), "TavRin Personal");
    std::string inf = windowsFolder() + "\\INF\\tvuninst.inf";
    EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "UninstallString"),
              "rundll32 advpack.dll,LaunchINFSection " + inf + ",TavRinUninstall");
    EXPECT_NE(readFile(inf).find("[TavRinUninstall2]"), std::string::npos);
}

// The page dialog of the frame that holds a visible control with this id.
HWND pageHolding(HWND frame, int id, DWORD timeoutMs = 20000)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 50) {
        for (HWND page = FindWindowExA(frame, nullptr, nullptr, nullptr); page;
             page = FindWindowExA(frame, page, nullptr, nullptr)) {
            HWND control = GetDlgItem(page, id);
            if (control && IsWindowVisible(control) && IsWindowVisible(page)) return page;
        }
        Sleep(50);
    }
    return nullptr;
}

// What opens documents is the recorder too, for the length of a test.
class DocumentStandIn {
public:
    DocumentStandIn()
    {
        char old[1024] = "";
        DWORD size = sizeof old;
        if (RegGetValueA(HKEY_CLASSES_ROOT, key, nullptr, RRF_RT_REG_SZ, nullptr, old, &size) == ERROR_SUCCESS)
            previous = old;
        RegSetKeyValueA(HKEY_CLASSES_ROOT, ".txt", nullptr, REG_SZ, "txtfile", 8);
        set("\"" + testFolder() + "recorder.exe\" \"%1\"");
    }
    ~DocumentStandIn() { set(previous); }

private:
    void set(const std::string& command)
    {
        RegSetKeyValueA(HKEY_CLASSES_ROOT, key, nullptr, REG_SZ, command.c_str(), static_cast<DWORD>(command.size() + 1));
    }
    const char* key = "txtfile\\shell\\open\\command";
    std::string previous;
};

class Install : public ::testing::Test {
protected:
    void SetUp() override
    {
        removeInstallation();
        browser.reset(new BrowserStandIn(tempFolder() + "tvopened.txt"));
    }
    void TearDown() override
    {
        browser.reset();
        removeInstallation();
    }
    std::unique_ptr<BrowserStandIn> browser;
    DocumentStandIn documents;
};
}  // namespace

TEST_F(Install, QuietRunCopiesRegistersAndWritesTheUninstallEntry)
{
    {
        // The pass makes no folders: on a machine without one the first copy fails.
        SetupProcess setup("/Q");
        EXPECT_EQ(answerBox(setup, "Error"),
                  "Error creating file '" + folder + "\\TAVRIN.DLL'.  Please check you have enough disk space "
                  "and permission to modify this directory.");
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_EQ(registeredServer(), "(none)");
        EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "DisplayName"), "(none)");
    }
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
    SetupProcess setup("/q");
    EXPECT_EQ(setup.wait(30000), 0);
    expectInstalled();
    EXPECT_EQ(readValue(HKEY_CURRENT_USER, runOnceKey, "TavRin"), "(none)") << "no restart needed";
    std::string log = readLog();
    for (const char* name : payload) {
        EXPECT_NE(log.find(std::string("- Processing file ") + name + "\r\n"), std::string::npos) << name;
        EXPECT_NE(log.find(std::string("- ") + name + " copied\r\n"), std::string::npos) << name;
    }
    EXPECT_NE(log.find("- Registered file tvprotocol.dll"), std::string::npos);
    EXPECT_EQ(log.find("- Registered file tvdownload.exe"), std::string::npos) << "not AutoReg";
    EXPECT_EQ(log.find("Reboot Required"), std::string::npos);
    EXPECT_FALSE(exists(tempFolder() + "tavrin"));
}

TEST_F(Install, FinishWithBothBoxesTickedOpensTheReadmeAndTheWelcomePage)
{
    SetupProcess setup("");
    HWND frame = setup.window(wizardCaption, 20000);
    ASSERT_TRUE(frame);
    uidriver::pressButton(frame, 1001);  // welcome: nothing installed, so on to the account choice
    ASSERT_TRUE(keepExistingAccount(frame));
    ASSERT_TRUE(pageHolding(frame, 1005));
    uidriver::pressButton(frame, 1001);
    answerBox(setup, "Create Folder", IDYES);
    uidriver::pressButton(frame, 1001);  // ready: the copy starts
    ASSERT_TRUE(pageHolding(frame, 1018)) << "no finish page after the copy";
    uidriver::pressButton(frame, IDCANCEL);  // Finish with both boxes as they come: ticked
    EXPECT_EQ(setup.wait(), 0);

    expectInstalled();
    EXPECT_FALSE(readFile(folder + "\\readme.txt").empty()) << "Finish copies the readme";
    std::string opened;
    for (int i = 0; i < 400 && opened.find("/welcome") == std::string::npos; ++i, Sleep(50)) opened = browser->seen();
    EXPECT_NE(opened.find(folder + "\\readme.txt"), std::string::npos) << "the readme opens: " << opened;
    EXPECT_NE(opened.find("http://www.tavrin.example/welcome"), std::string::npos) << opened;
}

// Started, as on Windows 2000, from a desktop and with a temporary folder whose
// paths hold blanks.
TEST_F(Install, FileInUseIsFinishedByTheRestartRunAtTheNextLogon)
{
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
    SetupProcess first("/Q");
    ASSERT_EQ(first.wait(30000), 0);
    const char* const protocolClass = "CLSID\\{16C7C245-7FA0-11D3-A0E4-0A02B9000000}\\InprocServer32";
    ASSERT_EQ(readValue(HKEY_CLASSES_ROOT, protocolClass, nullptr), folder + "\\tvprotocol.dll");

    // A user's profile on Windows has this key; a new Wine prefix does not, and
    // the program only opens it.
    HKEY runOnce;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, runOnceKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &runOnce,
                              nullptr), ERROR_SUCCESS);
    RegCloseKey(runOnce);
    // Another program has tvprotocol.dll loaded: the pass cannot replace it.
    std::string target = folder + "\\tvprotocol.dll";
    HMODULE held = LoadLibraryA(target.c_str());
    ASSERT_TRUE(held);
    const std::string profile = "C:\\Documents and Settings\\Ada Lovelace\\";
    const std::string desktop = profile + "Desktop", temp = profile + "Local Settings\\Temp";
    ASSERT_TRUE(createFolderPath(desktop.c_str()) && createFolderPath(temp.c_str()));
    ASSERT_TRUE(CopyFileA(setupPath().c_str(), (desktop + "\\SETUP.EXE").c_str(), FALSE));
    SetEnvironmentVariableA("TMP", temp.c_str());
    {
        SetupProcess second("", desktop + "\\SETUP.EXE");
        HWND frame = second.window(wizardCaption, 20000);
        ASSERT_TRUE(frame);
        uidriver::pressButton(frame, 1001);
        ASSERT_TRUE(pageHolding(frame, 1025)) << "no update page";
        uidriver::pressButton(frame, 1001);  // Update
        ASSERT_TRUE(keepExistingAccount(frame));
        Sleep(300);
        uidriver::pressButton(frame, 1001);  // ready: the copy starts
        EXPECT_EQ(answerBox(second, "Installation Complete", IDNO),
                  "TavRin Personal installation needs to restart Windows to complete the installation.");
        HWND finish = pageHolding(frame, 1018);
        ASSERT_TRUE(finish);
        finishOpeningNothing(frame, finish);
        EXPECT_EQ(second.wait(), 0);
    }
    SetEnvironmentVariableA("TMP", nullptr);
    FreeLibrary(held);

    std::string command = readValue(HKEY_CURRENT_USER, runOnceKey, "TavRin");
    size_t restart = command.find(" -restart ");
    ASSERT_NE(restart, std::string::npos) << command;
    EXPECT_EQ(command.find(' '), restart) << "the program's path holds no blank: " << command;
    EXPECT_EQ(command.find(' ', restart + 10), std::string::npos) << "nor the script's: " << command;
    std::string script = command.substr(restart + 10);
    std::string text = readFile(script);
    EXPECT_EQ(text.rfind("## TavRin Installation Reboot Script ##\r\n", 0), 0u) << text;
    EXPECT_NE(text.find("regsvr32 " + target + "\r\n"), std::string::npos) << text;
    EXPECT_NE(readLog().find("- Reboot Required"), std::string::npos);
    EXPECT_EQ(readValue(HKEY_CLASSES_ROOT, protocolClass, nullptr), "(none)")
        << "the old file in use is unregistered until the restart run registers its replacement";
    EXPECT_NE(readLog().find("- tvdownload.exe copied"), std::string::npos) << "the other files go on";

    // The next logon: Windows deletes the value and starts its command.
    RegDeleteKeyValueA(HKEY_CURRENT_USER, runOnceKey, "TavRin");
    ASSERT_TRUE(runToEnd(command));
    EXPECT_EQ(readValue(HKEY_CLASSES_ROOT, protocolClass, nullptr), target);
    EXPECT_FALSE(exists(script)) << "the restart run removes the extraction folder";
    EXPECT_NE(browser->seen().find("/welcome"), std::string::npos);
    EXPECT_EQ(readFlag(), "0");
}
