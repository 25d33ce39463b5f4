// What each directive reads, stores and leaves unread. Every row runs in both widths, from a
// string, a file, a stream without position and standard input, for the engine must not know the
// difference.
#include <gtest/gtest.h>
#include <limits.h>

#include "securec/input/platform_faults.h"
#include "securec/input/scan.h"

using namespace plx_test;

namespace {

struct Row {
  const char* text;
  const char* format;
  const char* destinations;
  const char* expected;  // result and images
  const char* rest;      // what a stream still holds
};

const Row kDirectives[] = {
    {"12 34", "%d %n%d%n", "i4 i4 i4 i4", "2 12|3|34|5", ""},
    {"  a", " a", "", "0 ", ""},
    {" a", "a", "", "0 ", " a"},
    {"5 %6", "%d%%%d", "i4 i4", "1 5|.", " %6"},  // no white space is skipped for a literal
    {"5%6", "%d%%%d", "i4 i4", "2 5|6", ""},
    {"5 ", "%*d %d", "i4", "-1 .", ""},  // the input ends with nothing assigned
    {"5", "%*d%[a]", "s2", "-1 ..", ""},
    {"ab", "abc", "", "-1 ", ""},
    {"5", "%*d %n", "i4", "0 1", ""},  // all directives are done
    {"x", "%*n%n%c", "i4 s1", "1 0|x", ""},
    // What ends a scan by itself.
    {"12 ab", "%d%", "i4", "1 12", " ab"},
    {"12 ab", "%d %{a}", "i4 s5", "1 12|.....", "ab"},
    {"12 ab", "%d %k", "i4 i4", "1 12|.", "ab"},
    {"12 ab", "%d %[ab", "i4 s5", "1 12|.....", "ab"},
    {"12 ab", "%d %[^]", "i4 s5", "1 12|.....", "ab"},
    {"12 34", "%d%d", "i4 0", "-1 12", "34"},
    {"12 34", "%d%2d", "i4 0", "-1 12", "34"},
    {"12 34", "%d%n", "i4 0", "-1 12", " 34"},
    {"12 ab", "%d%s", "i4 0=0", "-1 12", "ab"},  // null is seen before the size
    {"12 ab", "%d%ls", "i4 0=0", "-1 12", "ab"},
    {"12 1.5", "%d%f", "i4 0", "-1 12", "1.5"},
    {"12", "%d%s", "i4 0=5", "1 12", ""},  // the end of the input is seen before null
};

const Row kTexts[] = {
    {"hello", "%s", "s6", "1 hello_", ""},
    {" \t\n\v\f\rab cd", "%s%s", "s3 s3", "2 ab_|cd_", ""},
    {"hello", "%s", "s5", "0 _ell.", "o"},  // no room for the terminator
    {"hello", "%3s", "s3", "0 _e.", "llo"},
    {"1 hello", "%d%s", "i4 s1", "1 1|_", "hello"},
    {"hello", "%*3s%s", "s5", "1 lo_..", ""},
    {"hello", "%ls", "w6", "1 hello_", ""},
    {"hello", "%S", "w5", "0 _ell.", "o"},
    {"hello", "%2ws%lls", "w6 w6", "2 he_...|llo_..", ""},
    {"hello", "%2llhs%lls", "s3 w4", "2 he_|llo_", ""},
    {"hello", "%1hS%1hs%Ls", "s2 s2 s4", "3 h_|e_|llo_", ""},
    // Sizes at their limits are seen before any text is stored.
    {"hello", "%s", "s1=0", "0 _", "hello"},
    {"hello", "%lc", "w1=0", "0 _", "hello"},
    {"hello", "%s", "s8=0x7fffffff", "1 hello_..", ""},
    {"hello", "%s", "s8=0x80000000", "0 ........", "hello"},
    {"hello", "%ls", "w8=0x1fffffff", "1 hello_..", ""},
    {"hello", "%C", "w8=0x20000000", "0 ........", "hello"},
    // Characters are not terminated.
    {"abcd", "%2c%c", "s2 s2", "2 ab|c.", "d"},
    {"abc", "%3c", "s2", "0 _b", "c"},
    {"abc", "%5c", "s6", "1 abc...", ""},
    {" abcd", "%0c%2lc%C%hC", "s1 w2 w1 s1", "4  |ab|c|d", ""},
    // Sets.
    {"z-ab", "%[z-a]", "s8", "1 z-a_....", "b"},  // reversed: the ends and the '-'
    {"y", "%[z-a]", "s8", "0 ........", "y"},
    {"a-", "%[a-a]", "s8", "1 a_......", "-"},
    {"A-B", "%[A-]", "s8", "1 A-_.....", "B"},
    {"-a`", "%[-a]", "s8", "1 -a_.....", "`"},
    {"]-a^", "%[]a-]%[^]a]", "s8 s8", "2 ]-a_....|^_......", ""},
    {"abcde-", "%[a-c-e]", "s8", "1 abcde_..", "-"},
    {"b1", "%*[a]%d", "i4", "0 .", "b1"},  // nothing matched, although nothing is stored
    {"aab", "%*[a]%c", "s1", "1 b", ""},
    {"abc", "%[a-z]", "s3", "0 _b.", "c"},
    {"abc", "%l[a-b]", "w3", "1 ab_", "c"},
};

const Row kNumbers[] = {
    {"x", "%d", "i4", "0 .", "x"},
    {"1 -", "%d%d", "i4 i4", "1 1|.", ""},
    {"+7 -+7", "%d%d", "i4 i4", "1 7|.", "+7"},
    {"0xg", "%x", "i4", "0 .", "g"},  // "0x" is no number
    {"0x12", "%2i", "i4", "0 .", "12"},
    {"12345", "%0d", "i4", "1 12345", ""},  // no width
    {"12345", "%00002d", "i4", "1 12", "345"},
    {"12345 67", "%99999999999999999999d%18446744073709551617d", "i4 i4", "2 12345|67", ""},
    {"-5", "%1d", "i4", "0 .", "5"},
    {"-5", "%1x", "i4", "0 .", "5"},
    {"12345678901234567", "%lld", "i8", "1 12345678901234567", ""},
    {"1234567890abcdef1", "%llx", "i8", "1 -1", ""},
    {"7 8 9 17", "%D%I%*U%O", "i4 i4 i4", "3 7|8|15", ""},
    {"10 0x10", "%p%hP", "ip ip", "2 16|16", ""},
    // Sizes: what does not fit is cut.
    {"-200 70000 5 6", "%hhd%hd%hhhd%hld", "i1 i2 i1 i4", "4 56|4464|5|6", ""},
    {"-1 -2 -3 -4", "%Ld%jd%qd%I64d", "i8 i8 i8 i8", "4 -1|-2|-3|-4", ""},
    {"5 6 7 8", "%wd%I32d%lI32d%I64I32d", "i4 i4 i4 i4", "4 5|6|7|8", ""},
    {"-5 6 7 10 9 a", "%Id%Ii%Iu%Io%Ix%IX", "ip ip ip ip ip ip", "6 -5|6|7|8|9|10", ""},
    {"7 8s", "%lld%Is%n", "i8 i4 i4", "2 7|8|4", ""},  // the letter i
    {"5 6 7", "%Fd%Nd%FNFhd", "i4 i4 i2", "3 5|6|7", ""},
    {"abcd", "%*2c%hhn%hn%ln%lln%n", "i1 i2 il i8 i4", "0 2|2|2|2|2", "cd"},
    // Floating point.
    {"1.5 -2.25 +3", "%f%lf%Lf", "f d D", "3 1.5|-2.25|3", ""},
    {"1 2 3", "%qe%jG%llE", "D D D", "3 1|2|3", ""},
    {"1 2 3 4", "%hf%hhf%tf%zf", "f f d d", "4 1|2|3|4", ""},
    {"0.1 0.1", "%f%Lf", "f D", "2 0.100000001|0.10000000000000000555", ""},
    {"1e 2e+x", "%f%f", "f f", "2 1|2", "x"},  // an exponent may lack its digits
    {".e1", "%f", "f", "0 .", "e1"},
    {"-inf", "%f", "f", "0 .", "inf"},
    {"nan", "%f", "f", "0 .", "nan"},
    {"0x1p3", "%f", "f", "1 0", "x1p3"},
    {"3.512e45", "%3f%3f%d", "f f i4", "3 3.5|12|45", ""},
    {"-0 1e999 1e39", "%lf%lf%f", "d d f", "3 -0|inf|inf", ""},
    {"1.5 x", "%F %c", "f s1", "2 1.5|x", ""},  // the letter: no modifier or letter behind it
    {"1.5 2x", "%FF%*N%N%Fx", "f i4 i4", "2 1.5|3|2", "x"},
};

template <typename Char>
class Rows : public testing::Test {
 protected:
  template <size_t kCount>
  static void run(const Row (&rows)[kCount]) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(row.text) + " by " + row.format);
      EXPECT_EQ(row.expected, scan_string<Char>(row.text, row.format, row.destinations));
      EXPECT_EQ(row.expected, scan_list<Char>(row.text, row.format, row.destinations));
      for (const bool seeks : {true, false}) {
        StandardInput input(bytes_of<Char>(row.text));
        ftell_fails = !seeks;
        EXPECT_EQ(row.expected, scan_file<Char>(stdin, row.format, row.destinations));
        ftell_fails = false;
        EXPECT_EQ(bytes_of<Char>(row.rest), read_all(stdin)) << "file, seeks: " << seeks;
      }
      StandardInput input(std::string(row.text));
      EXPECT_EQ(row.expected, scan_standard_input<Char>(row.format, row.destinations));
      for (const char* rest = row.rest; *rest != 0; ++rest) EXPECT_EQ(*rest, next_character());
      EXPECT_EQ(-1, next_character());
    }
  }
  static int next_character() {
    return sizeof(Char) == 1 ? fgetc(stdin) : static_cast<int>(fgetwc(stdin));
  }
};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Rows, Widths);

TYPED_TEST(Rows, Directives) { this->run(kDirectives); }
TYPED_TEST(Rows, Texts) { this->run(kTexts); }
TYPED_TEST(Rows, Numbers) { this->run(kNumbers); }

// An empty text empties the destination of the first conversion, if that assigns text.
TYPED_TEST(Rows, EmptyText) {
  const char* cleared[] = {"%s", "x %5s", "%c", "%[a]", "%[]a]", "%[^]a]", "%h5ls", "%lhs"};
  for (const char* format : cleared) {
    EXPECT_EQ("-1 _..", scan_string<TypeParam>("", format, "s3")) << format;
  }
  const char* untouched[] = {"%[a",  "%[]",  "%[^]", "%{a}", "%*s",  "%Ls",
                             "%d%s", "%%%s", "%",    "x",    "%da]", ""};
  for (const char* format : untouched) {
    EXPECT_EQ("-1 ...", scan_string<TypeParam>("", format, "s3")) << format;
  }
  // A size counts characters elsewhere, but must be 4 here for a whole one to be cleared.
  const char* rows[][3] = {{"%s", "0=3", "-1 "},
                           {"%s", "s1=0", "-1 ."},
                           {"%s", "s1=0x7fffffff", "-1 _"},
                           {"%s", "s1=0x80000000", "-1 ."},
                           {"%ls", "w4", "-1 _..."},
                           {"%S", "w4", "-1 _..."},
                           {"%5wC", "w4", "-1 _..."},
                           {"%hS", "w4", "-1 <a5a5a500>..."},
                           {"%ls", "w3", "-1 <a5a5a500>.."},
                           {"%l[a]", "w1", "-1 <a5a5a500>"}};
  for (const auto& row : rows) {
    EXPECT_EQ(row[2], scan_string<TypeParam>("", row[0], row[1]));
    for (const bool all : {true, false})
      EXPECT_EQ(row[2], scan_list<TypeParam>("", row[0], row[1], all));
  }
}

TYPED_TEST(Rows, NullArguments) {
  const TypeParam text[] = {'1', 0}, *const null = nullptr;
  EXPECT_EQ(-1, Scan<TypeParam>::kString(text, null));
  EXPECT_EQ(-1, Scan<TypeParam>::kString(null, text));
  EXPECT_EQ(-1, Scan<TypeParam>::kFile(nullptr, text));
  EXPECT_EQ(-1, Scan<TypeParam>::kFile(stdin, null));
  EXPECT_EQ(-1, Scan<TypeParam>::kStandardInput(null));
}

// The length of a string must be an int. One block of memory is mapped again and again.
TEST(LongText, IsRefused) {
  if (sizeof(void*) == 4) GTEST_SKIP() << "no such string fits";
  constexpr size_t kBlock = 1 << 24, kBlocks = 129;
  FILE* file = file_of(std::string(kBlock, 'a'));
  char* text = static_cast<char*>(mmap(nullptr, kBlock * kBlocks, PROT_NONE,
                                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  for (size_t i = 0; i < kBlocks; ++i) {
    ASSERT_NE(MAP_FAILED, mmap(text + i * kBlock, kBlock, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_FIXED, fileno(file), 0));
  }
  text[size_t{INT_MAX} + 1] = 0;
  EXPECT_EQ("-1 .", Destinations("s1").call(sscanf_s, text, "%c"));
  text[INT_MAX] = 0;
  EXPECT_EQ("1 a", Destinations("s1").call(sscanf_s, text, "%c"));
  munmap(text, kBlock * kBlocks);
  fclose(file);
}

}  // namespace
