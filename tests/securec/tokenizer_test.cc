#include <gtest/gtest.h>
#include <plx/securec.h>

#include <string>

#include "support/standard_input.h"

namespace {

template <typename Char>
Char* tokenise(Char* str, const Char* delim, Char** context);
template <>
char* tokenise(char* str, const char* delim, char** context) {
  return strtok_s(str, delim, context);
}
template <>
wchar_t* tokenise(wchar_t* str, const wchar_t* delim, wchar_t** context) {
  return wcstok_s(str, delim, context);
}

// The tokens joined by '|', so that an empty token would show.
template <typename Char>
std::string tokens(const std::string& text, const std::string& delimiters) {
  std::basic_string<Char> copy(text.begin(), text.end());
  const std::basic_string<Char> delim(delimiters.begin(), delimiters.end());
  Char* context = nullptr;
  std::string joined;
  for (Char* token = tokenise(&copy[0], delim.c_str(), &context); token != nullptr;
       token = tokenise<Char>(nullptr, delim.c_str(), &context)) {
    const std::basic_string<Char> wide(token);
    joined += std::string(wide.begin(), wide.end()) + "|";
  }
  EXPECT_EQ(&copy[0] + copy.size(), context);
  return joined;
}

TEST(Tokenizer, SplitsAtRunsOfDelimiters) {
  struct Row {
    const char* text;
    const char* delimiters;
    const char* tokens;
  };
  const Row rows[] = {
      {",,a,,b", ",", "a|b|"}, {"a b\tc ", " \t", "a|b|c|"}, {"", ",", ""},
      {",,,", ",", ""},        {"a,b", "", "a,b|"},          {"a", ",", "a|"},
      {"a,", ",", "a|"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.tokens, tokens<char>(row.text, row.delimiters)) << row.text;
    EXPECT_EQ(row.tokens, tokens<wchar_t>(row.text, row.delimiters)) << row.text;
  }
}

TEST(Tokenizer, NullArgumentsChangeNothing) {
  char text[] = "a,b";
  char* context = text;
  EXPECT_EQ(nullptr, strtok_s(text, nullptr, &context));
  EXPECT_EQ(nullptr, strtok_s(text, ",", nullptr));
  EXPECT_EQ(text, context);
  context = nullptr;
  EXPECT_EQ(nullptr, strtok_s(nullptr, ",", &context));
  EXPECT_EQ(nullptr, context);
  EXPECT_STREQ("a,b", text);
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
}

}  // namespace
