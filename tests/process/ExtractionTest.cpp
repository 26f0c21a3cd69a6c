// The payload's road from the program's resources to the extraction folder and
// into the setup description, seen from outside as a user's machine sees it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "FolderLink.h"
#include "SetupProcess.h"

namespace {
// Names in the temporary folder that a run may leave: tavrin* and tv*.tmp.
std::vector<std::string> leftovers()
{
    std::vector<std::string> names;
    for (const char* pattern : {"tavrin*", "tv*.tmp"}) {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA((tempFolder() + pattern).c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) continue;
        do names.push_back(found.cFileName);
        while (FindNextFileA(search, &found));
        FindClose(search);
    }
    return names;
}

class Extraction : public MachineTest {};
}  // namespace

// Taken names lead to the next number: a folder, a file, and a link that leads
// nowhere, which Wine does not list at all (only the folder's creation tells).
TEST_F(Extraction, UnpacksIntoAFreeNameAndRemovesIt)
{
    ASSERT_TRUE(CreateDirectoryA((tempFolder() + "tavrin").c_str(), nullptr));
    writeFile(tempFolder() + "tavrin1", "a file counts as taken too");
    ASSERT_TRUE(CreateDirectoryA((tempFolder() + "tvgone").c_str(), nullptr));
    FolderLink dangling(tempFolder() + "tavrin2", tempFolder() + "tvgone");
    ASSERT_TRUE(dangling.listsAsJunction());
    ASSERT_TRUE(RemoveDirectoryA((tempFolder() + "tvgone").c_str()));
    // The override box stops the run inside the load, while the folder stands.
    RegSetKeyValueA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug", "RegoServer", REG_SZ, "http://127.0.0.1:1/rego", 24);
    RegSetKeyValueA(HKEY_CURRENT_USER, "SOFTWARE\\Tavrin\\Debug", "ImportServer", REG_SZ, "http://127.0.0.1:1/i", 21);
    const char* const members[] = {"tavrin.dll", "TavRinBH.dll", "tvdownload.exe", "tvprotocol.dll",
                                   "agreement.txt", "readme.txt", "setup.ini", "SidePanel.bmp"};
    SetupProcess setup("/Q");
    ASSERT_TRUE(setup.window("Server Override"));
    for (const char* member : members) EXPECT_TRUE(exists(tempFolder() + "tavrin3\\" + member)) << member;
    EXPECT_EQ(answerBox(setup, "Server Override"),
              "Registration Server: http://127.0.0.1:1/rego\nImport Server: http://127.0.0.1:1/i");
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_FALSE(exists(tempFolder() + "tavrin3"));
    EXPECT_TRUE(exists(tempFolder() + "tavrin") && exists(tempFolder() + "tavrin1"));
    DeleteFileA((tempFolder() + "tavrin1").c_str());
    EXPECT_NE(readLog().find("- Expanding file SidePanel.bmp\r\n"), std::string::npos);
}

// Broken cabinets, and a drive too small for the members (or for the large
// variant's cabinet itself, nothing left while it shows): one box, nothing left.
TEST_F(Extraction, BrokenPayloadsAndAFullDiskSayCorruptInstallationAndLeaveNothing)
{
    std::vector<std::string> programs;
    for (const char* variant : {"corrupt", "empty", "nosetupini", "missingmember"})
        programs.push_back(variantPath(variant));
    // A drive of a few pages that scripts/run-tests.sh mounts where the machine allows it.
    const char* drive = std::getenv("TAVRIN_SMALL_DRIVE");
    if (drive) programs.insert(programs.end(), {setupPath(), variantPath("large")});
    for (size_t i = 0; i < programs.size(); ++i) {
        SCOPED_TRACE(programs[i]);
        if (i >= 4) emptyFolder(drive), SetEnvironmentVariableA("TMP", (std::string(drive) + "\\").c_str());
        SetupProcess setup("", programs[i]);
        EXPECT_TRUE(setup.window("Corrupt Installation"));
        EXPECT_TRUE(i < 4 || leftovers().empty()) << leftovers()[0] << " is left while the user is told";
        EXPECT_EQ(answerBox(setup, "Corrupt Installation"), "The installation has missing files or is corrupt.");
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_TRUE(leftovers().empty()) << leftovers()[0];
        EXPECT_EQ(readFlag(), "0");
    }
    SetEnvironmentVariableA("TMP", nullptr);
    if (!drive) GTEST_SKIP() << "no small drive (TAVRIN_SMALL_DRIVE) on this machine: the full disk went untried";
}
