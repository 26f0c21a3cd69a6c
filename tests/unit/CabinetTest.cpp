#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "UnitFiles.h"
#include "analysis/CabinetFile.h"
#include "description/PathHelpers.h"

namespace {
std::string builtFolder()
{
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    std::string folder(self);
    return folder.substr(0, folder.find_last_of('\\')) + "\\..\\..\\payload\\";
}

size_t indexOf(const CCabinetFile& cabinet, const char* name)
{
    for (size_t i = 0; i < cabinet.entries.size(); ++i)
        if (lstrcmpiA(cabinet.entries[i].name.c_str(), name) == 0) return i;
    return cabinet.entries.size();
}
}  // namespace

// A member whose path in the folder would pass the path limit is not unpacked
// under a cut name, which would be another file.
TEST(Cabinet, MemberIsUnpackedWholeOrNotAtAll)
{
    CCabinetFile cabinet;
    ASSERT_TRUE(cabinet.listFiles((builtFolder() + "setup.cab").c_str()));
    const size_t protocol = indexOf(cabinet, "tvprotocol.dll");
    ASSERT_LT(protocol, cabinet.fileCount());

    const std::string base = tempFolder("TavRinCab");
    ASSERT_TRUE(cabinet.extractFile(protocol, base.c_str()));
    EXPECT_EQ(readFile(base + "\\tvprotocol.dll"), readFile(builtFolder() + "tvprotocol.dll"));

    // Folder, backslash and the 14 characters of the name come to 260.
    std::string deep = base;
    while (deep.size() < MAX_PATH - 15) {
        deep += "\\" + std::string(std::min<size_t>(40, MAX_PATH - 16 - deep.size()), 'd');
        ASSERT_TRUE(CreateDirectoryA(deep.c_str(), nullptr)) << deep.size();
    }
    ASSERT_EQ(deep.size(), MAX_PATH - 15u);
    ASSERT_TRUE(cabinet.extractFile(protocol, deep.c_str()));
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((deep + "\\*").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    int names = 0;
    do names += found.cFileName[0] != '.';
    while (FindNextFileA(search, &found));
    FindClose(search);
    EXPECT_EQ(names, 0) << "something was unpacked under a cut name";
    removeTree(base.c_str());
}

// A member that a full disk cuts short is a failure (Wine's iteration itself
// reports none).
TEST(Cabinet, MemberTheDiskCannotHoldIsAFailure)
{
    // A drive of a few pages that scripts/run-tests.sh mounts where the machine allows it.
    const char* drive = std::getenv("TAVRIN_SMALL_DRIVE");
    if (!drive) GTEST_SKIP() << "no small drive (TAVRIN_SMALL_DRIVE) on this machine";
    CCabinetFile cabinet;
    ASSERT_TRUE(cabinet.listFiles((builtFolder() + "setup.cab").c_str()));
    const size_t panel = indexOf(cabinet, "SidePanel.bmp");
    ASSERT_LT(panel, cabinet.fileCount());
    ASSERT_GT(cabinet.entries[panel].size, 40u * 1024) << "larger than the whole drive";
    EXPECT_FALSE(cabinet.extractFile(panel, drive));
    DeleteFileA((std::string(drive) + "\\SidePanel.bmp").c_str());
}
