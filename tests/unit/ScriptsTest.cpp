// Registry values and requirements (on a scratch key below HKCU\Software\TavRinTests), and
// the scripts the file pass writes: the restart script, and the uninstall script.
#include <gtest/gtest.h>

#include "BoundedText.h"
#include "RegistryKey.h"
#include "UnitFiles.h"
#include "analysis/RequirementChecks.h"
#include "description/PathHelpers.h"
#include "engine/RestartScript.h"
#include "engine/UninstallScript.h"
#include "wizard/InstallWizard.h"

namespace {
class RegistryTest : public ::testing::Test {
protected:
    const std::string scratch = "Software\\TavRinTests\\Unit" + std::to_string(GetCurrentProcessId());
    void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, scratch.c_str()); }
    void TearDown() override
    {
        RegDeleteTreeA(HKEY_CURRENT_USER, scratch.c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\TavRinTests");  // only if nothing else is left
    }
    void set(const char* name, DWORD type, const void* data, DWORD size)
    {
        ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_CURRENT_USER, scratch.c_str(), name, type, data, size));
    }
};

// A box shown on this thread is closed and counted: a failing entry ends the
// test as a failure instead of blocking it.
thread_local int boxesShown;
LRESULT CALLBACK closeBoxes(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && ++boxesShown) PostMessageA(reinterpret_cast<HWND>(wParam), WM_COMMAND, IDOK, 0);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// "D|first|second" per command: Destination, Source, Copy, Regsvr32.
std::string describe(const std::string& script)
{
    std::string text;
    for (const auto& c : readRestartCommands(script.c_str()))
        text += std::string(1, "DSCR"[c.kind]) + "|" + c.first + "|" + c.second + "\n";
    return text;
}
}  // namespace

TEST_F(RegistryTest, ValuesOfAnyTypeAreTerminatedBooleansGoByTheFirstCharacter)
{
    const DWORD number = 0x00434241;  // "ABC" in memory order
    set("Number", REG_DWORD, &number, sizeof number);
    set("Full", REG_BINARY, "12345678", 8);
    CRegistryKey key(HKEY_CURRENT_USER);
    char text[16] = "keep";
    EXPECT_FALSE(key.readString("Number", text, sizeof text)) << "a root alone is not an open key";
    ASSERT_TRUE(key.open(scratch.c_str(), true, KEY_ALL_ACCESS) && key.open("Inner", true, KEY_ALL_ACCESS));
    EXPECT_TRUE(key.close());  // back to the scratch key
    EXPECT_TRUE(key.readString("Number", text, sizeof text) && !strcmp(text, "ABC"));
    memset(text, 'Z', sizeof text);
    ASSERT_TRUE(key.readString("Full", text, 8));
    EXPECT_EQ(std::string("1234567\0Z", 9), std::string(text, 9)) << "the last byte gives way to the zero";
    for (auto c : {std::pair<const char*, bool>{"", false}, {"0true", false}, {"1", true}, {"false", true}}) {
        bool value = !c.second;
        EXPECT_TRUE(key.writeString("Flag", c.first) && key.readBool("Flag", value) && value == c.second) << c.first;
    }
    bool flag = true;
    EXPECT_TRUE(!key.readBool("Missing", flag) && flag) << "a failed read must leave the value alone";
}

// Entries that fail show a box: the process tests walk those.
TEST_F(RegistryTest, RequirementEntriesThatPassAlsoPassTogether)
{
    set("Version", REG_SZ, "5.00.2314.1003", 15);
    set("", REG_SZ, "2, 0", 5);
    CInstallWizard wizard(false);
    const std::string here = "HKEY_CURRENT_USER\\" + scratch;
    auto check = [](const std::string& keyPath, const char* value, const char* word, const char* bound) {
        return CRegistryCheck{"TavRin Engine", keyPath, value, word, bound, 0};
    };
    const CRegistryCheck passing[] = {
        check("", "Version", "VERGREATER", "9"), check("HKEY_NOWHERE\\" + scratch, "Version", "VERGREATER", "9"),
        check(here + "\\Missing", "Version", "VERGREATER", "9"), check(here, "NoSuchValue", "VERGREATER", "9"),
        check("HKEY_CURRENT\\" + scratch, "Version", "VERGREATER", "9"),  // roots by their whole names only
        check(here, "Version", "VERGREATER", "5.0.2314.1003"),  // the bound itself
        check(here, "Version", "VERLESSER", "5.0.2314.1003"), check(here, "Version", "verlesser", "5.0.2315"),
        check(here, "Version", "VEREQUAL", "9"),  // other words pass
        check(here, "", "VERGREATER", "2.0.0.0"),  // the default value
        check("hkey_current_user\\" + scratch, "Version", "VerGreater", "4.99"),
    };
    HHOOK hook = SetWindowsHookExA(WH_CBT, closeBoxes, nullptr, GetCurrentThreadId());
    ASSERT_NE(nullptr, hook);
    EXPECT_EQ(1, checkRequirements(&wizard));  // no entries
    for (const auto& c : passing) {
        EXPECT_EQ(1, checkRegistryEntry(nullptr, &wizard, c)) << c.keyPath << " " << c.comparison << " " << c.version;
        wizard.settings.registryChecks.push_back(c);
    }
    EXPECT_EQ(1, checkRequirements(&wizard));
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(0, boxesShown);
}

TEST(RestartScript, ReaderTakesFourCommandsWriterAndRunOnceValueUseShortForms)
{
    EXPECT_EQ("D|C:\\Program Files\\TavRin|\nS|C:\\Temp\\TavRin Setup|\nC|C:\\Temp\\a.dll|C:\\Program Files\\a.dll\n"
              "R|C:\\Program Files\\a.dll|\nR||\nC||target only\nC|x|y z\n",
              describe("Destination=C:\\Program Files\\TavRin\r\nsource=C:\\Temp\\TavRin Setup\r\n\r\n"
                       "copy C:\\Temp\\a.dll C:\\Program Files\\a.dll\nREGSVR32 C:\\Program Files\\a.dll\r"
                       "rem nothing to do\r\ncopy nospace\r\ncopy\r\nregsvr32\r\nCOPY  target only\n\n\ncopy x y z"));

    const std::string source = tempFolder("TavRin Setup");  // a blank, as a user name may put one there
    writeFile(source + "\\TAVRIN.DLL", "dll");
    CInstallWizard wizard(false);
    wizard.settings.destination = "C:\\Program Files\\Tav Rin";
    copyText(wizard.sourceFolder, source.c_str(), sizeof wizard.sourceFolder);
    std::string script = "left over";
    startRestartScript(script, wizard);
    CInstallFile dll;
    dll.fileName = "TAVRIN.DLL", dll.autoReg = true, dll.destFolder = wizard.settings.destination,
    dll.sourceFolder = source;
    appendRestartEntry(dll, script);
    const std::string shortDll = shortPathOf((source + "\\TAVRIN.DLL").c_str()),
                      target = dll.destFolder + "\\TAVRIN.DLL";
    EXPECT_EQ(std::string::npos, shortDll.find(' ')) << "the copy line's source must hold no blank";
    EXPECT_EQ(
        "D|C:\\Program Files\\Tav Rin|\nS|" + source + "|\nC|" + shortDll + "|" + target + "\nR|" + target + "|\n",
        describe(script));
    EXPECT_EQ(0u, script.find("## TavRin Installation Reboot Script ##\r\n"));
    DeleteFileA((source + "\\TAVRIN.DLL").c_str());
    writeFile(source + "\\tavrin.rss", std::string(5000, 'x'));  // an older, longer script
    HKEY key;  // a new Wine prefix has no such key, and the program makes none
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce",
                                             0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr));
    writeRestartScript(&wizard, script);
    EXPECT_EQ(script, readFile(source + "\\tavrin.rss"));
    char program[MAX_PATH], value[2048] = "";
    DWORD size = sizeof value;
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueA(key, nullptr, "TavRin", RRF_RT_REG_SZ, nullptr, value, &size));
    ASSERT_NE(0u, GetModuleFileNameA(nullptr, program, sizeof program));
    // Short forms: the folder's blank would cut the line where Windows starts it.
    EXPECT_EQ(shortPathOf(program) + " -restart " + shortPathOf((source + "\\tavrin.rss").c_str()), value);
    RegDeleteValueA(key, "TavRin");
    RegCloseKey(key);
    DeleteFileA((source + "\\tavrin.rss").c_str());
    RemoveDirectoryA(source.c_str());
}

// advpack.dll carries out the uninstall script: each file is deleted from the
// short destination by the short name the file pass left, the self-registering
// ones are unregistered, and the second stage starts at the next logon.
TEST(UninstallScript, NamesEveryFileByItsShortPathInBothStages)
{
    const std::string destination = tempFolder("TavRin Uninstall"), shortDestination = shortPathOf(destination.c_str());
    ASSERT_NE(destination, shortDestination);  // the blank has to go, or the test shows nothing
    CInstallWizard wizard(false);
    wizard.settings.title = "Side Bar", wizard.settings.readme = "readme.txt",
    wizard.settings.destination = destination;
    const struct { const char* name; std::string shortPath; bool autoReg;
    } files[] = {{"TAVRIN.DLL", shortDestination + "\\TAVRIN.DLL", true},
                 {"tvdownload.exe", shortDestination + "\\TVDOWN~1.EXE", false},
                 {"tvprotocol.dll", "TVPROT~1.DLL", true},
                 {"tvnotes.txt", "", false}};
    for (const auto& f : files) {
        wizard.settings.files.emplace_back();
        CInstallFile& file = wizard.settings.files.back();
        file.fileName = f.name, file.destFolder = destination, file.shortPath = f.shortPath, file.autoReg = f.autoReg;
    }
    std::string script = "an earlier script";
    buildUninstallScript(&wizard, script, "C:\\My Windows\\INF\\tvuninst.inf");
    for (const std::string& part :
         {"[TavRinFilesDir]\r\n,,,,\"" + shortDestination + "\"\r\n",
          std::string("DelFiles           = README.TXT,TAVRIN.DLL,tvdownload.exe,tvprotocol.dll,tvnotes.txt\r\n"),
          std::string(
              "tvnotes.txt = 49100\r\n\r\n[README.TXT]\r\nreadme.txt,,,32\r\n[TAVRIN.DLL]\r\nTAVRIN.DLL,,,32\r\n"
              "[tvdownload.exe]\r\nTVDOWN~1.EXE,,,32\r\n"
              "[tvprotocol.dll]\r\nTVPROT~1.DLL,,,32\r\n[tvnotes.txt]\r\n,,,32\r\n\r\n"
              "[self.registering.dlls]\r\n%49100%\\TAVRIN.DLL\r\n%49100%\\TVPROT~1.DLL\r\n\r\n"),
          std::string(
              "\"RunDll32 %11%\\Advpack.dll,LaunchINFSection C:\\My Windows\\INF\\tvuninst.inf,TavRinUninstall2\r\n"),
          std::string("PRODUCT_TITLE      = \"Side Bar\"\r\n")})
        EXPECT_NE(std::string::npos, script.find(part)) << part;
    EXPECT_EQ("rundll32 advpack.dll,LaunchINFSection C:\\My Windows\\INF\\tvuninst.inf,TavRinUninstall",
              uninstallCommandLine("C:\\My Windows\\INF\\tvuninst.inf"));  // the first of the two stages
    RemoveDirectoryA(destination.c_str());
}
