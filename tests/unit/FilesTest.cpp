// Files on Wine's disk: folders made and removed (links never entered), the
// cabinet's members, and the install log.
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <set>
#include <vector>

#include "DeploymentConfig.h"
#include "FolderLink.h"
#include "InstallLog.h"
#include "TestThread.h"
#include "UnitFiles.h"
#include "analysis/CabinetFile.h"
#include "description/PathHelpers.h"

// Names beginning with a point stay, and so do their folders. A link, in the tree
// or handed in as it, goes as the link (Wine 8 cannot remove one to a folder that
// holds anything, error 145): the folder it leads to keeps what it holds.
TEST(Folders, RemovalSparesPointNamesAndNeverEntersALink)
{
    const std::string base = tempFolder("TavRinTree"), targets = tempFolder("TavRinTargets");
    ASSERT_TRUE(createFolderPath((base + "\\one\\two").c_str()) && createFolderPath((targets + "\\in").c_str()));
    for (const char* name : {"\\one\\two\\.keep", "\\one\\five.txt", "\\one\\two\\gone.txt"})
        writeFile(base + name, "12345");
    EXPECT_EQ(5u, fileSizeOf((base + "\\one\\five.txt").c_str()));
    writeFile(targets + "\\in\\keep.txt", "in");
    writeFile(targets + "\\keep.txt", "handed");
    {
        FolderLink inside(base + "\\one\\link", targets + "\\in"), handed(base + " link", targets);
        ASSERT_TRUE(inside.listsAsJunction() && handed.listsAsJunction());
        EXPECT_FALSE(removeTree(base.c_str()));
        removeTree((base + " link").c_str());
        EXPECT_TRUE(fileExists(base.c_str(), "one\\two\\.keep"));
        EXPECT_FALSE(fileExists(base.c_str(), "one\\five.txt") || fileExists(base.c_str(), "one\\two\\gone.txt"));
        EXPECT_EQ(readFile(targets + "\\in\\keep.txt") + readFile(targets + "\\keep.txt"), "inhanded");
    }
    DeleteFileA((base + "\\one\\two\\.keep").c_str());
    EXPECT_TRUE(removeTree(base.c_str()) && !fileExists(base.c_str(), nullptr));
    removeTree(targets.c_str());
}

// A member whose path would pass the path limit is not unpacked under a cut
// name, which would be another file; one a full disk cuts short is a failure
// (Wine's iteration itself reports none).
TEST(Cabinet, MemberIsUnpackedWholeOrNotAtAll)
{
    const std::string built = testFolder() + "..\\..\\payload\\";
    CCabinetFile cabinet;
    ASSERT_TRUE(cabinet.listFiles((built + "setup.cab").c_str()));
    auto indexOf = [&](const char* name) {
        size_t i = 0;
        while (i < cabinet.entries.size() && lstrcmpiA(cabinet.entries[i].name.c_str(), name)) ++i;
        return i;
    };
    const size_t protocol = indexOf("tvprotocol.dll");
    ASSERT_LT(protocol, cabinet.fileCount());
    const std::string base = tempFolder("TavRinCab");
    std::string deep = base;  // folder, backslash and the 14 characters of the name come to 260
    while (deep.size() < MAX_PATH - 15) {
        deep += "\\" + std::string(std::min<size_t>(40, MAX_PATH - 16 - deep.size()), 'd');
        ASSERT_TRUE(CreateDirectoryA(deep.c_str(), nullptr)) << deep.size();
    }
    ASSERT_TRUE(cabinet.extractFile(protocol, deep.c_str()) && cabinet.extractFile(protocol, base.c_str()));
    EXPECT_EQ(readFile(base + "\\tvprotocol.dll"), readFile(built + "tvprotocol.dll"));
    WIN32_FIND_DATAA found;
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileA((deep + "\\t*").c_str(), &found)) << "unpacked under a cut name";
    removeTree(base.c_str());

    const char* drive = std::getenv("TAVRIN_SMALL_DRIVE");  // a drive of a few pages, where scripts/run-tests.sh can
    if (!drive) GTEST_SKIP() << "unpacked whole; a full disk not tried: no small drive (TAVRIN_SMALL_DRIVE)";
    const size_t panel = indexOf("SidePanel.bmp");
    ASSERT_LT(panel, cabinet.fileCount());
    ASSERT_GT(cabinet.entries[panel].size, 40u * 1024) << "larger than the whole drive";
    EXPECT_FALSE(cabinet.extractFile(panel, drive));
    DeleteFileA((std::string(drive) + "\\SidePanel.bmp").c_str());
}

// Each open starts afresh; every line ends in CR LF, lines of two threads never mix.
TEST(InstallLog, HeaderThenPlainStampedCutAndEmptyLinesWholeFromTwoThreads)
{
    SYSTEMTIME t = {2024, 3, 0, 5, 7, 8, 9, 0};
    char stamp[64] = "";
    EXPECT_STREQ("05-03-2024 07:08:09", (formatLogStamp(t, stamp, sizeof stamp), stamp)) << "day first, zeros";
    const std::string dir = tempFolder("TavRinLog");
    installLog.open((dir + "\\no\\such\\folder").c_str());
    installLog.write("lost", true);  // a missing folder loses the lines
    for (const char* run : {"old run", "plain"}) {
        installLog.open(dir.c_str());  // the second time while the first log is still open
        installLog.write(run, false);
    }
    installLog.write(std::string(200, 'L').c_str(), true);
    installLog.writef("%s-%d", "n", 42);
    installLog.write("", false);
    installLog.write("", true);
    installLog.writef("%s", std::string(2000, 'x').c_str());
    {
        auto writeLines = [](char c) {
            for (int i = 0; i < 1000; ++i) installLog.writef("%c %04d %s", c, i, std::string(150, c).c_str());
        };
        CTestThread a([&] { writeLines('A'); }), b([&] { writeLines('B'); });
    }
    // The lines read while the log is open, each stamp "DD-MM-YYYY HH:MM:SS- " put as "#".
    const std::string data = readFile(dir + "\\TavRinInstall.log");
    const std::regex stamped("^\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d:\\d\\d- ");
    std::vector<std::string> lines;
    for (size_t p = 0, end; (end = data.find("\r\n", p)) != std::string::npos; p = end + 2)
        lines.push_back(std::regex_replace(data.substr(p, end - p), stamped, "#"));
    ASSERT_EQ("\r\n", data.substr(data.size() - 2));
    ASSERT_EQ(2008u, lines.size());
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 8),
              (std::vector<std::string>{"#TavRin Installation Log", "#If you experience any problems during the "
                                        "installation, please forward this log to " TAVRIN_SUPPORT_EMAIL, "plain",
                                        "#" + std::string(200, 'L'), "#n-42", "", "#", "#" + std::string(1023, 'x')}));
    std::set<std::string> seen;
    for (size_t i = 8; i < lines.size(); ++i) {
        ASSERT_EQ(lines[i].substr(0, 8) + std::string(150, lines[i][1]), lines[i]);  // "#A 0042 " and 150 "A"
        EXPECT_TRUE(seen.insert(lines[i].substr(0, 7)).second) << "twice: " << lines[i];
    }
    installLog.close();
    removeTree(dir.c_str());
}
