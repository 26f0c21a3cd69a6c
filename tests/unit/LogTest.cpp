#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>
#include <vector>

#include "DeploymentConfig.h"
#include "InstallLog.h"
#include "TextBuffer.h"
#include "description/PathHelpers.h"
#include "UnitFiles.h"

TEST(TextBuffer, KeepsEveryByteAndItsZeroAcrossGrowth)
{
    CTextBuffer b;
    EXPECT_TRUE(b.appendText(nullptr));
    EXPECT_STREQ("", b.text());
    const std::string a(79, 'a'), c(200, 'c');
    ASSERT_TRUE(b.appendText(a.c_str()));
    ASSERT_TRUE(b.append("b", 1));  // the 80th byte: the first growth
    ASSERT_TRUE(b.append(c.data(), c.size()));
    ASSERT_TRUE(b.append(c.data(), 39));
    EXPECT_EQ(a + "b" + c + c.substr(0, 39), std::string(b.text(), b.size()));
    EXPECT_EQ(0, b.text()[b.size()]);
    EXPECT_GT(b.allocated(), b.size());
}

TEST(LogStamp, DayFirstWithLeadingZeros)
{
    SYSTEMTIME t = {};
    t.wYear = 2024, t.wMonth = 3, t.wDay = 5, t.wHour = 7, t.wMinute = 8, t.wSecond = 9;
    char out[64];
    formatLogStamp(t, out, sizeof out);
    EXPECT_STREQ("05-03-2024 07:08:09", out);
}

namespace {
// The text behind "DD-MM-YYYY HH:MM:SS- ", or false if the line has no such stamp.
bool stripStamp(const std::string& line, std::string& rest)
{
    const std::string pattern = "99-99-9999 99:99:99- ";
    if (line.size() < pattern.size()) return false;
    for (size_t i = 0; i < pattern.size(); ++i)
        if (pattern[i] == '9' ? !isdigit(static_cast<unsigned char>(line[i])) : line[i] != pattern[i])
            return false;
    rest = line.substr(pattern.size());
    return true;
}

class InstallLogTest : public ::testing::Test {
protected:
    const std::string dir = tempFolder("TavRinLog"), path = dir + "\\TavRinInstall.log";
    void TearDown() override
    {
        installLog.close();
        removeTree(dir.c_str());
    }
    // Every line of the file, read while the log is open; each must end in CR LF
    // and hold no other CR or LF.
    std::vector<std::string> lines()
    {
        const std::string data = readFile(path);
        EXPECT_EQ("\r\n", data.substr(data.size() < 2 ? 0 : data.size() - 2)) << "unterminated";
        std::vector<std::string> result;
        for (size_t p = 0, end; (end = data.find("\r\n", p)) != std::string::npos; p = end + 2) {
            result.push_back(data.substr(p, end - p));
            EXPECT_EQ(std::string::npos, result.back().find_first_of("\r\n")) << result.back();
        }
        return result;
    }
};

DWORD WINAPI writeLines(void* tag)
{
    const char* t = static_cast<const char*>(tag);
    for (int i = 0; i < 1000; ++i) installLog.writef("%s %04d %s", t, i, std::string(150, *t).c_str());
    return 0;
}
}  // namespace

TEST_F(InstallLogTest, HeaderThenPlainStampedCutAndEmptyLines)
{
    installLog.open(dir.c_str());
    const std::string longText(200, 'L');
    installLog.write("plain", false);
    installLog.write(longText.c_str(), true);
    installLog.writef("%s-%d", "n", 42);
    installLog.write("", false);
    installLog.write("", true);
    installLog.writef("%s", std::string(2000, 'x').c_str());
    auto all = lines();
    ASSERT_EQ(8u, all.size());
    std::string rest;
    EXPECT_TRUE(stripStamp(all[0], rest) && rest == "TavRin Installation Log") << all[0];
    EXPECT_TRUE(stripStamp(all[1], rest) && rest == "If you experience any problems during the installation, "
                                                    "please forward this log to " TAVRIN_SUPPORT_EMAIL) << all[1];
    EXPECT_EQ("plain", all[2]);
    EXPECT_TRUE(stripStamp(all[3], rest) && rest == longText) << all[3];
    EXPECT_TRUE(stripStamp(all[4], rest) && rest == "n-42") << all[4];
    EXPECT_EQ("", all[5]);
    EXPECT_TRUE(stripStamp(all[6], rest) && rest.empty()) << all[6];
    EXPECT_TRUE(stripStamp(all[7], rest) && rest == std::string(1023, 'x')) << all[7].size();
}

TEST_F(InstallLogTest, TwoThreadsNeverMixLines)
{
    installLog.open(dir.c_str());
    char a[] = "A", b[] = "B";
    HANDLE threads[2] = {CreateThread(nullptr, 0, writeLines, a, 0, nullptr),
                         CreateThread(nullptr, 0, writeLines, b, 0, nullptr)};
    ASSERT_TRUE(threads[0] && threads[1]);
    WaitForMultipleObjects(2, threads, TRUE, INFINITE);
    for (HANDLE thread : threads) CloseHandle(thread);
    auto all = lines();
    ASSERT_EQ(2002u, all.size());
    std::set<std::string> seen;
    for (size_t i = 2; i < all.size(); ++i) {
        std::string rest;
        ASSERT_TRUE(stripStamp(all[i], rest)) << all[i];
        ASSERT_TRUE(rest[0] == 'A' || rest[0] == 'B') << rest;
        ASSERT_EQ(rest.substr(0, 7) + std::string(150, rest[0]), rest);  // "A 0042 " and 150 of its letter
        EXPECT_TRUE(seen.insert(rest.substr(0, 6)).second) << "twice: " << rest;
    }
    EXPECT_EQ(2000u, seen.size());
}

TEST_F(InstallLogTest, EachOpenStartsAfreshOthersMayOnlyReadAMissingFolderLosesLines)
{
    const std::string missing = dir + "\\no\\such\\folder";
    installLog.open(missing.c_str());
    installLog.write("lost", true);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA((missing + "\\TavRinInstall.log").c_str()));
    installLog.open(dir.c_str());
    installLog.write("old run", false);
    installLog.open(dir.c_str());  // the earlier log is still open here
    installLog.write("new run", false);
    auto all = lines();  // read while open
    ASSERT_EQ(3u, all.size());
    EXPECT_EQ("new run", all[2]);
    auto canWrite = [&] {
        HANDLE h = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr);
        if (h != INVALID_HANDLE_VALUE) CloseHandle(h);
        return h != INVALID_HANDLE_VALUE;
    };
    EXPECT_FALSE(canWrite());
    installLog.close();
    EXPECT_TRUE(canWrite());  // close gives the file free
}
