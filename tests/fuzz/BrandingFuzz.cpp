// Partner trailers as the stamping tool writes them, then damaged: each read gives a branding
// that agrees with the bytes of the file or none, and a logo file only when all of it is there.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <tuple>

#include "Fuzz.h"
#include "description/Branding.h"

namespace {
uint32_t wordAt(const std::string& file, uint64_t at)
{
    uint32_t word;  // the host is little-endian as the file
    return std::memcpy(&word, file.data() + at, 4), word;
}

// The trailer by the layout of Branding.h: the fields when every length fits the block (up to its
// length word, included) and the block the file; the smallest block holds 31 bytes.
bool decode(const std::string& file, CBranding& out, std::string& logo)
{
    if (file.size() < brandingSearchSpan) return false;
    uint64_t end = 0;
    for (uint64_t e = file.size(); !end && e + brandingSearchSpan >= file.size() && e >= 3; --e)
        if (file.compare(e - 3, 3, "tvd") == 0) end = e;
    if (end < 7) return false;
    uint64_t length = wordAt(file, end - 7), at = end - length;
    if (length > end || length < 31) return false;
    auto take = [&](uint64_t count) { return count <= end - 7 - at ? (at += count, true) : false; };
    auto text = [&](std::string& field, size_t keep) {
        const uint32_t n = take(4) ? wordAt(file, at - 4) : UINT32_MAX;  // a count that never fits
        return take(n) && (field = std::string(file.c_str() + at - n, std::min<size_t>(n, keep)).c_str(), true);
    };
    CBranding b;
    if (!take(8) || !text(b.label, brandingLabelLimit) || !text(b.linkUrl, brandingLinkLimit) || !take(8)) return false;
    b.partnerIdA = static_cast<int>(wordAt(file, end - length)),
    b.partnerIdB = static_cast<int>(wordAt(file, end - length + 4));
    b.extra = static_cast<int>(wordAt(file, at - 8)), b.bitmapSize = static_cast<int>(wordAt(file, at - 4)),
    b.present = 1;
    if (b.bitmapSize < 0 || !take(static_cast<uint32_t>(b.bitmapSize))) return false;
    return logo = file.substr(at - b.bitmapSize, b.bitmapSize), out = b, true;
}
}  // namespace

TEST(Fuzz, BrandingTrailers)
{
    const std::string folder = fuzzFolder("brand"), program = folder + "\\SETUP.EXE",
                      logoPath = folder + "\\" + brandingLogoName;
    int outcomes[2] = {0, 0};
    runCases("branding", 3000, [&](CFuzzRandom& random) {
        const bool least = random.percent(5);  // the smallest block, 31 bytes: no texts, no logo
        const std::string label = least ? "" : random.text(random.length(300)),
                          link = least ? "" : "http://" + random.text(random.length(1100)),
                          logo = least || random.percent(10) ? "" : "BM" + random.bytes(random.length(20000));
        const std::string fields = random.bytes(8) + word32(label.size()) + label + word32(link.size()) + link +
                                   word32(7) + word32(random.percent(10) ? 0 : logo.size()) + logo +
                                   random.bytes(least ? 0 : random.below(16)),
                          block = fields + word32(fields.size() + 7) + "tvd";
        const size_t start = random.percent(10) ? random.below(4096) : 4096 + random.below(3000);
        std::string file = random.bytes(start) + block + random.bytes(random.percent(50) ? 0 : random.length(4200));
        if (random.percent(25)) {  // a length word set off by one or to an odd value
            const size_t at = start + std::vector<size_t>{8, 12 + label.size(), 20 + label.size() + link.size(),
                                                          block.size() - 7}[random.below(4)];
            const uint32_t odd[] = {wordAt(file, at) + 1, wordAt(file, at) - 1, UINT32_MAX, 0x80000000u,
                                    uint32_t(file.size())};
            file.replace(at, 4, word32(odd[random.below(5)]));
        } else if (random.percent(33)) {
            file.resize(random.below(file.size() + 1));  // cut short
        } else {
            file = random.mutate(file, {"tvd", "tvdtvd", "BM", std::string(4, '\xFF'), std::string(4, '\0')}, 50, 6);
        }
        ASSERT_TRUE(writeBytes(program, file));
        DeleteFileA(logoPath.c_str());

        CBranding read, expected;
        std::string decoded;
        const bool present = decode(file, expected, decoded);
        ++outcomes[present];
        EXPECT_EQ(present ? 1 : 0, readBrandingTrailer(program.c_str(), folder.c_str(), read));
        const auto summary = [](const CBranding& b) {
            return std::tie(b.present, b.partnerIdA, b.partnerIdB, b.label, b.linkUrl, b.extra, b.bitmapSize);
        };
        EXPECT_EQ(summary(expected), summary(read));
        std::ifstream logoFile(logoPath, std::ios::binary);  // only a whole logo, and named
        const std::string written((std::istreambuf_iterator<char>(logoFile)), std::istreambuf_iterator<char>());
        EXPECT_EQ(present && !decoded.empty() ? decoded : "none", logoFile.is_open() ? written : "none");
        EXPECT_EQ(logoFile.is_open() ? logoPath : "", read.bitmapPath);
    });
    EXPECT_GT(std::min(outcomes[0], outcomes[1]), 300);  // the generator reaches both outcomes, each often
    DeleteFileA(program.c_str()), DeleteFileA(logoPath.c_str()), RemoveDirectoryA(folder.c_str());
}
