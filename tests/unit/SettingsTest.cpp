// The setup description through Wine's real profile functions.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "UnitFiles.h"
#include "description/VersionInfo.h"
#include "wizard/InstallWizard.h"

namespace {
class SettingsLoad : public ::testing::Test {
protected:
    const std::string folder = tempFolder("TavRinSettings"), path = folder + "\\setup.ini";
    CInstallWizard wizard{false};
    void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug"); }
    void TearDown() override
    {
        DeleteFileA(path.c_str());
        RemoveDirectoryA(folder.c_str());
    }
    CInstallSettings& load(const std::string& text)
    {
        EXPECT_TRUE(writeFile(path, text));
        wizard.settings.load(&wizard, path.c_str());
        return wizard.settings;
    }
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

    // Class|title|flags; an empty first field vanishes and the later ones move up.
    std::string kills;
    for (const auto& k : s.detectKills)
        kills += k.windowClass + "|" + k.windowTitle + "|" + std::to_string(k.flagA) + std::to_string(k.flagB) + "\n";
    EXPECT_EQ("IEFrame|TRUE|10\nEmpty||10\nTitled|Some Title|10\nBoth|T|01\n", kills);

    std::string checks;
    for (const auto& c : s.registryChecks)
        checks += c.name + "|" + c.keyPath + "|" + c.valueName + "|" + c.comparison + "|" + c.version + "|" +
                  std::to_string(c.flag) + "\n";
    EXPECT_EQ("Browser|HKEY_LOCAL_MACHINE\\Software\\X|Version|VERGREATER||0\n"
              "Name|Key|Value|VERLESSER|1.2|1\n", checks);  // fewer fields, and empty ones that vanish
}

TEST_F(SettingsLoad, MissingSectionsGiveOneEmptyRecordEach)
{
    auto& s = load("[Install]\r\nregoserver=http://host\r\nregocommand=AddTrial\r\n");
    EXPECT_EQ(s.serverRoot, "http://host");
    EXPECT_EQ(s.regoCommand, "AddTrial");
    EXPECT_TRUE(s.files.size() == 1 && s.files[0].fileName.empty());
    EXPECT_TRUE(s.detectKills.size() == 1 && s.detectKills[0].windowClass.empty());
    EXPECT_TRUE(s.registryChecks.size() == 1 && s.registryChecks[0].keyPath.empty());
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
