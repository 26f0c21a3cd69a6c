// The test program's entry. Started by a test with a role as its first
// argument, it is that test's later process instead: one that reads the cookie
// store, or one that reports the time zone of its own environment.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "account/CookieStore.h"
#include "account/FormEncoding.h"

namespace {
int readCookieRole(const char* url, const char* name)
{
    DWORD size = 0;
    readCookie(url, name, nullptr, size);
    if (size == 0) return 1;
    std::vector<char> text(size + 1, 0);
    if (!readCookie(url, name, text.data(), size)) return 2;
    std::printf("%s", text.data());
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--read-cookie") == 0) return readCookieRole(argv[2], argv[3]);
    if (argc == 2 && std::strcmp(argv[1], "--time-zone") == 0) {
        std::printf("%s", currentTimeZone());
        return 0;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
