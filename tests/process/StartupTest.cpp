// SETUP.EXE started as a user starts it (the help box, the log, the
// InstallInProcess flag), and the restart run, SETUP.EXE -restart <script>,
// when what it has to finish fails.
#include <gtest/gtest.h>

#include "SetupProcess.h"

namespace {
const char* const previousRunText =
    "TavRin Installation has detected that a previous instance of the installation failed to "
    "complete.  Please review the TavRinInstall.log in your windows directory or for more "
    "assistance send this file to our support department at support@tavrin.example";

class Startup : public MachineTest {};
}  // namespace

TEST_F(Startup, HelpBoxShowsTheOptionsAndLeavesTheFlagAlone)
{
    writeFlag("1");
    SetupProcess setup("/?");
    EXPECT_EQ(answerBox(setup, "TavRin Installation"),
              "TavRin Installation\n\nCommand Options: \n  /Q\t: Quite Mode\n  /T\t: Troubleshooting "
              "Mode\n  /?\t: Help (this screen)\n");
    EXPECT_EQ(setup.wait(), 0);
    // The system report, and nothing behind Begin Installation.
    std::string log = readLog();
    EXPECT_NE(log.find("- Windows OS: Windows NT\r\n"), std::string::npos) << log;
    EXPECT_NE(log.find("- Connection Type: Lan\r\n"), std::string::npos) << "Wine reports a LAN";
    EXPECT_EQ(log.substr(log.size() - 20), "Begin Installation\r\n");
    EXPECT_EQ(readFlag(), "1");
}

TEST_F(Startup, FlagTellsOfAFailedRunAndIsClearedByARunThatEnds)
{
    writeFlag("1");
    {
        SetupProcess setup("");
        EXPECT_EQ(answerBox(setup, "Error"), previousRunText);
        cancelWizard(setup);
        EXPECT_EQ(setup.wait(), 0);
    }
    std::string log = readLog();
    EXPECT_NE(log.find(std::string("- ERRORMSG: ") + previousRunText + "\r\n"), std::string::npos) << log;
    EXPECT_EQ(log.substr(log.size() - 23), "Installation Complete\r\n");
    EXPECT_EQ(readFlag(), "0");
}

// The restart run stops at a failing copy: the system's text, then the failure
// box. The flag and the script stay for another try. Without a script it just ends.
TEST_F(Startup, RestartRunStopsAtAFailingLineAndKeepsEverything)
{
    BrowserStandIn browser(tempFolder() + "tvrestart.txt");
    const std::string source = tempFolder() + "tvsrc\\", target = tempFolder() + "tv target\\";
    const std::string script = source + "tavrin.rss";
    ASSERT_TRUE(CreateDirectoryA(source.c_str(), nullptr) && CreateDirectoryA(target.c_str(), nullptr));
    writeFile(source + "one.dll", "first payload file");
    writeFile(source + "two.exe", "second payload file");
    writeFlag("1");
    writeFile(script, "## TavRin Installation Reboot Script ##\r\nDestination=" + target +
                          "\r\nSource=" + source.substr(0, source.size() - 1) + "\r\ncopy " + source + "one.dll " +
                          target + "one.dll\r\n" + "copy " + source + "missing.dll " + target + "missing.dll\r\n" +
                          "copy " + source + "two.exe " + target + "two.exe\r\n");
    {
        SetupProcess setup("-restart " + script);
        EXPECT_FALSE(answerBox(setup, "Error").empty()) << "the system's text comes first";
        EXPECT_EQ(answerBox(setup, "Installation Failed"), "TavRin Installation has failed");
        EXPECT_EQ(setup.wait(), 0);
    }
    EXPECT_EQ(readFile(target + "one.dll"), "first payload file");
    EXPECT_FALSE(exists(target + "two.exe"));
    EXPECT_TRUE(exists(script));
    EXPECT_EQ(readFlag(), "1");
    EXPECT_EQ(readLog().find("Installation Complete"), std::string::npos);
    for (const std::string& arguments : {std::string("-restart"), "-RESTART " + source + "nothing.rss"}) {
        writeFlag("1");
        SetupProcess setup(arguments);
        EXPECT_EQ(setup.wait(), 0);
        EXPECT_EQ(readFlag(), "0") << arguments;
    }
    EXPECT_EQ(browser.seen(), "") << "the welcome page is for a restart run that ended well";
    for (const std::string& folder : {source, target}) emptyFolder(folder), RemoveDirectoryA(folder.c_str());
}
