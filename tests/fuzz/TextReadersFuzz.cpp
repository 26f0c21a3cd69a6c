// The command line and the restart script: generated and mutated texts against
// the rules of their readers.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>

#include "BoundedText.h"
#include "CommandLine.h"
#include "Fuzz.h"
#include "engine/RestartScript.h"

namespace {
std::string lowered(std::string text)
{
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

const std::vector<std::string> commandTokens = {"/q", "/Q", "/t", "/T", "/?", "-restart", "-RESTART", "-Restart",
                                                " ", "  ", "\t", "\"", "/", "?", "x", "C:\\tavrin.rss"};
}  // namespace

TEST(Fuzz, CommandLines)
{
    runCases("command line", 6000, [](CFuzzRandom& random) {
        std::string line;
        for (size_t n = random.below(8); n > 0; --n)
            line += random.percent(85) ? random.pick(commandTokens) : random.text(random.length(300));
        if (random.percent(30)) line = random.mutate(line, commandTokens, 1 + static_cast<int>(random.below(4)), 20000);
        line = line.c_str();  // the system hands over a zero-terminated text

        CCommandLine parsed = parseCommandLine(line.c_str());
        size_t blank = line.find(' ');
        std::string token = line.substr(0, blank);
        if (token.size() > 255) token.resize(254);
        const std::string lower = lowered(token);
        ASSERT_LT(strnlen(parsed.firstToken, sizeof parsed.firstToken), sizeof parsed.firstToken);
        ASSERT_LT(strnlen(parsed.scriptPath, sizeof parsed.scriptPath), sizeof parsed.scriptPath);
        EXPECT_EQ(token, parsed.firstToken);
        EXPECT_EQ(lower == "/?", parsed.help);
        if (parsed.help) return;
        EXPECT_EQ(lower.find("/q") != std::string::npos, parsed.quiet);
        EXPECT_EQ(lower.find("/t") != std::string::npos, parsed.troubleshooting);
        EXPECT_EQ(lower == "-restart", parsed.restart);
        std::string script = parsed.restart && blank != std::string::npos ? line.substr(blank + 1, 255) : "";
        EXPECT_EQ(script, parsed.scriptPath);
    });
}

namespace {
const std::vector<std::string> scriptTokens = {
    "## TavRin Installation Reboot Script ##", "Destination=", "Source=", "copy ", "COPY", "regsvr32 ",
    "REGSVR32", "\r\n", "\n", "\r", " ", "C:\\Program Files\\TavRin\\", "C:\\TEMP\\tavrin\\TAVRIN.DLL"};

std::string scriptPath(CFuzzRandom& random)
{
    std::string path = random.percent(50) ? "C:\\Program Files\\TavRin\\" : "C:\\TEMP\\TAVRIN~1\\";
    path += random.percent(80) ? random.bytes(1 + random.below(12), "ABCDEFGHIJKLMNOPQRSTUVWXYZ.~ ") + ".DLL"
                               : random.text(random.length(400));
    return path;
}

// What the script's rules make of one line, or false for a line passed over.
bool expectedCommand(const std::string& line, std::string& out)
{
    const std::string lower = lowered(line.substr(0, 12));
    auto cut = [](const std::string& text) { return text.substr(0, 259); };
    if (lower.rfind("destination=", 0) == 0) {
        out = "D|" + cut(line.substr(12)) + "|";
    } else if (lower.rfind("source=", 0) == 0) {
        out = "S|" + cut(line.substr(7)) + "|";
    } else if (lower.rfind("copy", 0) == 0) {
        size_t blank = line.size() > 5 ? line.find(' ', 5) : std::string::npos;
        if (blank == std::string::npos) return false;
        out = "C|" + cut(line.substr(5, blank - 5)) + "|" + cut(line.substr(blank + 1));
    } else if (lower.rfind("regsvr32", 0) == 0) {
        out = "R|" + cut(line.size() > 9 ? line.substr(9) : "") + "|";  // no path: an empty one
    } else {
        return false;
    }
    return true;
}
}  // namespace

TEST(Fuzz, RestartScripts)
{
    runCases("restart script", 4000, [](CFuzzRandom& random) {
        std::string script = "## TavRin Installation Reboot Script ##\r\nDestination=" + scriptPath(random) +
                             "\r\nSource=" + scriptPath(random) + "\r\n";
        for (size_t n = random.below(6); n > 0; --n) {
            std::string target = scriptPath(random);
            script += "copy " + scriptPath(random) + " " + target + "\r\nregsvr32 " + target + "\r\n";
        }
        if (random.percent(70)) script = random.mutate(script, scriptTokens, 1 + static_cast<int>(random.below(10)));
        const std::string text = script.c_str();  // the reader's text ends at a zero byte

        std::string expected, line;
        for (size_t i = 0; i <= text.size(); ++i) {
            if (i < text.size() && text[i] != '\r' && text[i] != '\n') {
                line += text[i];
                continue;
            }
            std::string command;
            if (!line.empty() && expectedCommand(line, command)) expected += command + "\n";
            line.clear();
        }
        std::string got;
        for (const CRestartCommand& c : readRestartCommands(text.c_str())) {
            EXPECT_LE(c.first.size(), 259u);
            EXPECT_LE(c.second.size(), 259u);
            got += std::string(1, "DSCR"[c.kind]) + "|" + c.first + "|" + c.second + "\n";
        }
        EXPECT_EQ(expected, got);
    });
}

// A damaged Source= line must not send the restart run's removal elsewhere
// than the extraction folder that holds the script.
TEST(FuzzRegression, RestartRemovesOnlyTheFolderOfItsScript)
{
    const std::string folder = fuzzFolder("restart-source");
    const std::string script = folder + "\\tavrin.rss";
    EXPECT_TRUE(isScriptFolder(folder.c_str(), script.c_str()));
    EXPECT_TRUE(isScriptFolder((folder + "\\").c_str(), script.c_str()));
    EXPECT_TRUE(isScriptFolder((folder + "\\sub\\..").c_str(), script.c_str()));
    const std::string parent = folder.substr(0, folder.rfind('\\'));
    for (const std::string& other : {parent, folder.substr(0, 3), std::string("Z:\\"), folder + "\\sub",
                                     folder.substr(0, folder.size() - 1), std::string(""), std::string("\\")})
        EXPECT_FALSE(isScriptFolder(other.c_str(), script.c_str())) << other;

    RemoveDirectoryA(folder.c_str());
}
