// The helpers' oddities and refusals, byte by byte: what is written, and what is left alone.
// fuzz/container/text.cc holds them to models.
#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>
#include <string.h>

#include <string>

namespace {

// Literals with the zero bytes inside them; the terminator of the literal is not part of it.
template <size_t kSize>
std::string bytes(const char (&literal)[kSize]) {
  return std::string(literal, kSize - 1);
}

TEST(Text, Trim) {
  struct Row {
    std::string before, after;
  };
  const Row rows[] = {
      {bytes("ab\t\n\0"), bytes("ab\0\n\0")},
      {bytes("  ab\0"), bytes("ab\0b\0")},
      {bytes("   a b\0"), bytes("a b\0 b\0")},
      // Too little white space in front of the text: callers depend on the empty result.
      {bytes(" abc\0"), bytes("\0\0\0\0\0")},
      {bytes("  abc  \0"), bytes("\0\0\0\0c  \0")},
      {bytes("\f\v ab\0"), bytes("\f\v ab\0")},
      {bytes("\xA0 \0"), bytes("\xA0\0\0")},
  };
  for (const Row& row : rows) {
    std::string image = row.before;
    PLX_trim(&image[0]);
    EXPECT_EQ(row.after, image) << row.before;
  }
  PLX_trim(nullptr);
}

TEST(Text, RemoveSpecifiedCharacter) {
  std::string image(8, '.');
  PLX_RemoveSpecifiedCharacter("a,b,,c,", &image[0], ',');
  EXPECT_EQ("abc.....", image);
  PLX_RemoveSpecifiedCharacter("\xFFq\xFF", &image[0], '\xFF');
  EXPECT_EQ("qbc.....", image);
  PLX_RemoveSpecifiedCharacter("", &image[0], 'q');
  PLX_RemoveSpecifiedCharacter(nullptr, &image[0], 'q');
  PLX_RemoveSpecifiedCharacter("q", nullptr, 'x');
  EXPECT_EQ("qbc.....", image);
}

TEST(Text, GetStrValue) {
  struct Row {
    const char* text;
    const char* key;
    unsigned int size;
    std::string image;  // of 8 bytes that were dots
  };
  const Row rows[] = {
      {"name=\"box\",id=7", "name", 8, bytes("box....\0")},
      {"name=\"box\",id=7", "id", 8, bytes("\0.......")},  // no comma: callers depend on it
      {"id= \t\r\n==7 8,9", "id", 8, bytes("7 8....\0")},
      {"id \"a,b\"", "id", 8, bytes("a,b....\0")},
      {"idle=1,id=2,", "id", 8, bytes("le=1...\0")},  // inside a longer word, and the first one
      {"ID=1,", "id", 8, bytes("\0.......")},
      {"a,", "", 8, bytes("a......\0")},
      {"id=abcdefghij,", "id", 4, bytes("abc\0....")},
      {"id=abc,", "id", 0, bytes("........")},
      {nullptr, "id", 8, bytes("........")},
      {"id=1,", nullptr, 8, bytes("........")},
  };
  for (const Row& row : rows) {
    std::string image(8, '.');
    PLX_getStrValue(row.text, row.key, &image[0], row.size);
    EXPECT_EQ(row.image, image) << (row.text != nullptr ? row.text : "null");
  }
  PLX_getStrValue("id=1,", "id", nullptr, 8);
}

TEST(Text, GetFirstString) {
  struct Row {
    std::string text;
    int length, size;
    std::string image;  // of 8 bytes that were dots
  };
  const Row rows[] = {
      {"  hello world", 13, 4, bytes("hel\0....")},
      {"  hello world", 4, 8, bytes("he\0.....")},
      {"  hello world", 2, 8, bytes("........")},
      {"hello", 5, 1, bytes("........")},
      {"hello", 5, INT_MIN, bytes("........")},
      {"hello", INT_MIN, 8, bytes("........")},
      {"\t\n\f\r\b a\vb\b", 10, 8, bytes("a\vb\0....")},
      {bytes(" \0b c"), 5, INT_MAX, bytes("\0b\0.....")},  // a zero byte is part of a word
  };
  for (const Row& row : rows) {
    std::string image(8, '.');
    EXPECT_EQ(&image[0], PLX_getFirstString(row.text.data(), row.length, &image[0], row.size));
    EXPECT_EQ(row.image, image) << row.text << " " << row.length << " " << row.size;
  }
  char out[4];
  EXPECT_EQ(nullptr, PLX_getFirstString(nullptr, 4, out, 4));
  EXPECT_EQ(nullptr, PLX_getFirstString("a", 1, nullptr, 4));
}

TEST(Text, RemoveCharacter) {
  struct Row {
    const char* src;
    int ch;
    unsigned int size;
    std::string before, after;
  };
  const Row rows[] = {
      {"a,b,c", ',', 8, bytes("\0......."), bytes("abc\0....")},
      {"a,b,c", ',', 8, bytes("xy\0....."), bytes("xyabc\0..")},  // appended
      {"abc", 'x', 8, bytes("xy\0....."), bytes("abc\0....")},    // copied over
      {"abc", 0, 8, bytes("xy\0....."), bytes("abc\0....")},
      {"abc", 0x100, 8, bytes("xy\0....."), bytes("abc\0....")},
      {"a,b", 0x100 + ',', 8, bytes("\0......."), bytes("ab\0.....")},
      {"\xFF"
       "a",
       0xFF, 8, bytes("\0......."), bytes("a\0......")},
      {"\xFF"
       "a",
       -1, 8, bytes("\0......."), bytes("a\0......")},
      // What does not fit empties the text, and the next piece is appended to that.
      {"abcd,e", ',', 3, bytes("\0......."), bytes("e\0c.....")},
      {"a,b,cd", ',', 3, bytes("\0......."), bytes("\0bc.....")},
  };
  for (const Row& row : rows) {
    std::string image = row.before;
    EXPECT_EQ(0, removeCharacter(row.src, &image[0], row.size, row.ch));
    EXPECT_EQ(row.after, image) << row.src << " " << row.ch;
  }
  char out[2];
  EXPECT_EQ(-1, removeCharacter(nullptr, out, 2, 'a'));
  EXPECT_EQ(-1, removeCharacter("a", nullptr, 2, 'a'));
  EXPECT_EQ(-1, removeCharacter("a", out, 0, 'a'));
}

TEST(Text, FindIgnoringCase) {
  struct Row {
    const char* haystack;
    const char* needle;
    int at;  // -1: not there
  };
  const Row rows[] = {
      {"HeLLo World", "WORLD", 6}, {"hello", "", 0},     {"", "", 0},         {"", "a", -1},
      {"ab", "abc", -1},           {"aaab", "AAB", 1},   {"abcab", "CAB", 2}, {"abc", "abd", -1},
      {"ab@", "AB`", -1},          {"\xC4", "\xE4", -1}, {"x[Z{", "[z{", 1},  {"aAb", "B", 2}};
  for (const Row& row : rows) {
    EXPECT_EQ(row.at < 0 ? nullptr : row.haystack + row.at, strstrcase(row.haystack, row.needle))
        << row.haystack << " " << row.needle;
  }
  EXPECT_EQ(nullptr, strstrcase(nullptr, "a"));
  EXPECT_EQ(nullptr, strstrcase("a", nullptr));
}

}  // namespace
