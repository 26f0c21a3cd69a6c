// The test program's entry. Started as "--read-cookie URL NAME" by a test, it
// is that test's later process: it prints what the cookie store holds.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "account/CookieStore.h"

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--read-cookie") == 0) {
        DWORD size = 0;
        readCookie(argv[2], argv[3], nullptr, size);
        std::vector<char> text(size + 1, 0);
        if (size == 0 || !readCookie(argv[2], argv[3], text.data(), size)) return 1;
        std::printf("%s", text.data());
        return 0;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
