#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "FolderLink.h"
#include "UnitFiles.h"
#include "description/PathHelpers.h"
#include "wizard/InstallWizard.h"

namespace {
// A buffer followed by guard bytes that nothing may write.
template <size_t N> struct Framed {
    char text[N];
    char guard[16];
    Framed() { memset(this, 'G', sizeof *this); }
    bool guardIntact() const { return std::string(guard, 16) == std::string(16, 'G'); }
};
}  // namespace

TEST(PathHelpers, JoinPathAddsOneBackslashAndCuts)
{
    char out[MAX_PATH];
    EXPECT_STREQ("C:\\a\\b.txt", joinPath("C:\\a", "b.txt", out, sizeof out));
    EXPECT_STREQ("C:\\a\\b.txt", joinPath("C:\\a\\", "b.txt", out, sizeof out));
    EXPECT_STREQ("\\b.txt", joinPath("", "b.txt", out, sizeof out));
    EXPECT_STREQ("C:\\a\\", joinPath("C:\\a", nullptr, out, sizeof out));
    EXPECT_STREQ("C:\\abc\\d", joinPath("C:\\abc", "def", out, 9));
    Framed<MAX_PATH> framed;
    const std::string folder = "C:\\" + std::string(297, 'f');
    joinPath(folder.c_str(), "name.txt", framed.text, sizeof framed.text);
    EXPECT_EQ(folder.substr(0, MAX_PATH - 1), framed.text);
    EXPECT_TRUE(framed.guardIntact());
}

TEST(PathHelpers, TrimSpacesFromBothEnds)
{
    const char* cases[][2] = {{"  a b \t\r\n", "a b"}, {"x", "x"}, {"   ", ""}, {"", ""}, {"\tTavRin", "TavRin"}};
    for (const auto& c : cases) {
        char text[32];
        strcpy(text, c[0]);
        EXPECT_STREQ(c[1], trimSpaces(text)) << "'" << c[0] << "'";
    }
}

TEST(PathHelpers, FoldersAreMadeFoundAndRemoved)
{
    const std::string base = tempFolder("TavRinPaths");
    auto at = [&](const char* inside) { return base + "\\" + inside; };
    ASSERT_TRUE(createFolderPath(at("one\\two\\three").c_str()));
    EXPECT_TRUE(folderExists(at("one\\two").c_str()));
    EXPECT_FALSE(folderExists(at("one\\").c_str()));
    EXPECT_FALSE(folderExists(at("none").c_str()));
    ASSERT_TRUE(writeFile(at("one\\five.txt"), "12345"));
    EXPECT_FALSE(folderExists(at("one\\five.txt").c_str()));
    EXPECT_EQ(5u, fileSizeOf(at("one\\five.txt").c_str()));
    EXPECT_EQ(0u, fileSizeOf(at("one\\missing.txt").c_str()));

    ASSERT_TRUE(createFolderPath(at(".hidden").c_str()));
    for (const char* name : {"one\\two\\.keep", ".hidden\\inside.txt", "one\\two\\three\\deep.txt"})
        ASSERT_TRUE(writeFile(at(name), "x"));
    EXPECT_FALSE(removeTree(base.c_str()));  // names beginning with a point stay, so their folders too
    EXPECT_TRUE(fileExists(base.c_str(), "one\\two\\.keep"));
    EXPECT_TRUE(fileExists(base.c_str(), ".hidden\\inside.txt"));
    EXPECT_FALSE(fileExists(base.c_str(), "one\\five.txt"));
    EXPECT_FALSE(fileExists(base.c_str(), "one\\two\\three"));

    DeleteFileA(at("one\\two\\.keep").c_str());
    DeleteFileA(at(".hidden\\inside.txt").c_str());
    RemoveDirectoryA(at(".hidden").c_str());
    EXPECT_TRUE(removeTree(base.c_str()));
    EXPECT_FALSE(fileExists(base.c_str(), nullptr));
}

// A link in the tree, or one handed in as the tree, goes as the link: the
// folder it leads to keeps what it holds. (Wine 8 cannot remove a link to a
// folder that holds anything, error 145: that the links go shows on Windows.)
TEST(PathHelpers, RemovalNeverEntersALink)
{
    const std::string base = tempFolder("TavRinTree"), targets = tempFolder("TavRinTargets");
    for (const char* name : {"\\inside", "\\handed"}) {
        ASSERT_TRUE(createFolderPath((targets + name).c_str()));
        ASSERT_TRUE(writeFile(targets + name + "\\keep.txt", name));
    }
    ASSERT_TRUE(createFolderPath((base + "\\inner").c_str()));
    ASSERT_TRUE(writeFile(base + "\\inner\\gone.txt", "x"));
    {
        FolderLink inside(base + "\\inner\\link", targets + "\\inside");
        FolderLink handed(base + " link", targets + "\\handed");
        ASSERT_TRUE(inside.listsAsJunction() && handed.listsAsJunction());
        removeTree(base.c_str());
        removeTree((base + " link").c_str());
        EXPECT_FALSE(fileExists(base.c_str(), "inner\\gone.txt"));
        EXPECT_EQ(readFile(targets + "\\inside\\keep.txt"), "\\inside");
        EXPECT_EQ(readFile(targets + "\\handed\\keep.txt"), "\\handed");
    }
    removeTree(base.c_str());
    removeTree(targets.c_str());
}

namespace {
class MacroTest : public ::testing::Test {
protected:
    CInstallWizard wizard{false};
    char buffer[512];
    void SetUp() override { wizard.settings.title = "TavRin Personal"; }
    std::string expand(const char* text) { return wizard.expandCopy(text, buffer, sizeof buffer); }
};
}  // namespace

TEST_F(MacroTest, NamesAreReplacedWithoutRegardToCase)
{
    EXPECT_EQ("TavRin Personal/TavRin Personal/TavRin Personal", expand("%title%/%Title%/%TITLE%"));
    EXPECT_EQ("ab", expand("a%NOSUCH%b"));
    EXPECT_EQ("100% sure", expand("100% sure"));
    wizard.settings.title.clear();
    EXPECT_EQ("[]", expand("[%TITLE%]"));
}

TEST_F(MacroTest, FoldersComeFromTheSystem)
{
    char programFiles[MAX_PATH], system[MAX_PATH];
    DWORD size = sizeof programFiles;
    ASSERT_EQ(ERROR_SUCCESS, RegGetValueA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion",
                                          "ProgramFilesDir", RRF_RT_REG_SZ, nullptr, programFiles, &size));
    ASSERT_NE(0, programFiles[0]);
    EXPECT_EQ(std::string(programFiles) + "\\TavRin", expand("%PROGRAMFILES%\\TavRin"));
    ASSERT_NE(0u, GetSystemDirectoryA(system, sizeof system));
    EXPECT_EQ(system, expand("%WINSYSDIR%"));
}

TEST_F(MacroTest, ResultsStayWithinTheBuffer)
{
    Framed<16> framed;
    EXPECT_STREQ("TavRin Personal", wizard.expandCopy("%TITLE% %TITLE%", framed.text, sizeof framed.text));
    strcpy(framed.text, "<%title%>");
    EXPECT_STREQ("<TavRin Persona", wizard.expandMacros(framed.text, sizeof framed.text));
    EXPECT_STREQ("a sourc", wizard.expandCopy("a source longer than the buffer", framed.text, 8));
    EXPECT_TRUE(framed.guardIntact());
    for (const char* self : {"%TITLE%", "%TITLE%%TITLE%", "x%title%y"}) {
        wizard.settings.title = self;  // names itself: expansion must still end
        Framed<16> selfFramed;
        wizard.expandCopy("[%TITLE%]", selfFramed.text, sizeof selfFramed.text);
        EXPECT_LT(strnlen(selfFramed.text, sizeof selfFramed.text), sizeof selfFramed.text) << self;
        EXPECT_EQ('[', selfFramed.text[0]) << self;
        EXPECT_TRUE(selfFramed.guardIntact()) << self;
    }
}
