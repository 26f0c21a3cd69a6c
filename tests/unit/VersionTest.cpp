#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "analysis/Versions.h"

TEST(Versions, ParseTakesFourSignedFields)
{
    const struct { const char* text; int a, b, c, d; } cases[] = {
        {"5.00.2314.1003", 5, 0, 2314, 1003},
        {"1, 0, 0, 7", 1, 0, 0, 7},
        {"2314a", 2314, 0, 0, 0},
        {"1.2", 1, 2, 0, 0},
        {"1.2.3.4.5", 1, 2, 3, 4},
        {"..1,,.2", 1, 2, 0, 0},
        {"-1.+2. -3", -1, 2, -3, 0},
        {"a.5", 0, 5, 0, 0},
        {"", 0, 0, 0, 0},
        {"4294967297.-4294967297", INT_MAX, INT_MIN, 0, 0},  // no wrap beyond 32 bits
    };
    for (const auto& c : cases) {
        const CVersion v = parseVersion(c.text);
        EXPECT_EQ((std::vector<int>{c.a, c.b, c.c, c.d}), std::vector<int>(v.field, v.field + 4)) << c.text;
    }
}

TEST(Versions, CompareFieldByFieldAsNumbers)
{
    const struct { const char* a; const char* b; int result; } cases[] = {
        {"1.0.0.7", "1.0.0.10", -1},  // numbers, not text
        {"2", "1.9.9.9", 1},
        {"1.0", "1, 0, 0, 0", 0},
        {"5.00.2314", "5.0.2314.0", 0},
        {"-1", "0", -1},
        {"2147483647", "-1", 1},
        {"1.2.3.4.9", "1.2.3.4.1", 0},
        {"1.3", "1.2.99", 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.result, compareVersions(c.a, c.b)) << c.a << " vs " << c.b;
        EXPECT_EQ(-c.result, compareVersions(c.b, c.a)) << c.b << " vs " << c.a;
    }
}
