// Installs as a user makes them: a quiet one, an update over a file in use
// finished by the restart run, the uninstall by Wine's own advpack.dll; and
// installs that stop half way. What each leaves on the machine.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "SetupProcess.h"
#include "description/PathHelpers.h"

namespace {
const std::string& folder = installFolder;
const char* const payload[] = {"TAVRIN.DLL", "TAVRINBH.DLL", "tvdownload.exe", "tvprotocol.dll"};
const char* const uninstallKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TavRin";
const char* const runOnceKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";

std::string infPath() { return windowsFolder() + "\\INF\\tvuninst.inf"; }

void expectNothingCountedDone()
{
    EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "DisplayName"), "(none)");
    EXPECT_FALSE(exists(infPath())) << "no uninstall script after a stop";
}

class Install : public MachineTest {};
}  // namespace

// A quiet install; then, from a desktop and a temporary folder whose paths hold
// blanks (as on Windows 2000), an update while another program has tvprotocol.dll
// loaded: the restart command names both without a blank. Help, the site link and
// Finish open their addresses on the way; the uninstall's two stages end the road.
TEST_F(Install, UpdateOverAFileInUseIsFinishedAtTheNextLogonThenUninstalled)
{
    const std::string opened = tempFolder() + "tvopened.txt";
    BrowserStandIn browser(opened);
    SetupProcess first("/q");
    ASSERT_EQ(first.wait(30000), 0);
    for (const char* name : payload)
        EXPECT_EQ(readFile(folder + "\\" + name), built(std::string("payload\\") + name)) << name;
    EXPECT_EQ(registeredServer(0), folder + "\\TAVRIN.DLL");
    EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "UninstallString"),
              "rundll32 advpack.dll,LaunchINFSection " + infPath() + ",TavRinUninstall");
    std::string log = readLog();
    EXPECT_NE(log.find("- Registered file tvprotocol.dll"), std::string::npos);
    EXPECT_EQ(log.find("- Registered file tvdownload.exe"), std::string::npos) << "not AutoReg";

    // A user's profile on Windows has this key; a new Wine prefix does not, and the program only opens it.
    HKEY runOnce;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, runOnceKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &runOnce, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(runOnce);
    const std::string target = folder + "\\tvprotocol.dll";
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
        ASSERT_TRUE(frame) << "no frame with the first file's version, commas turned into points";
        // Help, and the site link: a click into the frame's top right, above Cancel.
        uidriver::pressButton(frame, 1064);
        RECT cancel, client;
        GetWindowRect(GetDlgItem(frame, IDCANCEL), &cancel);
        GetClientRect(frame, &client);
        POINT top = {cancel.left, cancel.top};
        ScreenToClient(frame, &top);
        PostMessageA(frame, WM_MOUSEMOVE, 0, MAKELPARAM(client.right - 15, top.y - 21));
        PostMessageA(frame, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(client.right - 15, top.y - 21));
        EXPECT_NE(browser.seenOnce("CustomerSupport").find("http://www.tavrin.example/CustomerSupport"),
                  std::string::npos);
        EXPECT_NE(browser.seenOnce("example/\"").find("http://www.tavrin.example/\""), std::string::npos)
            << browser.seen();

        uidriver::pressButton(frame, 1001);
        ASSERT_TRUE(pageShowing(frame, 1025)) << "no update page";
        uidriver::pressButton(frame, 1001);  // Update
        ASSERT_TRUE(keepExistingAccount(frame));
        ASSERT_TRUE(pageShowing(frame, 0, "TavRin Personal Installation is almost complete!"));
        uidriver::pressButton(frame, 1001);
        EXPECT_EQ(answerBox(second, "Installation Complete", IDNO),
                  "TavRin Personal installation needs to restart Windows to complete the installation.");
        ASSERT_TRUE(pageShowing(frame, 1018));
        uidriver::pressButton(frame, IDCANCEL);  // Finish, both boxes ticked
        EXPECT_EQ(second.wait(), 0);
    }
    SetEnvironmentVariableA("TMP", nullptr);
    FreeLibrary(held);
    EXPECT_NE(browser.seenOnce("/welcome").find(folder + "\\readme.txt"), std::string::npos) << browser.seen();
    EXPECT_NE(browser.seen().find("http://www.tavrin.example/welcome"), std::string::npos) << browser.seen();

    std::string command = readValue(HKEY_CURRENT_USER, runOnceKey, "TavRin");
    size_t restart = command.find(" -restart ");
    ASSERT_NE(restart, std::string::npos) << command;
    EXPECT_EQ(command.find(' '), restart) << "the program's path holds no blank: " << command;
    EXPECT_EQ(command.find(' ', restart + 10), std::string::npos) << "nor the script's: " << command;
    std::string script = command.substr(restart + 10), text = readFile(script);
    EXPECT_EQ(text.rfind("## TavRin Installation Reboot Script ##\r\n", 0), 0u) << text;
    EXPECT_NE(text.find("regsvr32 " + target + "\r\n"), std::string::npos) << text;
    EXPECT_NE(readLog().find("- Reboot Required"), std::string::npos);
    EXPECT_EQ(registeredServer(2), "(none)") << "the old file in use is unregistered until the restart run";
    EXPECT_NE(readLog().find("- tvdownload.exe copied"), std::string::npos) << "the other files go on";
    EXPECT_EQ(readLog().find("- TAVRIN.DLL copied"), std::string::npos)
        << "an equal version under the upgrade check stays";
    // The next logon: Windows deletes the value and starts its command.
    RegDeleteKeyValueA(HKEY_CURRENT_USER, runOnceKey, "TavRin");
    writeFile(opened, "");
    ASSERT_TRUE(runToEnd(command));
    EXPECT_EQ(registeredServer(2), target);
    EXPECT_FALSE(exists(script)) << "the restart run removes the extraction folder";
    EXPECT_NE(browser.seenOnce("/welcome").find("http://www.tavrin.example/welcome"), std::string::npos);
    EXPECT_EQ(readFlag(), "0");

    // The uninstall's first stage drops the entry and leaves the second under
    // RunOnce; advpack finds the components to unregister by their short names.
    const std::string inf = readFile(infPath());
    for (const char* name : {"TAVRIN.DLL", "TAVRINBH.DLL", "tvprotocol.dll"}) {
        char shortPath[MAX_PATH] = "";
        GetShortPathNameA((folder + "\\" + name).c_str(), shortPath, sizeof shortPath);
        std::string shortName = std::string(shortPath).substr(std::string(shortPath).rfind('\\') + 1);
        EXPECT_NE(inf.find("\r\n%49100%\\" + shortName + "\r\n"), std::string::npos) << name << "\n" << inf;
    }
    ASSERT_TRUE(runToEnd(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "UninstallString")));
    EXPECT_EQ(readValue(HKEY_LOCAL_MACHINE, uninstallKey, "UninstallString"), "(none)");
    std::string secondStage = readValue(HKEY_LOCAL_MACHINE, runOnceKey, "TavRinUninstall");
    // The line opens a quote it never closes: Wine's INF parser keeps its CR.
    if (!secondStage.empty() && secondStage.back() == '\r') secondStage.pop_back();
    char system[MAX_PATH];
    GetSystemDirectoryA(system, sizeof system);
    ASSERT_EQ(secondStage,
              "RunDll32 " + std::string(system) + "\\Advpack.dll,LaunchINFSection " + infPath() + ",TavRinUninstall2");
    EXPECT_TRUE(exists(folder + "\\TAVRIN.DLL")) << "files go in the second stage only";
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, runOnceKey, "TavRinUninstall");
    ASSERT_TRUE(runToEnd(secondStage));
    EXPECT_FALSE(exists(folder));
}

// A target that cannot be replaced, and a full disk, stop the pass where they
// come: no rollback, no uninstall entry, no registration, and no file cut short.
TEST_F(Install, CopyThatFailsStopsThePassWithoutRollback)
{
    // Another program keeps an older tvdownload.exe mapped, as a viewer may: it
    // opens for writing (no file in use), but cannot be truncated.
    const std::string blocked = folder + "\\tvdownload.exe", old = built("payload\\setup.ini");
    writeFile(blocked, old);
    HANDLE file = CreateFileA(blocked.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    std::unique_ptr<void, BOOL(WINAPI*)(LPCVOID)> view(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0), UnmapViewOfFile);
    CloseHandle(mapping);
    CloseHandle(file);
    ASSERT_TRUE(view);
    // A drive of a few pages that scripts/run-tests.sh mounts where the machine allows it.
    const char* drive = std::getenv("TAVRIN_SMALL_DRIVE");
    for (const std::string& target : {folder, std::string(drive ? drive : "") + "\\TavRin"}) {
        if (!drive && target != folder)
            GTEST_SKIP() << "no small drive (TAVRIN_SMALL_DRIVE): the full disk went untried";
        SCOPED_TRACE(target);
        SetupProcess setup("");
        HWND frame = startCopy(setup, target == folder ? "" : target);
        ASSERT_TRUE(frame);
        std::string text = answerBox(setup, "Error");
        size_t open = text.find('\''), close = text.find('\'', open + 1);
        ASSERT_NE(close, std::string::npos) << text;
        const std::string failed = text.substr(open + 1, close - open - 1);
        EXPECT_EQ(text, "Error creating file '" + failed + "'.  Please check you have enough disk space and "
                        "permission to modify this directory.");
        ASSERT_TRUE(pageShowing(frame, 0, "Setup was unable to install TavRin Personal.")) << "no failure page";
        EXPECT_EQ(uidriver::controlText(frame, IDCANCEL), "&Finish");
        uidriver::pressButton(frame, IDCANCEL);
        EXPECT_EQ(setup.wait(), 0);
        expectNothingCountedDone();
        EXPECT_EQ(registeredServer(0), "(none)") << "the registration loop never ran";
        EXPECT_EQ(readFlag(), "0");
        bool before = true;
        for (const char* name : payload) {
            std::string path = target + "\\" + name;
            before = before && path != failed;
            if (before) EXPECT_EQ(readFile(path), built(std::string("payload\\") + name)) << name;
            else if (path == blocked) EXPECT_EQ(readFile(path), old);
            else EXPECT_FALSE(exists(path)) << name << " is there, after the failed one";
        }
        if (target != folder) removeTree(target.c_str());
    }
    EXPECT_TRUE(exists(folder + "\\readme.txt")) << "Finish copies the readme on the failure page too";
}
