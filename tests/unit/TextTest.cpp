// Versions, paths and macros, and the partner's trailer read from files written here: where
// the marker may stand, the fields, the logo, and lengths that do not fit the file.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "UnitFiles.h"
#include "analysis/Versions.h"
#include "description/Branding.h"
#include "description/PathHelpers.h"
#include "wizard/InstallWizard.h"

namespace {
// A buffer followed by guard bytes that nothing may write.
template <size_t N> struct Framed {
    char text[N], guard[16];
    Framed() { memset(this, 'G', sizeof *this); }
    bool guardIntact() const { return std::string(guard, 16) == std::string(16, 'G'); }
};

std::string word(uint32_t v) { return {char(v), char(v >> 8), char(v >> 16), char(v >> 24)}; }
std::string filler(size_t count) { return std::string(count, 'x'); }

// A trailer; a length given as -1 is the true one. `tail` lies between the logo
// and the length word; without it the logo ends right at that word.
std::string trailer(const std::string& label = "Partner", const std::string& link = "http://p.example/",
                    const std::string& logo = "BM logo", int64_t n = -1, int64_t size = -1, int64_t length = -1,
                    uint32_t partnerA = 1201, const std::string& tail = "")
{
    std::string fields = word(partnerA) + word(7) + word(n < 0 ? label.size() : n) + label + word(link.size()) +
                         link + word(99) + word(size < 0 ? logo.size() : size) + logo + tail;
    return fields + word(length < 0 ? fields.size() + 7 : length) + "tvd";
}

class Branding : public ::testing::Test {
protected:
    int read(const std::string& file)  // `file` read as the program's own
    {
        writeFile(program, file);
        DeleteFileA(logo.c_str());
        return readBrandingTrailer(program.c_str(), folder.c_str(), branding);
    }
    std::string folder = tempFolder("branding"), program = folder + "\\SETUP.EXE", logo = folder + "\\branding.bmp";
    CBranding branding;
};
}  // namespace

TEST(Versions, ParseTakesFourSignedFieldsCompareGoesFieldByFieldAsNumbers)
{
    const struct { const char* text; std::vector<int> fields; } parsed[] = {
        {"5.00.2314.1003", {5, 0, 2314, 1003}}, {"1, 0, 0, 7", {1, 0, 0, 7}}, {"2314a", {2314, 0, 0, 0}},
        {"1.2.3.4.5", {1, 2, 3, 4}}, {"..1,,.2", {1, 2, 0, 0}}, {"-1.+2. -3", {-1, 2, -3, 0}}, {"", {0, 0, 0, 0}},
        {"4294967297.-4294967297", {INT_MAX, INT_MIN, 0, 0}},  // no wrap beyond 32 bits
    };
    for (const auto& c : parsed) {
        const CVersion v = parseVersion(c.text);
        EXPECT_EQ(c.fields, std::vector<int>(v.field, v.field + 4)) << c.text;
    }
    const struct { const char* a; const char* b; int result; } compared[] = {
        {"1.0.0.7", "1.0.0.10", -1},  // numbers, not text
        {"2", "1.9.9.9", 1}, {"1.0", "1, 0, 0, 0", 0}, {"-1", "0", -1}, {"1.2.3.4.9", "1.2.3.4.1", 0},
    };
    for (const auto& c : compared) {
        EXPECT_EQ(c.result, compareVersions(c.a, c.b)) << c.a << " vs " << c.b;
        EXPECT_EQ(-c.result, compareVersions(c.b, c.a)) << c.b << " vs " << c.a;
    }
}

TEST(PathHelpers, JoinAddsOneBackslashAndCutsTrimTakesBothEnds)
{
    char out[MAX_PATH];
    EXPECT_STREQ("C:\\a\\b.txt", joinPath("C:\\a\\", "b.txt", out, sizeof out));
    EXPECT_STREQ("C:\\a\\", joinPath("C:\\a", nullptr, out, sizeof out));
    EXPECT_STREQ("C:\\abc\\d", joinPath("C:\\abc", "def", out, 9));
    Framed<MAX_PATH> framed;
    const std::string folder = "C:\\" + std::string(297, 'f');
    EXPECT_EQ(folder.substr(0, MAX_PATH - 1), joinPath(folder.c_str(), "name.txt", framed.text, MAX_PATH));
    EXPECT_TRUE(framed.guardIntact());
    for (auto c : {std::pair<const char*, const char*>{"  a b \t\r\n", "a b"}, {"x", "x"}, {"   ", ""}})
        EXPECT_STREQ(c.second, trimSpaces(strcpy(out, c.first))) << "'" << c.first << "'";
}

TEST(Macros, NamesWithoutRegardToCaseResultsWithinTheBuffer)
{
    CInstallWizard wizard(false);
    wizard.settings.title = "TavRin Personal";
    char buffer[512];
    auto expand = [&](const char* text) { return std::string(wizard.expandCopy(text, buffer, sizeof buffer)); };
    EXPECT_EQ("TavRin Personal/TavRin Personal/TavRin Personal", expand("%title%/%Title%/%TITLE%"));
    EXPECT_EQ("ab|100% sure", expand("a%NOSUCH%b|100% sure"));
    Framed<16> framed;
    EXPECT_STREQ("TavRin Personal", wizard.expandCopy("%TITLE% %TITLE%", framed.text, sizeof framed.text));
    EXPECT_STREQ("<TavRin Persona", wizard.expandMacros(strcpy(framed.text, "<%title%>"), sizeof framed.text));
    EXPECT_STREQ("a sourc", wizard.expandCopy("a source longer than the buffer", framed.text, 8));
    EXPECT_TRUE(framed.guardIntact());
    for (const char* self : {"%TITLE%", "%TITLE%%TITLE%", "x%title%y"}) {
        wizard.settings.title = self;  // names itself: expansion must still end
        Framed<16> selfFramed;
        wizard.expandCopy("[%TITLE%]", selfFramed.text, sizeof selfFramed.text);
        EXPECT_TRUE(selfFramed.text[0] == '[' && selfFramed.guardIntact() && memchr(selfFramed.text, 0, 16)) << self;
    }
}

TEST_F(Branding, FieldsAndLogo)
{
    ASSERT_EQ(1, read(filler(5000) + trailer({"Part\0ner", 8}, "l", "BM logo", -1, -1, -1, 1201, "tail")));
    EXPECT_EQ("1201 7 99 7", std::to_string(branding.partnerIdA) + " " + std::to_string(branding.partnerIdB) + " " +
                                 std::to_string(branding.extra) + " " + std::to_string(branding.bitmapSize));
    EXPECT_EQ("Part|l", branding.label + "|" + branding.linkUrl) << "a text ends at its first zero byte";
    EXPECT_EQ(logo, branding.bitmapPath);
    EXPECT_EQ("BM logo", readFile(logo));

    const std::string link = "http://p.example/" + std::string(2000, 'k');
    ASSERT_EQ(1, read(filler(5000) + trailer(std::string(300, 'L'), link) + filler(100)));
    EXPECT_EQ(std::string(255, 'L') + link.substr(0, 1023), branding.label + branding.linkUrl) << "cut texts";
    EXPECT_EQ("BM logo", readFile(logo)) << "a logo that ends at the length word";

    ASSERT_EQ(1, read(filler(5000) + trailer("", "", ""))) << "the shortest block: 31 bytes";
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(logo.c_str())) << "no logo, no file";
}

TEST_F(Branding, WhereTheMarkerMayStandAndLengthsThatDoNotFit)
{
    const std::string block = trailer();
    EXPECT_EQ(1, read(filler(5000) + block + filler(4096))) << "marker ending 4,096 bytes before the end";
    EXPECT_EQ(0, read(filler(5000) + block + filler(4097))) << "marker ending 4,097 bytes before the end";
    EXPECT_EQ(1, read(block + filler(4096 - block.size()))) << "a file of exactly 4,096 bytes, block at its start";
    EXPECT_EQ(0, read(block + filler(4095 - block.size()))) << "a file under 4,096 bytes has no trailer";
    EXPECT_EQ(1, read(filler(5000) + block + filler(10) + trailer("", "", "", -1, -1, -1, 5)));
    EXPECT_EQ(5, branding.partnerIdA) << "the marker nearest the end counts";

    const struct { std::string file; const char* what; } plainRuns[] = {
        {filler(5000) + block + "--tvd--", "marker bytes behind the trailer, whose \"trailer\" does not fit"},
        {filler(5000) + trailer("P", "l", "b", -1, -1, 9000), "block longer than the file"},
        {filler(5000) + trailer("", "", "", -1, -1, 30), "block shorter than its fixed words"},
        {filler(5000) + trailer("P", "l", "b", -1, -1, trailer("P", "l", "b").size() - 1), "block one byte short"},
        {filler(5000) + trailer("P", "l", "b", 0xFFFFFFFF), "label length -1"},
        {filler(5000) + trailer("P", "l", "b", 0x80000000), "label length -2^31"},
        {filler(5000) + trailer("P", "l", "b", 500), "label beyond the block"},
        {filler(5000) + trailer("P", "l", "b", -1, 0xFFFFFFF0), "logo size -16"},
        {filler(5000) + trailer("P", "l", "logo", -1, 5), "logo one byte into the length word"},
    };
    for (const auto& c : plainRuns) {
        EXPECT_EQ(0, read(c.file)) << c.what;
        EXPECT_EQ("", branding.linkUrl) << c.what;
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(logo.c_str())) << c.what;
    }
    EXPECT_EQ(0, readBrandingTrailer((folder + "\\missing.exe").c_str(), folder.c_str(), branding));
}
