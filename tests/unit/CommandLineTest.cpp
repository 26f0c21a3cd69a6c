#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "CommandLine.h"

TEST(CommandLine, SwitchesComeFromTheFirstTokenOnly)
{
    const struct { const char* line; bool help, quiet, troubleshooting, restart; } cases[] = {
        {"", false, false, false, false},
        {"/?", true, false, false, false},
        {"/? /q", true, false, false, false},
        {"/?x", false, false, false, false},
        {"x/?", false, false, false, false},
        {"/q/t", false, true, true, false},
        {"/q /t", false, true, false, false},
        {"/t /q", false, false, true, false},
        {"x/Qy", false, true, false, false},
        {"/T", false, false, true, false},
        {"/x\t/q", false, true, false, false},  // a tab does not end the token
        {"-restart/q", false, true, false, false},
        {"-RESTART c:\\tavrin.rss", false, false, false, true},
        {"-restart", false, false, false, true},
        {" /q", false, false, false, false},
    };
    for (const auto& c : cases) {
        CCommandLine parsed = parseCommandLine(c.line);
        EXPECT_EQ(c.help, parsed.help) << c.line;
        EXPECT_EQ(c.quiet, parsed.quiet) << c.line;
        EXPECT_EQ(c.troubleshooting, parsed.troubleshooting) << c.line;
        EXPECT_EQ(c.restart, parsed.restart) << c.line;
    }
    EXPECT_STREQ("/q", parseCommandLine("/q /t").firstToken);
    EXPECT_STREQ("/x\t/q", parseCommandLine("/x\t/q c").firstToken);
    EXPECT_STREQ("", parseCommandLine("/q c:\\x").scriptPath);
}

TEST(CommandLine, RestartTakesEverythingBehindTheFirstBlank)
{
    CCommandLine parsed = parseCommandLine("-restart  \"C:\\Program Files\\TavRin\\tavrin.rss\" ");
    ASSERT_TRUE(parsed.restart);
    EXPECT_STREQ(" \"C:\\Program Files\\TavRin\\tavrin.rss\" ", parsed.scriptPath);
    EXPECT_STREQ("-restart", parsed.firstToken);
    EXPECT_STREQ("", parseCommandLine("-restart").scriptPath);
}

TEST(CommandLine, LongTokensAndLinesAreCut)
{
    const std::string t255(255, 'a'), t256(256, 'a');
    EXPECT_EQ(t255, parseCommandLine(t255.c_str()).firstToken);
    EXPECT_EQ(std::string(254, 'a'), parseCommandLine(t256.c_str()).firstToken);
    EXPECT_EQ(std::string(254, 'a'), parseCommandLine((t256 + " /q").c_str()).firstToken);

    std::string huge(10000, 'b');
    huge.replace(0, 2, "/q");
    CCommandLine parsed = parseCommandLine(huge.c_str());
    EXPECT_TRUE(parsed.quiet);
    EXPECT_EQ(254u, strnlen(parsed.firstToken, sizeof parsed.firstToken));

    std::string restart = "-restart " + std::string(9991, 'p');
    parsed = parseCommandLine(restart.c_str());
    ASSERT_TRUE(parsed.restart);
    EXPECT_EQ(std::string(255, 'p'), std::string(parsed.scriptPath, strnlen(parsed.scriptPath, 256)));
}
