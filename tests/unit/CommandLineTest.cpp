#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "CommandLine.h"

TEST(CommandLine, SwitchesComeFromTheFirstTokenOnly)
{
    // The switches each line sets: h(elp), q(uiet), t(roubleshooting), r(estart).
    const char* cases[][2] = {
        {"", ""},          {"/?", "h"},         {"/? /q", "h"},   {"/?x", ""},    {"x/?", ""},
        {"/q/t", "qt"},    {"/q /t", "q"},      {"/t /q", "t"},   {"x/Qy", "q"},  {"/T", "t"},
        {"/x\t/q", "q"},  // a tab does not end the token
        {"-restart/q", "q"}, {"-RESTART c:\\tavrin.rss", "r"}, {"-restart", "r"}, {" /q", ""},
    };
    for (const auto& c : cases) {
        CCommandLine p = parseCommandLine(c[0]);
        EXPECT_EQ(c[1], std::string(p.help ? "h" : "") + (p.quiet ? "q" : "") + (p.troubleshooting ? "t" : "") +
                            (p.restart ? "r" : "")) << c[0];
    }
    EXPECT_STREQ("", parseCommandLine("/q c:\\x").scriptPath);
    EXPECT_STREQ("", parseCommandLine("-restart").scriptPath);
    // A restart takes everything behind the first blank.
    EXPECT_STREQ(" \"C:\\Program Files\\tavrin.rss\" ",
                 parseCommandLine("-restart  \"C:\\Program Files\\tavrin.rss\" ").scriptPath);
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

    parsed = parseCommandLine(("-restart " + std::string(9991, 'p')).c_str());
    ASSERT_TRUE(parsed.restart);
    EXPECT_EQ(std::string(255, 'p'), std::string(parsed.scriptPath, strnlen(parsed.scriptPath, 256)));
}
