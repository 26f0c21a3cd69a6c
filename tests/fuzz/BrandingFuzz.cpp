// Partner trailers made as the stamping tool makes them, then damaged: each
// read gives either a branding that agrees with the bytes of the file or no
// trailer at all, and a logo file only when the whole logo is there.
#include <gtest/gtest.h>

#include <cstring>

#include "Fuzz.h"
#include "description/Branding.h"

namespace {
uint32_t wordAt(const std::string& file, uint64_t at)
{
    const unsigned char* p = reinterpret_cast<const unsigned char*>(file.data() + at);
    return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

// The trailer as the format describes it, read from the bytes in memory: true
// and the fields when every length fits the block, which fits the file.
bool decode(const std::string& file, CBranding& out, std::string& logo)
{
    if (file.size() < brandingSearchSpan) return false;
    uint64_t end = 0;
    for (uint64_t e = file.size(); e + brandingSearchSpan >= file.size() && e >= 3; --e)
        if (file.compare(e - 3, 3, "tvd") == 0) {
            end = e;
            break;
        }
    if (end < 7) return false;
    uint64_t length = wordAt(file, end - 7), at = end - length, limit = end - 7;
    if (length > end || length < 31) return false;
    auto take = [&](uint64_t count) {
        bool fits = count <= limit - at;
        at += fits ? count : 0;
        return fits;
    };
    auto text = [&](std::string& field, size_t keep) {
        if (!take(4)) return false;
        uint32_t n = wordAt(file, at - 4);
        if (!take(n)) return false;
        field = std::string(file.c_str() + at - n, n < keep ? n : keep).c_str();
        return true;
    };
    CBranding b;
    if (!take(8) || !text(b.label, brandingLabelLimit) || !text(b.linkUrl, brandingLinkLimit) || !take(8)) return false;
    b.partnerIdA = static_cast<int>(wordAt(file, end - length));
    b.partnerIdB = static_cast<int>(wordAt(file, end - length + 4));
    b.extra = static_cast<int>(wordAt(file, at - 8));
    uint32_t size = wordAt(file, at - 4);
    if (size > 0x7FFFFFFF || !take(size)) return false;
    b.bitmapSize = static_cast<int>(size);
    b.present = 1;
    logo = file.substr(at - size, size);
    out = b;
    return true;
}
}  // namespace

TEST(Fuzz, BrandingTrailers)
{
    const std::string folder = fuzzFolder("brand"), program = folder + "\\SETUP.EXE",
                      logoPath = folder + "\\" + brandingLogoName;
    const std::vector<std::string> tokens = {"tvd", "tvdtvd", "BM", std::string(4, '\xFF'), std::string(4, '\0')};
    int outcomes[2] = {0, 0};
    runCases("branding", 3000, [&](CFuzzRandom& random) {
        const std::string label = random.text(random.length(300)), link = "http://" + random.text(random.length(1100)),
                          logo = "BM" + random.bytes(random.percent(20) ? 0 : random.length(20000));
        std::string fields = word32(static_cast<uint32_t>(random.next())) + word32(static_cast<uint32_t>(random.next())) +
                             word32(label.size()) + label + word32(link.size()) + link + word32(7) +
                             word32(random.percent(10) ? 0 : logo.size()) + (random.percent(10) ? "" : logo) +
                             random.bytes(random.below(16));
        std::string block = fields + word32(fields.size() + 7) + "tvd";
        const size_t start = random.percent(10) ? random.below(4096) : 4096 + random.below(3000);
        std::string file = random.bytes(start) + block + random.bytes(random.percent(50) ? 0 : random.length(4200));
        switch (random.below(4)) {
        case 0: break;
        case 1: {  // a length word of the block set to an odd value
            const size_t words[] = {8, 12 + label.size(), 20 + label.size() + link.size(), block.size() - 7};
            const size_t at = start + words[random.below(4)];
            const uint32_t real = wordAt(file, at);
            const uint32_t odd[] = {real + 1, real - 1, 0xFFFFFFFFu, 0x80000000u, static_cast<uint32_t>(file.size()),
                                    static_cast<uint32_t>(random.next())};
            file.replace(at, 4, word32(odd[random.below(6)]));
            break;
        }
        case 2: file.resize(random.below(file.size() + 1)); break;  // a file cut short
        default: file = random.mutate(file, tokens, 1 + static_cast<int>(random.below(6)), 1 << 20);
        }
        ASSERT_TRUE(writeBytes(program, file));
        DeleteFileA(logoPath.c_str());

        CBranding read, expected;
        std::string expectedLogo;
        bool present = decode(file, expected, expectedLogo);
        ++outcomes[present];
        EXPECT_EQ(present ? 1 : 0, readBrandingTrailer(program.c_str(), folder.c_str(), read));
        EXPECT_EQ(expected.present, read.present);
        EXPECT_EQ(expected.partnerIdA, read.partnerIdA);
        EXPECT_EQ(expected.partnerIdB, read.partnerIdB);
        EXPECT_EQ(expected.label, read.label);
        EXPECT_EQ(expected.linkUrl, read.linkUrl);
        EXPECT_EQ(expected.extra, read.extra);
        EXPECT_EQ(expected.bitmapSize, read.bitmapSize);
        std::string written;
        bool hasLogo = readBytes(logoPath, written);
        EXPECT_EQ(present && !expectedLogo.empty(), hasLogo);
        EXPECT_EQ(hasLogo ? logoPath : "", read.bitmapPath);
        EXPECT_TRUE(!hasLogo || written == expectedLogo) << "the logo, whole";
    });
    // The generator reaches both outcomes, each often.
    EXPECT_GT(outcomes[0], 300);
    EXPECT_GT(outcomes[1], 300);
    DeleteFileA(program.c_str());
    DeleteFileA(logoPath.c_str());
    RemoveDirectoryA(folder.c_str());
}
