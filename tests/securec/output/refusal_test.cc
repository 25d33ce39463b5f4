// What is refused: arguments, and formats.
#include <gtest/gtest.h>
#include <limits.h>
#include <stdint.h>

#include <algorithm>
#include <regex>
#include <vector>

#include "securec/output/counted.h"
#include "securec/output/engines.h"
#include "support/guarded.h"

namespace {

using plx_test::Engine;
using plx_test::print;
using plx_test::run;
using plx_test::text_of;

template <typename Char>
class Refusals : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Refusals, Widths);

TYPED_TEST(Refusals, ArgumentsEmptyADestinationThatIsThere) {
  using Char = TypeParam;
  const Char text[] = {'x', 0};
  const size_t limit = Engine<Char>::kLimit;
  Char dst[2];
  const struct {
    Char* dst;
    size_t count;
    const Char* format;
    int result, first;
  } rows[] = {
      {dst, limit, text, 1, 'x'},       {dst, limit + 1, text, -1, 0},
      {dst, SIZE_MAX, text, -1, 0},     {dst, 0, text, -1, 'a'},
      {dst, 0, nullptr, -1, 'a'},       {dst, 5, nullptr, -1, 0},
      {dst, limit + 1, nullptr, -1, 0}, {nullptr, 5, text, -1, 'a'},
      {nullptr, 0, nullptr, -1, 'a'},
  };
  for (const auto& row : rows) {
    dst[0] = 'a';
    EXPECT_EQ(row.result, Engine<Char>::ours(row.dst, row.count, row.format, 0)) << row.count;
    EXPECT_EQ(row.first, dst[0]) << row.count;
    if constexpr (sizeof(Char) == 1) {
      for (const auto call : plx_test::kCounted) {
        dst[0] = 'a';
        EXPECT_EQ(row.result, call(row.dst, row.count, 1, row.format, 0)) << row.count;
        EXPECT_EQ(row.first, dst[0]) << row.count;
        for (const size_t count : {size_t{0x7FFFFFFF}, size_t{UINT32_MAX} - 1, SIZE_MAX - 1}) {
          dst[0] = 'a';
          EXPECT_EQ(-1, call(row.dst, row.count, count, row.format, 0)) << count;
          EXPECT_EQ(row.first == 'a' ? 'a' : 0, dst[0]) << count;
        }
      }
    }
  }
  typename Engine<Char>::Stream stream = {64, nullptr}, full = {INT32_MIN, dst};
  EXPECT_EQ(-1, run<Char>(&stream, text));
  EXPECT_EQ(-1, run<Char>(nullptr, text));
  EXPECT_EQ(-1, run<Char>(&full, nullptr));
  EXPECT_EQ(-1, run<Char>(&full, text));
  EXPECT_EQ(0, run<Char>(&full, text + 1));
  EXPECT_EQ(INT32_MIN, full.room);
}

// Every format of up to four characters behind a '%' against a description of those that are
// accepted, each ending at an inaccessible page.
TYPED_TEST(Refusals, FormatsAgreeWithTheGrammar) {
  using Char = TypeParam;
  const std::regex grammar(
      "(?:[^%]|%%|%"
      "(?:[ #+0-]|[1-9*][0-9]*(?![*0-9]))*"
      "(?:[.](?:[*0-9][0-9]*)?)?"
      "(?:[hlLqjztwNZ]|I64|I32|I(?=[diouxX]))*"
      "(?:[CEFGSXcdefgiopsux]|I(?!64|32|[diouxX])))*");
  const std::string alphabet = "%.*05-lI64d\x80";
  constexpr size_t kRoom = 20000;
  plx_test::Guarded<Char> page(6);
  std::vector<Char> dst(kRoom);
  for (size_t number = 0; number < 12 * 12 * 12 * 12; ++number) {
    std::string format = "%";
    for (size_t rest = number; rest != 0; rest /= 12) format += alphabet[rest % 12];
    Char* const text = page.data() + 5 - format.size();
    std::copy_n(text_of<Char>(format).c_str(), format.size() + 1, text);
    EXPECT_EQ(std::regex_match(format, grammar),
              Engine<Char>::ours(dst.data(), kRoom, text, 1L, 1L, 1L, 1L) >= 0)
        << format;
  }
}

// A number that grows too long is refused before anything is printed for it; one that is only
// large runs out of room.
TYPED_TEST(Refusals, Numbers) {
  using Char = TypeParam;
  const struct {
    const char* format;
    int number;
    bool runs_out_of_room;
  } rows[] = {
      {"%214748369d", 1, true},  {"%214748370d", 1, false},  {"%2147483648d", 1, false},
      {"%.214748369d", 1, true}, {"%.214748370d", 1, false}, {"%*d", INT_MAX, true},
      {"%*d", -INT_MAX, true},   {"%*d", INT_MIN, false},    {"%*0d", 21474837, false},
      {"%*0d", 21474836, true},
  };
  for (const auto& row : rows) {
    Char dst[20];
    typename Engine<Char>::Stream stream = {sizeof dst, dst};
    EXPECT_EQ(-1, run(&stream, text_of<Char>(row.format).c_str(), row.number, 3)) << row.format;
    EXPECT_EQ(row.runs_out_of_room, stream.room < 0) << row.format;
  }
  // Digits behind a star go on with its number, but do not bring back a negative precision.
  EXPECT_EQ(text_of<Char>("             3"), print<Char>("%*4d", 1, 3));
  EXPECT_EQ(text_of<Char>("000000000003"), print<Char>("%.*2d", 1, 3));
  EXPECT_EQ(text_of<Char>("3"), print<Char>("%.*11111111111d", -1, 3));
}

// Letters of other formatters, the one that writes through its argument first of all.
TYPED_TEST(Refusals, Letters) {
  int64_t untouched = 42;
  for (const char* format : {"%n", "%hhn", "%lln", "%a", "%A", "%D", "%O", "%U", "%m", "%\x01"}) {
    EXPECT_EQ(text_of<TypeParam>("refused"), print<TypeParam>(format, &untouched)) << format;
  }
  EXPECT_EQ(42, untouched);
  wchar_t dst[8];
  for (const unsigned letter : {'d' + 0x100u, 'd' + 0x10000u, 'd' - 0x100u}) {
    const wchar_t format[] = {L'%', static_cast<wchar_t>(letter), 0};
    EXPECT_EQ(-1, swprintf_s(dst, 8, format, 1));
  }
}

}  // namespace
