// The restart run: SETUP.EXE -restart <script> finishing what a file in use
// prevented, as the next logon starts it.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "SetupProcess.h"

namespace {
// A scratch extraction folder with a script, and the browser replaced by the
// recorder for the length of a test.
class RestartRun : public ::testing::Test {
protected:
    void SetUp() override
    {
        char temp[MAX_PATH];
        GetTempPathA(sizeof temp, temp);
        source = std::string(temp) + "tvsrc" + std::to_string(GetTickCount()) + "\\";
        target = std::string(temp) + "tv target " + std::to_string(GetTickCount()) + "\\";
        ASSERT_TRUE(CreateDirectoryA(source.c_str(), nullptr));
        ASSERT_TRUE(CreateDirectoryA(target.c_str(), nullptr));
        writeFile(source + "one.dll", "first payload file");
        writeFile(source + "two.exe", "second payload file");
        SetEnvironmentVariableA("TAVRIN_PROBE_REFUSE", nullptr);
        browser.reset(new BrowserStandIn(source.substr(0, source.size() - 1) + ".browser.txt"));
        RegDeleteKeyValueA(HKEY_CURRENT_USER, "Software\\TavRinTests", "ProbeRegistered");
        writeFlag("1");
    }
    void TearDown() override
    {
        browser.reset();
        SetEnvironmentVariableA("TAVRIN_PROBE_REFUSE", nullptr);
    }

    std::string header() const
    {
        return "## TavRin Installation Reboot Script ##\r\nDestination=" + target + "\r\nSource=" +
               source.substr(0, source.size() - 1) + "\r\n";
    }
    std::string script() const { return source + "tavrin.rss"; }
    std::string browserLog() { return browser->seen(); }
    DWORD probeRuns()
    {
        DWORD count = 0, size = sizeof count;
        RegGetValueA(HKEY_CURRENT_USER, "Software\\TavRinTests", "ProbeRegistered", RRF_RT_REG_DWORD,
                     nullptr, &count, &size);
        return count;
    }
    std::string probe() const { return testFolder() + "probe.dll"; }

    std::string source, target;
    std::unique_ptr<BrowserStandIn> browser;
};
}  // namespace

TEST_F(RestartRun, CopiesRegistersOpensTheWelcomePageAndRemovesTheSource)
{
    writeFile(script(), header() + "copy " + source + "one.dll " + target + "one.dll\r\n" +
                            "regsvr32 " + probe() + "\n\n" +  // LF alone and an empty line
                            "copy " + source + "two.exe\r\n" +  // no target: passed over
                            "COPY " + source + "two.exe " + target + "two.exe\r\n");
    SetupProcess setup("-RESTART " + script());
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_EQ(readFile(target + "one.dll"), "first payload file");
    EXPECT_EQ(readFile(target + "two.exe"), "second payload file");
    EXPECT_EQ(probeRuns(), 1u);
    EXPECT_NE(browserLog().find("http://www.tavrin.example/welcome"), std::string::npos) << browserLog();
    EXPECT_EQ(GetFileAttributesA(source.c_str()), INVALID_FILE_ATTRIBUTES) << "source folder stays";
    EXPECT_EQ(readFlag(), "0");
    expectLogHead(logLines());
}

TEST_F(RestartRun, FailingCopyStopsAtItsLineAndKeepsEverything)
{
    writeFile(script(), header() + "copy " + source + "one.dll " + target + "one.dll\r\n" +
                            "copy " + source + "missing.dll " + target + "missing.dll\r\n" +
                            "copy " + source + "two.exe " + target + "two.exe\r\n");
    SetupProcess setup("-restart " + script());
    EXPECT_FALSE(answerBox(setup, "Error").empty()) << "the system's text comes first";
    EXPECT_EQ(answerBox(setup, "Installation Failed"), "TavRin Installation has failed");
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_EQ(readFile(target + "one.dll"), "first payload file");
    EXPECT_EQ(GetFileAttributesA((target + "two.exe").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(browserLog(), "");
    EXPECT_NE(GetFileAttributesA(script().c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(readFlag(), "1");
    EXPECT_EQ(readLog().find("Installation Complete"), std::string::npos);
}

TEST_F(RestartRun, RefusedRegistrationStopsWithTheFailureBoxAlone)
{
    SetEnvironmentVariableA("TAVRIN_PROBE_REFUSE", "1");
    writeFile(script(), header() + "regsvr32 " + probe() + "\r\n" + "copy " + source + "one.dll " +
                            target + "one.dll\r\n");
    SetupProcess setup("-restart " + script());
    EXPECT_EQ(answerBox(setup, "Installation Failed"), "TavRin Installation has failed");
    EXPECT_EQ(setup.wait(), 0);
    EXPECT_EQ(probeRuns(), 1u);
    EXPECT_EQ(GetFileAttributesA((target + "one.dll").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(readFlag(), "1");
}

TEST_F(RestartRun, ScriptWithoutCommandsStillOpensTheBrowser)
{
    // Several megabytes of binary lines of 5,000 bytes, no command among them,
    // and no Source= line: nothing is removed.
    std::mt19937 random(7);
    std::string junk;
    while (junk.size() < 4 * 1024 * 1024) {
        for (int i = 0; i < 5000; ++i) junk += static_cast<char>(0x80 | (random() & 0x7F));
        junk += "\r\n";
    }
    writeFile(script(), junk);
    SetupProcess setup("-restart " + script());
    EXPECT_EQ(setup.wait(60000), 0);
    EXPECT_NE(browserLog().find("/welcome"), std::string::npos);
    EXPECT_NE(GetFileAttributesA(source.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(readFlag(), "0");
}

TEST_F(RestartRun, MissingScriptEndsQuietlyAndClearsTheFlag)
{
    SetupProcess noPath("-restart");
    EXPECT_EQ(noPath.wait(), 0);
    EXPECT_EQ(readFlag(), "0");
    writeFlag("1");
    SetupProcess missing("-restart " + source + "nothing.rss");
    EXPECT_EQ(missing.wait(), 0);
    EXPECT_EQ(readFlag(), "0");
    EXPECT_EQ(browserLog(), "");
}
