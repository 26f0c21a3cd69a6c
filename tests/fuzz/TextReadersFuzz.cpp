// The command line, generated and mutated, against the rules of its reader;
// the restart script's folder against a damaged script.
#include <gtest/gtest.h>

#include <cstring>

#include "CommandLine.h"
#include "Fuzz.h"
#include "engine/RestartScript.h"

TEST(Fuzz, CommandLines)
{
    const Tokens tokens = {"/q", "/Q", "/t", "/T", "/?", "-restart", "-RESTART", " ", "  ", "\t", "\"", "x", "C:\\a.rss"};
    runCases("command line", 6000, [&](CFuzzRandom& random) {
        std::string line;
        for (size_t n = random.below(8); n > 0; --n) line += random.percent(85) ? random.pick(tokens) : random.text(random.length(300));
        line = random.mutate(line, tokens, 30, 4, 20000).c_str();  // the system hands over a zero-terminated text
        const CCommandLine parsed = parseCommandLine(line.c_str());
        const size_t blank = line.find(' ');
        std::string token = line.substr(0, blank), lower;
        if (token.size() > 255) token.resize(254);
        for (char c : token) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        ASSERT_LT(std::max(strnlen(parsed.firstToken, 256), strnlen(parsed.scriptPath, 256)), 256u);
        EXPECT_EQ(token, parsed.firstToken);
        EXPECT_EQ(lower == "/?", parsed.help);
        if (parsed.help) return;
        EXPECT_EQ(lower.find("/q") != std::string::npos, parsed.quiet);
        EXPECT_EQ(lower.find("/t") != std::string::npos, parsed.troubleshooting);
        EXPECT_EQ(lower == "-restart", parsed.restart);
        EXPECT_EQ(parsed.restart && blank != std::string::npos ? line.substr(blank + 1, 255) : "", parsed.scriptPath);
    });
}

// A damaged Source= line must not send the restart run's removal elsewhere
// than the extraction folder that holds the script.
TEST(FuzzRegression, RestartRemovesOnlyTheFolderOfItsScript)
{
    const std::string folder = fuzzFolder("restart-source"), script = folder + "\\tavrin.rss";
    for (const std::string& same : {folder, folder + "\\", folder + "\\sub\\.."})
        EXPECT_TRUE(isScriptFolder(same.c_str(), script.c_str())) << same;
    for (const std::string& other : {folder.substr(0, folder.rfind('\\')), folder.substr(0, 3), std::string("Z:\\"),
                                     folder + "\\sub", folder.substr(0, folder.size() - 1), std::string(""), std::string("\\")})
        EXPECT_FALSE(isScriptFolder(other.c_str(), script.c_str())) << other;
    RemoveDirectoryA(folder.c_str());
}
