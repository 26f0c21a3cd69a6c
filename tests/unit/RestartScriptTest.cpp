#include <gtest/gtest.h>

#include <random>
#include <string>

#include "engine/RestartScript.h"

namespace {
// "D|first|second" per command: Destination, Source, Copy, Regsvr32.
std::string describe(const std::vector<CRestartCommand>& commands)
{
    std::string text;
    for (const auto& c : commands) text += std::string(1, "DSCR"[c.kind]) + "|" + c.first + "|" + c.second + "\n";
    return text;
}
}  // namespace

TEST(RestartScript, ReadsTheFourCommandsInOrder)
{
    EXPECT_EQ("D|C:\\Program Files\\TavRin|\n"
              "S|C:\\Temp\\TavRin Setup|\n"
              "C|C:\\Temp\\a.dll|C:\\Program Files\\TavRin\\a.dll\n"
              "R|C:\\Program Files\\TavRin\\a.dll|\n"
              "C||target only\n"
              "C|x|y z\n",
              describe(readRestartCommands("Destination=C:\\Program Files\\TavRin\r\n"
                                           "source=C:\\Temp\\TavRin Setup\r\n\r\n"
                                           "copy C:\\Temp\\a.dll C:\\Program Files\\TavRin\\a.dll\n"
                                           "REGSVR32 C:\\Program Files\\TavRin\\a.dll\r"
                                           "rem nothing to do\r\n"
                                           "copy nospace\r\n"
                                           "copy\r\n"
                                           "COPY  target only\n\n\n"
                                           "copy x y z")));
    EXPECT_EQ("", describe(readRestartCommands("\r\n\r\n\n")));
}

TEST(RestartScript, PathsAreCutTo259Characters)
{
    const std::string a(400, 'a'), b(300, 'b'), a259 = a.substr(0, 259), b259 = b.substr(0, 259);
    EXPECT_EQ("D|" + a259 + "|\nC|" + a259 + "|" + b259 + "\nR|" + b259 + "|\n",
              describe(readRestartCommands(("Destination=" + a + "\r\ncopy " + a + " " + b + "\r\nregsvr32 " + b).c_str())));
}

TEST(RestartScript, RandomBytesInLongLines)
{
    std::mt19937 random(20240517);
    const char* starts[] = {"copy ", "regsvr32 ", "Destination=", "SOURCE=", ""};
    std::string text;
    size_t destinations = 0;
    for (int line = 0; text.size() < 4000000; ++line) {
        destinations += line % 5 == 2;
        text += starts[line % 5];
        for (size_t n = text.size() + 5000; text.size() < n;) {
            char c = static_cast<char>(random() % 255 + 1);
            if (c != '\r' && c != '\n') text += c;
        }
        text += line % 2 ? "\r\n" : "\n";
    }
    size_t found = 0;
    for (const auto& c : readRestartCommands(text.c_str())) {
        ASSERT_LE(c.first.size(), 259u);
        ASSERT_LE(c.second.size(), 259u);
        found += c.kind == CRestartCommand::destination;
    }
    EXPECT_EQ(destinations, found);
}
