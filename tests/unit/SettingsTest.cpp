// The setup description through Wine's real profile functions.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "description/PathHelpers.h"
#include "description/ProfileLists.h"
#include "description/VersionInfo.h"
#include "wizard/InstallWizard.h"

namespace {
class SettingsLoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        char temp[MAX_PATH];
        GetTempPathA(sizeof temp, temp);
        path = std::string(temp) + "tvsettings" + std::to_string(GetCurrentProcessId()) + ".ini";
        RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug");
    }
    void TearDown() override { DeleteFileA(path.c_str()); }

    CInstallSettings& load(const std::string& text)
    {
        HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written;
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(file);
        wizard.settings.load(&wizard, path.c_str());
        return wizard.settings;
    }

    std::string path;
    CInstallWizard wizard{false};
};
}  // namespace

TEST_F(SettingsLoad, BooleansFieldsAndDefaults)
{
    auto& s = load(
        "[Install]\r\nTitle=TavRin Personal\r\nregoserver=http://host:8080/servlet/x\r\n"
        "[Files]\r\nA.DLL=a\r\nB.DLL=b\r\n"
        "[A.DLL]\r\nAutoReg=true\r\nACMREG=TRUE\r\nDestination=%WINSYSDIR%\\codecs\r\nUpgradeCheck=TRUE\r\n"
        "[B.DLL]\r\nAUTOREG=1\r\nDESTINATION=C:\\elsewhere\r\nCompany=Other Inc\r\n"
        "[DetectKill]\r\nIEFrame=,TRUE,TRUE\r\nEmpty=\r\nTitled=Some Title\r\nBoth=T,FALSE,true\r\n"
        "[CHECKREGISTRY]\r\nA=Browser,HKEY_LOCAL_MACHINE\\Software\\X,Version,VERGREATER\r\n"
        "B=,,Name,,Key,,Value,,VERLESSER,,1.2,,TRUE\r\n");
    EXPECT_EQ(s.title, "TavRin Personal");
    EXPECT_EQ(s.regoCommand, "Add");
    EXPECT_EQ(s.serverRoot, "http://host:8080");

    ASSERT_EQ(s.files.size(), 2u);
    char system[MAX_PATH];
    GetSystemDirectoryA(system, sizeof system);
    EXPECT_EQ(s.files[0].fileName, "A.DLL");
    EXPECT_TRUE(s.files[0].autoReg && s.files[0].acmReg && s.files[0].fixedDestination &&
                s.files[0].upgradeCheck);
    EXPECT_EQ(s.files[0].destFolder, std::string(system) + "\\codecs");
    EXPECT_FALSE(s.files[1].autoReg || s.files[1].upgradeCheck || s.files[1].fixedDestination);
    EXPECT_EQ(s.files[1].company, "Other Inc");
    EXPECT_EQ(s.files[1].version, "0.0.0.0");

    ASSERT_EQ(s.detectKills.size(), 4u);
    // The empty first field vanishes and the later ones move up.
    EXPECT_EQ(s.detectKills[0].windowTitle, "TRUE");
    EXPECT_EQ(s.detectKills[0].flagA, 1);
    EXPECT_FALSE(s.detectKills[0].flagB);
    EXPECT_EQ(s.detectKills[1].flagA, 1);
    EXPECT_EQ(s.detectKills[2].windowTitle, "Some Title");
    EXPECT_EQ(s.detectKills[2].flagA, 1);
    EXPECT_EQ(s.detectKills[3].flagA, 0);
    EXPECT_TRUE(s.detectKills[3].flagB);

    ASSERT_EQ(s.registryChecks.size(), 2u);
    EXPECT_EQ(s.registryChecks[0].comparison, "VERGREATER");
    EXPECT_EQ(s.registryChecks[0].version, "");
    EXPECT_EQ(s.registryChecks[1].keyPath, "Key");
    EXPECT_EQ(s.registryChecks[1].version, "1.2");
    EXPECT_EQ(s.registryChecks[1].flag, 1);
}

TEST_F(SettingsLoad, MissingSectionsGiveOneEmptyRecordEach)
{
    auto& s = load("[Install]\r\nregoserver=http://host\r\nregocommand=AddTrial\r\n");
    EXPECT_EQ(s.serverRoot, "http://host");
    EXPECT_EQ(s.regoCommand, "AddTrial");
    ASSERT_EQ(s.files.size(), 1u);
    EXPECT_EQ(s.files[0].fileName, "");
    ASSERT_EQ(s.detectKills.size(), 1u);
    EXPECT_EQ(s.detectKills[0].windowClass, "");
    ASSERT_EQ(s.registryChecks.size(), 1u);
    EXPECT_EQ(s.registryChecks[0].keyPath, "");
}

TEST_F(SettingsLoad, KeyListStopsAtItsBuffer)
{
    std::string text = "[Files]\r\n";
    for (int i = 0; i < 200; ++i) text += "FILE" + std::to_string(1000 + i) + ".DLL=x\r\n";
    auto& s = load(text);
    // 13 bytes a key: fewer than 80 fit, and each is (a cut of) a real name.
    EXPECT_GT(s.files.size(), 70u);
    EXPECT_LT(s.files.size(), 80u);
    for (size_t i = 0; i < s.files.size(); ++i)
        EXPECT_EQ(("FILE" + std::to_string(1000 + i) + ".DLL").rfind(s.files[i].fileName, 0), 0u);
}

TEST(ProfileLists, KeyWalkAndCommaSplit)
{
    const char list[] = "one\0two\0\0junk";
    EXPECT_EQ(walkKeyList(list, sizeof list), (std::vector<std::string>{"one", "two"}));
    char cut[8] = {'a', 'b', 0, 'c', 'd', 'e', 'f', 0};  // the platform's cut, no second zero
    EXPECT_EQ(walkKeyList(cut, sizeof cut), (std::vector<std::string>{"ab", "cdef"}));
    EXPECT_EQ(walkKeyList("\0\0", 2), std::vector<std::string>{""});
    EXPECT_EQ(splitCommaList(",,a, b,,c,"), (std::vector<std::string>{"a", " b", "c"}));
    EXPECT_TRUE(splitCommaList(",,,").empty());
    EXPECT_TRUE(profileBool("true") && !profileBool("1") && !profileBool("TRUE ") && !profileBool(""));
}

TEST(PayloadVersions, ReadFromTheBuiltFiles)
{
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    std::string folder(self);
    folder = folder.substr(0, folder.find_last_of('\\')) + "\\..\\..\\payload";
    CInstallFile file;
    file.sourceFolder = folder;
    file.fileName = "TAVRIN.DLL";
    file.company = "from the description";
    readVersionInfo(file);
    EXPECT_EQ(file.version, "3, 1, 0, 12");
    EXPECT_EQ(file.company, "TavRin Inc");

    file.fileName = "no such file.dll";
    file.version = "kept";
    readVersionInfo(file);
    EXPECT_EQ(file.version, "kept");
    char text[64];
    getFileVersionText((folder + "\\no such file.dll").c_str(), text, sizeof text);
    EXPECT_STREQ(text, "0.0.0.0");
}
