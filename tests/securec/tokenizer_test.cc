#include <errno.h>
#include <gtest/gtest.h>
#include <plx/securec.h>

#include "support/standard_input.h"

namespace {

// fuzz/fuzz_securec.cc holds tokens of both widths, and lines, to models.
TEST(Tokenizer, NullArgumentsChangeNothing) {
  char text[] = "a,b";
  char* context = text;
  EXPECT_EQ(nullptr, strtok_s(text, nullptr, &context));
  EXPECT_EQ(nullptr, strtok_s(text, ",", nullptr));
  EXPECT_EQ(text, context);
  context = nullptr;
  EXPECT_EQ(nullptr, strtok_s(nullptr, ",", &context));
  EXPECT_EQ(nullptr, context);
  wchar_t* wide_context = nullptr;
  EXPECT_EQ(nullptr, wcstok_s(nullptr, L",", &wide_context));
  EXPECT_STREQ("a,b", text);
  EXPECT_STREQ("a", strtok_s(text, ",", &context));
  EXPECT_EQ(text + 2, context);
}

TEST(Line, StripsTheEndAndLeavesTheRestUnread) {
  plx_test::StandardInput input("line\r\n\nabcdef\nz\r\r\n");
  char buffer[16];
  EXPECT_EQ(nullptr, gets_s(nullptr, 16));
  EXPECT_EQ(nullptr, gets_s(buffer, 0));
  EXPECT_EQ(nullptr, gets_s(buffer, -1));
  const char* expected[] = {"line", "", "abc", "def", "z"};
  const int sizes[] = {16, 16, 4, 16, 16};
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(buffer, gets_s(buffer, sizes[i]));
    EXPECT_STREQ(expected[i], buffer);
  }
  EXPECT_EQ(nullptr, gets_s(buffer, 16));
  plx_test::StandardInput folder(fopen("/", "r"));
  errno = 77;
  EXPECT_EQ(nullptr, gets_s(buffer, 16));
  EXPECT_EQ(77, errno);
}

}  // namespace
