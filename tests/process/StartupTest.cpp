// SETUP.EXE started as a user starts it: the help box, the log every run
// opens with, and the InstallInProcess flag over a series of runs.
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "SetupProcess.h"

namespace {
const char* const previousRunText =
    "TavRin Installation has detected that a previous instance of the installation failed to "
    "complete.  Please review the TavRinInstall.log in your windows directory or for more "
    "assistance send this file to our support department at support@tavrin.example";

// Quiet runs here go on to install: into a folder that stands, removed after.
class Startup : public ::testing::Test {
protected:
    void SetUp() override
    {
        removeInstallation();
        CreateDirectoryA(installFolder.c_str(), nullptr);
    }
    void TearDown() override { removeInstallation(); }
};
}  // namespace

TEST_F(Startup, HelpBoxShowsTheOptionsAndLeavesTheFlagAlone)
{
    writeFlag("1");
    SetupProcess setup("/?");
    EXPECT_EQ(answerBox(setup, "TavRin Installation"),
              "TavRin Installation\n\nCommand Options: \n  /Q\t: Quite Mode\n  /T\t: Troubleshooting "
              "Mode\n  /?\t: Help (this screen)\n");
    EXPECT_EQ(setup.wait(), 0);
    auto lines = logLines();
    expectLogHead(lines);
    EXPECT_EQ(lines.size(), 15u) << "the help box logs nothing behind Begin Installation";
    EXPECT_EQ(readFlag(), "1");
}

TEST_F(Startup, FlagTellsOfAFailedRunOnceAndIsClearedByARunThatEnds)
{
    writeFlag("1");
    {
        // A run left the flag set and died: the next run tells of it, then goes on.
        SetupProcess setup("");
        EXPECT_EQ(answerBox(setup, "Error"), previousRunText);
        cancelWizard(setup);
        EXPECT_EQ(setup.wait(), 0);
    }
    auto lines = logLines();
    expectLogHead(lines);
    EXPECT_TRUE(hasLine(lines, std::string("ERRORMSG: ") + previousRunText));
    EXPECT_EQ(lines.back(), "Installation Complete");
    EXPECT_EQ(readFlag(), "0");

    // "/?x" selects nothing: a normal run, and no box this time.
    SetupProcess again("/?x");
    cancelWizard(again);
    EXPECT_EQ(again.wait(), 0);
    EXPECT_FALSE(again.window("Error", 0));
    EXPECT_EQ(readFlag(), "0");
    EXPECT_EQ(logLines().back(), "Installation Complete");
}

TEST_F(Startup, KilledRunKeepsTheFlagForTheNextRun)
{
    writeFlag("1");
    SetupProcess first("");
    ASSERT_TRUE(first.window("Error"));
    first.kill();
    EXPECT_EQ(readFlag(), "1");
    EXPECT_FALSE(hasLine(logLines(), "Installation Complete"));

    SetupProcess second("/Q");
    EXPECT_EQ(answerBox(second, "Error"), previousRunText);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(readFlag(), "0");
}

TEST_F(Startup, HostileCommandLinesEndInOrder)
{
    writeFlag("0");
    // 10,000 characters in one token: its head still says /Q, and the quiet run
    // ends by itself; then a script path far beyond 255 behind -restart.
    SetupProcess longToken("/Q" + std::string(10000, 't'));
    EXPECT_EQ(longToken.wait(), 0);
    EXPECT_EQ(logLines().back(), "Installation Complete");

    SetupProcess longPath("-restart C:\\" + std::string(5000, 'p') + "\\tavrin.rss");
    EXPECT_EQ(longPath.wait(), 0);
    EXPECT_EQ(logLines().back(), "Installation Complete");
    EXPECT_EQ(readFlag(), "0");
}
