#include <gtest/gtest.h>
#include "TextBuffer.h"
TEST(TextBuffer, Grows) { CTextBuffer b; EXPECT_TRUE(b.appendText("x")); }
