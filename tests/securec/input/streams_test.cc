// Files, pipes and standard input: what is read, where the stream is left, what is passed over.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <langinfo.h>
#include <unistd.h>

#include "securec/input/platform_faults.h"
#include "securec/input/scan.h"

using namespace plx_test;

extern "C" {
long __real_ftell(FILE* file);
int __real_fseek(FILE* file, long offset, int whence);
char* __real_nl_langinfo(nl_item item);
size_t __real_mbrtowc(wchar_t* out, const char* in, size_t size, mbstate_t* state);
long __wrap_ftell(FILE* file) {
  if (!ftell_fails) return __real_ftell(file);
  errno = ESPIPE;
  return -1;
}
int __wrap_fseek(FILE* file, long offset, int whence) {
  if (fseeks_to_fail == 0) return __real_fseek(file, offset, whence);
  --fseeks_to_fail;
  errno = EIO;
  return -1;
}
const char* __wrap_nl_langinfo(nl_item item) {
  return decimal_point != nullptr ? decimal_point : __real_nl_langinfo(item);
}
size_t __wrap_mbrtowc(wchar_t* out, const char* in, size_t size, mbstate_t* state) {
  if (!bytes_are_latin) return __real_mbrtowc(out, in, size, state);
  *out = static_cast<unsigned char>(*in);
  return 1;
}
}

namespace {

template <typename Char>
class Streams : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Streams, Widths);

// Texts that end shortly before, at and behind the end of a chunk.
TYPED_TEST(Streams, ChunksCanEndAnywhere) {
  const size_t chunk = 1024 / sizeof(TypeParam);
  for (size_t i = 0; i < 16; ++i) {
    const size_t skipped = (i < 8 ? chunk : 2 * chunk) - 8 + i % 8;
    for (const bool seeks : {true, false}) {
      SCOPED_TRACE(std::to_string(skipped) + (seeks ? "" : " in a stream without position"));
      ftell_fails = !seeks;
      StandardInput input(bytes_of<TypeParam>(std::string(skipped, '.') + "aaaaa123x"));
      const std::string skip = "%*" + std::to_string(skipped) + "c";
      EXPECT_EQ("2 aaaaa_...|12|" + std::to_string(skipped + 7),
                scan_file<TypeParam>(stdin, skip + "%[a]%2d%n", "s9 i4 i4"));
      EXPECT_EQ(bytes_of<TypeParam>("3x"), read_all(stdin));
      ftell_fails = false;
    }
  }
}

// What an earlier chunk left in the buffer is not looked at behind the end of the last one.
TYPED_TEST(Streams, TheLastChunkEndsWhereTheFileDoes) {
  const struct {
    const char *text, *earlier, *format, *destinations, *expected;
  } rows[] = {{"-", "5", "%d", "i4", "0 ."},          {"-", "5", "%3d", "i4", "0 ."},
              {"-", "5", "%f", "f", "0 ."},           {"12", "3", "%d", "i4", "1 12"},
              {"12", "3", "%3d", "i4", "1 12"},       {"0", "x", "%x", "i4", "1 0"},
              {"0", "x", "%3i", "i4", "1 0"},         {"0", "7", "%i", "i4", "1 0"},
              {"1", "5", "%f", "f", "1 1"},           {"1", ".", "%f%c", "f s1", "1 1|."},
              {"1.", "5", "%f", "f", "1 1"},          {"1e", "2", "%f", "f", "1 1"},
              {"  ", " ", " %n", "i4", "0 1026"},     {"  ", " ", "%d", "i4", "-1 ."},
              {"  ", " ", "%3d", "i4", "-1 ."},       {"  ", " ", "%f", "f", "-1 ."},
              {"  ", " ", "%s", "s3", "-1 ..."},      {"ab", "b", "%s", "s5", "1 ab_.."},
              {"ab", "b", "%3c", "s5", "1 ab..."},    {"ab", "b", "%[ab]", "s5", "1 ab_.."},
              {"12", "3", "%x", "i4", "1 18"},        {"ab", "b", "%*sx", "", "-1 "},
              {"ab", "b", "%*[ab]%n", "i4", "0 1026"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " by " + row.format);
    StandardInput input(bytes_of<TypeParam>(std::string(1024, row.earlier[0]) + row.text));
    EXPECT_EQ(row.expected,
              scan_file<TypeParam>(stdin, std::string("%*1024c") + row.format, row.destinations));
    EXPECT_EQ("", read_all(stdin));
  }
}

TYPED_TEST(Streams, AreReadToTheEndCallByCall) {
  std::string text;
  for (int i = 0; i < 1500; ++i) text += std::to_string(i) + (i % 3 == 0 ? "\n" : " ");
  FILE* file = file_of(bytes_of<TypeParam>(text));
  StandardInput input(text);
  for (int i = 0; i < 1500; ++i) {
    const std::string expected = "1 " + std::to_string(i);
    ASSERT_EQ(expected, scan_file<TypeParam>(file, "%d", "i4"));
    ASSERT_EQ(expected, scan_standard_input<TypeParam>("%d", "i4"));
  }
  EXPECT_EQ(static_cast<long>((text.size() - 1) * sizeof(TypeParam)), ftell(file));
  EXPECT_FALSE(feof(file));
  EXPECT_EQ("-1 .", scan_file<TypeParam>(file, "%d", "i4"));
  EXPECT_TRUE(feof(file));
  fclose(file);
}

// What has been typed must be enough: a pipe that holds no more must not be asked for more.
TYPED_TEST(Streams, NothingIsReadBeforeItIsNeeded) {
  for (const std::string format : {"%2c", "%*2c", "%2s", "%2[0-9]", "%2d", "%2x", "%2f", "12%n"}) {
    for (const bool by_file : {true, false}) {
      SCOPED_TRACE(format + (by_file ? " from a pipe" : " from standard input"));
      int ends[2];
      ASSERT_EQ(0, pipe(ends));
      fcntl(ends[0], F_SETFL, O_NONBLOCK);
      const std::string typed = by_file ? bytes_of<TypeParam>("12") : "12";
      ASSERT_EQ(static_cast<ssize_t>(typed.size()), write(ends[1], typed.data(), typed.size()));
      StandardInput input(fdopen(ends[0], "r"));
      const std::string result = by_file ? scan_file<TypeParam>(stdin, format, "s4")
                                         : scan_standard_input<TypeParam>(format, "s4");
      EXPECT_EQ(format == "%*2c" || format == "12%n" ? '0' : '1', result[0]);
      EXPECT_FALSE(ferror(stdin) || feof(stdin));
      close(ends[1]);
    }
  }
}

// A position that cannot be restored falls back to the start of the file; errno is kept.
TYPED_TEST(Streams, SeeksThatFail) {
  const long expected[] = {4, 2, 7};
  for (const int failures : {0, 1, 2}) {
    StandardInput input(bytes_of<TypeParam>("xx12 34"));
    EXPECT_EQ("0 ", scan_file<TypeParam>(stdin, "xx", ""));
    fseeks_to_fail = failures;
    errno = 77;
    EXPECT_EQ("1 12", scan_file<TypeParam>(stdin, "%d", "i4"));
    EXPECT_EQ(77, errno);
    fseeks_to_fail = 0;
    EXPECT_EQ(expected[failures] * static_cast<long>(sizeof(TypeParam)), ftell(stdin));
  }
}

struct MarkRow {
  std::string bytes;
  const char* format;
  const char* destinations;
  const char* expected;
  std::string rest;
};

template <typename Char>
void expect_marks(const std::vector<MarkRow>& rows) {
  for (const MarkRow& row : rows) {
    for (const bool seeks : {true, false}) {
      SCOPED_TRACE(testing::PrintToString(row.bytes) + (seeks ? "" : " without position"));
      StandardInput input(row.bytes);
      ftell_fails = !seeks;
      EXPECT_EQ(row.expected, scan_file<Char>(stdin, row.format, row.destinations));
      ftell_fails = false;
      EXPECT_EQ(row.rest, read_all(stdin));
    }
  }
}

TEST(Marks, OfUtf8ArePassedOver) {
  const std::string mark = "\xEF\xBB\xBF", many(1100, '7');
  expect_marks<char>({
      {mark + "12 34", "%d%n", "i4 i4", "1 12|2", " 34"},
      {mark, "%d", "i4", "-1 .", ""},
      {mark + "a", "b", "", "0 ", "a"},
      {mark + mark + "a", "%2c", "s2", "1 <ef><bb>",
       "\xBF"
       "a"},
      {" " + mark, " %c", "s1", "1 <ef>", "\xBB\xBF"},
      {"\xEF\xBB"
       "12",
       "%c%d", "s1 i4", "1 <ef>|.",
       "\xBB"
       "12"},
      {"\xEF\xBB", "%2c", "s2", "1 <ef><bb>", ""},
      {"\xEF", "%d", "i4", "0 .", "\xEF"},
      {mark + many + "a", "%*[7]%c%n", "s1 i4", "1 a|1101", ""},
  });
}

TEST(Marks, OfWideTextAreTakenOutWithoutSwapping) {
  const auto wide = bytes_of<wchar_t>;
  const std::string mark = "\xFF\xFE";
  expect_marks<wchar_t>({
      {mark + wide("12 34"), "%d%n", "i4 i4", "1 12|2", wide(" 34")},
      {"\xFE\xFF" + wide("12 34"), "%d%n", "i4 i4", "1 12|2", wide(" 34")},
      {mark + wide(std::string(700, '7') + "a"), "%*[7]%c%n", "s1 i4", "1 a|701", ""},
      {mark, "%d", "i4", "-1 .", ""},
      {"\xFF", "%d", "i4", "-1 .", "\xFF"},
      {wide("7") + mark, "%d%n", "i4 i4", "1 7|1", mark},  // an incomplete character
      {"7\xFF" + wide("7"), "%d", "i4", "0 .", "7\xFF" + wide("7")},
      {"\xFF\xFF" + wide("7"), "%d", "i4", "0 .", "\xFF\xFF" + wide("7")},
      {"\xFE\xFE" + wide("7"), "%d", "i4", "0 .", "\xFE\xFE" + wide("7")},
  });
}

}  // namespace
