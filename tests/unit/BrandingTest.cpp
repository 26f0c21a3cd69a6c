// The partner's trailer read from files written here: where the marker may
// stand, the fields, the logo, and trailers whose lengths do not fit the file.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>

#include "UnitFiles.h"
#include "description/Branding.h"

namespace {
std::string word(uint32_t v)
{
    return {static_cast<char>(v), static_cast<char>(v >> 8), static_cast<char>(v >> 16), static_cast<char>(v >> 24)};
}

// A trailer; a length given as -1 is the true one.
std::string trailer(const std::string& label = "Partner", const std::string& link = "http://p.example/",
                    const std::string& logo = "BM logo bytes", int64_t n = -1, int64_t size = -1,
                    int64_t length = -1, uint32_t partnerA = 1201)
{
    std::string fields = word(partnerA) + word(7) + word(n < 0 ? label.size() : n) + label + word(link.size()) +
                         link + word(99) + word(size < 0 ? logo.size() : size) + logo + "any bytes";
    return fields + word(length < 0 ? fields.size() + 7 : length) + "tvd";
}

std::string filler(size_t count) { return std::string(count, 'x'); }

class Branding : public ::testing::Test {
protected:
    // Reads `file` as the program's own; the result is `present`.
    int read(const std::string& file)
    {
        EXPECT_TRUE(writeFile(program, file));
        DeleteFileA(logo.c_str());
        return readBrandingTrailer(program.c_str(), folder.c_str(), branding);
    }
    std::string folder = tempFolder("branding"), program = folder + "\\SETUP.EXE", logo = folder + "\\branding.bmp";
    CBranding branding;
};
}  // namespace

TEST_F(Branding, FieldsAndLogo)
{
    ASSERT_EQ(1, read(filler(5000) + trailer(std::string("Part\0ner", 8)) + filler(100)));
    EXPECT_EQ(1201, branding.partnerIdA);
    EXPECT_EQ(7, branding.partnerIdB);
    EXPECT_EQ("Part", branding.label) << "a text ends at its first zero byte";
    EXPECT_EQ("http://p.example/", branding.linkUrl);
    EXPECT_EQ(99, branding.extra);
    EXPECT_EQ(13, branding.bitmapSize);
    EXPECT_EQ(logo, branding.bitmapPath);
    EXPECT_EQ("BM logo bytes", readFile(logo));

    const std::string link = "http://p.example/" + std::string(2000, 'k');
    ASSERT_EQ(1, read(filler(5000) + trailer(std::string(300, 'L'), link)));
    EXPECT_EQ(std::string(255, 'L'), branding.label) << "longer texts are cut, the fields behind them found";
    EXPECT_EQ(link.substr(0, 1023), branding.linkUrl);
    EXPECT_EQ("BM logo bytes", readFile(logo));

    ASSERT_EQ(1, read(filler(5000) + trailer("", "", "")));
    EXPECT_EQ("", branding.label);
    EXPECT_EQ("", branding.linkUrl);
    EXPECT_EQ(0, branding.bitmapSize);
    EXPECT_EQ("", branding.bitmapPath);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(logo.c_str())) << "no logo, no file";
}

TEST_F(Branding, WhereTheMarkerMayStand)
{
    const std::string block = trailer();
    EXPECT_EQ(1, read(filler(5000) + block + filler(4096))) << "marker ending 4,096 bytes before the end";
    EXPECT_EQ(0, read(filler(5000) + block + filler(4097))) << "marker ending 4,097 bytes before the end";
    EXPECT_EQ(1, read(block + filler(4096 - block.size()))) << "a file of exactly 4,096 bytes, block at its start";
    EXPECT_EQ(0, read(block + filler(4095 - block.size()))) << "a file under 4,096 bytes has no trailer";

    EXPECT_EQ(1, read(filler(5000) + block + filler(10) + trailer("", "", "", -1, -1, -1, 5)));
    EXPECT_EQ(5, branding.partnerIdA) << "the marker nearest the end counts";
    EXPECT_EQ(0, branding.bitmapSize);
    // Marker bytes behind the real trailer count too, and their "trailer" does not fit.
    EXPECT_EQ(0, read(filler(5000) + block + "--tvd--"));
}

TEST_F(Branding, LengthsThatDoNotFitMakeAPlainRun)
{
    const size_t block = trailer().size();
    const struct {
        std::string file;
        const char* what;
    } cases[] = {
        {filler(100) + trailer("P", "l", "b", -1, -1, 5000), "block longer than the file"},
        {filler(5000) + trailer("", "", "", -1, -1, 30), "block shorter than its fixed words"},
        {filler(5000) + trailer("P", "l", "b", -1, -1, block - 1), "block one byte short"},
        {filler(5000) + trailer("P", "l", "b", 0xFFFFFFFF), "label length -1"},
        {filler(5000) + trailer("P", "l", "b", 0x80000000), "label length -2^31"},
        {filler(5000) + trailer("P", "l", "b", 500), "label beyond the block"},
        {filler(5000) + trailer("P", "l", "b", -1, 0xFFFFFFF0), "logo size -16"},
        {filler(5000) + trailer("P", "l", "logo", -1, 200), "logo cut short"},
        {filler(5000) + trailer().substr(0, block - 20), "file ending inside the logo"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(0, read(c.file)) << c.what;
        EXPECT_EQ("", branding.linkUrl) << c.what;
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(logo.c_str())) << c.what;
    }
    EXPECT_EQ(0, readBrandingTrailer((folder + "\\missing.exe").c_str(), folder.c_str(), branding));
}
