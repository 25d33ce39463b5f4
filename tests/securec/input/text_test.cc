// Characters beyond ASCII, text that changes its width, memory, the exported engines.
#include <errno.h>
#include <gtest/gtest.h>
#include <locale.h>

#include "securec/input/number_text.h"
#include "securec/input/platform_faults.h"
#include "securec/input/scan.h"
#include "securec/input/source.h"
#include "support/allocation.h"

using namespace plx_test;

namespace {

class Text : public testing::Test {
 protected:
  Text() { EXPECT_NE(nullptr, setlocale(LC_CTYPE, "C.UTF-8")); }
  ~Text() override { setlocale(LC_CTYPE, "C"); }

  template <typename Char>
  static std::string scan(const Char* text, const Char* format, const char* destinations) {
    return Destinations(destinations).call(Scan<Char>::kString, text, format);
  }
};

struct WideRow {
  const wchar_t* text;
  const wchar_t* format;
  const char* destinations;
  const char* expected;
};

TEST_F(Text, BeyondAscii) {
  errno = 77;
  const WideRow rows[] = {
      {L"a\u00e9\u20ac", L"%s", "s7", "1 a<c3><a9><e2><82><ac>_"},
      {L"a\u00e9\u20ac", L"%s", "s6", "0 _<c3><a9>..."},  // no half character
      {L"a\u00e9\u20ac", L"%3c", "s6", "1 a<c3><a9><e2><82><ac>"},
      {L"a\u00e9\u20ac", L"%2s", "s4", "1 a<c3><a9>_"},  // a width counts what is read
      {L"a\u00e9\u20ac", L"%ls", "w4", "1 a<e9><20ac>_"},
      {L"a\xd800z", L"%s", "s4", "1 a?z_"},
      {L"a\u2003\u2003b", L"%ls%ls", "w2 w2", "2 a_|b_"},
      {L"\u2003x", L"\u2003\u2003x", "", "0 "},
      {L"1\uff12", L"%d", "i4", "1 1"},
      {L"5", L"%\u0164", "i4", "0 ."},  // no letter, although its low byte is one
      // Sets.
      {L"\u0431\u0443x", L"%l[\u0430-\u044f]", "w4", "1 <431><443>_."},
      {L"\u0431\u0443x", L"%l[^x]", "w4", "1 <431><443>_."},
      {L"\u0431x", L"%l[^\u0430-\u044f]", "w1", "0 ."},
      {L"b\u0431\u0450", L"%l[a-\u044f]", "w4", "1 b<431>_."},
      {L"\u044f-\u0430\u0431", L"%l[\u044f-\u0430]", "w4", "1 <44f>-<430>_"},
      {L"\U0010ffff", L"%l[\U0010ffff]", "w2", "1 <10ffff>_"},
      {L"\u0410", L"%l[-\u0430]", "w2", "0 .."},
      {L"\u0161a", L"%l[a]", "w1", "0 ."},
      {L"\u00e9\u00ff\u0100", L"%l[\u00e0-\u00ff]", "w4", "1 <e9><ff>_."},
  };
  for (const WideRow& row : rows)
    EXPECT_EQ(row.expected, scan(row.text, row.format, row.destinations));
  // A byte of a longer character does not convert by itself, and no byte beyond ASCII is a space.
  EXPECT_EQ("2 a??_|b", scan("a\u00e9b", "%3ls%lc", "w4 w1"));
  EXPECT_EQ("2 a<c3>_|<85>", scan("a\xc3\x85", "%2s%c", "s3 s1"));
  EXPECT_EQ("1 <e9><ff>_", scan("\xe9\xff\x7f", "%[\xe0-\xff]", "s3"));
  bytes_are_latin = true;
  EXPECT_EQ("1 a<e9>b_", scan("a\351b", "%ls", "w4"));
  bytes_are_latin = false;
  EXPECT_EQ("1 inf", scan("1e999", "%f", "f"));
  EXPECT_EQ(77, errno);
  setlocale(LC_CTYPE, "C");
  EXPECT_EQ("1 a?_.", scan(L"a\u20ac", L"%s", "s4"));
}

// The point is the locale's. strtod is not told here, and so stops at it.
TEST_F(Text, ThePointMayBeAnother) {
  decimal_point = "\u066b";
  EXPECT_EQ("2 1|x", scan("1\u066b5x", "%f%c", "f s1"));
  EXPECT_EQ("2 1|x", scan(L"1\u066b5x", L"%f%c", "f s1"));
  EXPECT_EQ("2 1|.", scan(L"1.5", L"%f%c", "f s1"));
  EXPECT_EQ("2 1|5", scan("1\3315", "%f%d", "f i4"));  // the first byte of a point is taken
  EXPECT_EQ("2 1|<ab>", scan("1\2535", "%f%c", "f s1"));
  decimal_point = ",";
  EXPECT_EQ("2 1|x", scan("1,5x", "%f%c", "f s1"));
  EXPECT_EQ("2 1|.", scan("1.5", "%f%c", "f s1"));
  decimal_point = ",.";
  EXPECT_EQ("2 1|,", scan(L"1,5", L"%f%c", "f s1"));  // a wide point is one character
  decimal_point = "\u066b";
  setlocale(LC_CTYPE, "C");
  errno = 77;
  EXPECT_EQ("2 1|x", scan(L"1x", L"%f%c", "f s1"));  // and may be none at all
  EXPECT_EQ(77, errno);
  decimal_point = nullptr;
}

// 349 characters need no heap block. A block is doubled as often as a run of digits needs. A file
// needs one for its chunk.
TEST(Memory, BlocksOfANumber) {
  const struct {
    size_t length, of_string, of_file;
  } rows[] = {{349, 0, 1}, {350, 1, 2}, {700, 2, 3}, {100000, 1, 9}};
  for (const auto& row : rows) {
    const std::string number = "1." + std::string(row.length - 4, '0') + "e2";
    const std::wstring wide = of_width<wchar_t>(number);
    StandardInput input(number);
    getc(stdin);  // the stream has its own buffer before anything is counted
    rewind(stdin);
    const auto expect = [](size_t blocks, const auto& scan) {
      double value = 5;
      const AllocationFault count;
      EXPECT_EQ(1, scan(&value));
      EXPECT_EQ(100, value);
      EXPECT_EQ(blocks, count.allocations());
      EXPECT_EQ(0, count.live_blocks());
    };
    expect(row.of_string, [&](double* v) { return sscanf_s(number.c_str(), "%lf", v); });
    expect(row.of_string, [&](double* v) { return swscanf_s(wide.c_str(), L"%lf", v); });
    expect(row.of_file, [](double* v) { return fscanf_s(stdin, "%lf", v); });
  }
}

TEST(Memory, TheTextOfANumberIsWiped) {
  using plx::securec::input::NumberText;
  alignas(NumberText) unsigned char place[sizeof(NumberText)];
  const std::string digits(349, '7');
  const auto sevens = [&] { return std::count(place, std::end(place), '7'); };
  auto* text = new (place) NumberText;
  ASSERT_TRUE(text->append(digits.data(), digits.data() + digits.size()));
  EXPECT_LE(349, sevens());
  text->~NumberText();
  EXPECT_GT(9, sevens());
  text = new (place) NumberText;
  ASSERT_TRUE(text->append(digits.data(), digits.data() + digits.size()));
  ASSERT_TRUE(text->append(digits.data(), digits.data() + 1));  // moves to the heap
  EXPECT_GT(9, sevens());
  text->~NumberText();
}

// The functions that take a list of arguments.
template <typename Char>
struct Lists;
template <>
struct Lists<char> {
  static constexpr auto kFile = vfscanf_s;
  static constexpr auto kEngine = securec_input_s;
  static constexpr auto kClear = clearDestBuf;
  static int standard_input(FILE*, const char* format, va_list args) {
    return vscanf_s(format, args);
  }
};
template <>
struct Lists<wchar_t> {
  static constexpr auto kFile = vfwscanf_s;
  static constexpr auto kEngine = securec_winput_s;
  static constexpr auto kClear = clearwDestBuf;
  static int standard_input(FILE*, const wchar_t* format, va_list args) {
    return vwscanf_s(format, args);
  }
};

template <auto kList, typename From, typename Char>
int by_list(From from, const Char* format, ...) {
  va_list args;
  va_start(args, format);
  int result = 0;
  if constexpr (std::is_void_v<decltype(kList(from, format, args))>) {
    kList(from, format, args);
  } else {
    result = kList(from, format, args);
  }
  va_end(args);
  return result;
}

template <typename Char>
class ByList : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(ByList, Widths);

TYPED_TEST(ByList, EverySource) {
  using Char = TypeParam;
  using L = Lists<Char>;
  const auto format = of_width<Char>("%d %s");
  const auto check = [&](int result, int value, char* word) {
    EXPECT_EQ(2, result);
    EXPECT_EQ(5, value);
    EXPECT_STREQ("abc", word);
    memset(word, 'x', 4);
  };
  int value = 0;
  char word[4];
  FILE* const file = file_of(bytes_of<Char>("5 abc"));
  const int by_file = by_list<L::kFile>(file, format.c_str(), &value, word, 4u);
  fclose(file);
  check(by_file, value, word);
  StandardInput input("5 abc");
  check(by_list<L::standard_input>(stdin, format.c_str(), &value, word, 4u), value, word);
  by_list<L::kClear>(format.c_str(), of_width<Char>("%s").c_str(), word, 4u);
  EXPECT_EQ(0, word[0]);
  EXPECT_EQ('x', word[1]);
  by_list<L::kClear, const Char*, Char>(format.c_str(), nullptr, word, 4u);
}

// A source that has nothing to give, as a terminal whose user ends the input.
template <typename Char>
struct NoInput : plx::securec::input::Source<Char> {
  NoInput() : plx::securec::input::Source<Char>(&refuse) {}
  static bool refuse(plx::securec::input::SourceBase<Char>* self) {
    ++static_cast<NoInput*>(self)->asked;
    return false;
  }
  int asked = 0;
};

TYPED_TEST(ByList, DigitsThatFindNoMemoryAreNotTaken) {
  const auto format = of_width<TypeParam>("%lf");
  const std::string sevens(300, '7');
  for (const std::string& number : {sevens + sevens, sevens + "e" + sevens}) {
    const auto digits = of_width<TypeParam>(number);
    plx::securec::input::StringSource<TypeParam> text(digits.data(), digits.size());
    plx::securec::input::Source<TypeParam>* const source = &text;
    double value;
    const AllocationFault none(1);
    EXPECT_EQ(0, by_list<Lists<TypeParam>::kEngine>(source, format.c_str(), &value));
    EXPECT_EQ(number.size() % sevens.size() * 301, text.taken());
  }
}

// The doubling ends before it could wrap; nothing of such a number is looked at.
TEST(Memory, ANumberBeyondAGibibyteIsRefused) {
  plx::securec::input::NumberText text;
  volatile uintptr_t address = 8, size = uintptr_t{3} << 29;  // compilers warn of what they know
  const auto* const nowhere = reinterpret_cast<const char*>(address);
  EXPECT_FALSE(text.append(nowhere, nowhere + size));
  const std::string digits(400, '7');
  EXPECT_FALSE(text.append(digits.data(), digits.data() + digits.size()));
  EXPECT_TRUE(text.failed());
}

TYPED_TEST(ByList, TheEngineTellsANullDestinationFromTheEnd) {
  using Char = TypeParam;
  using L = Lists<Char>;
  const auto text = of_width<Char>("5"), format = of_width<Char>("%d");
  plx::securec::input::StringSource<Char> number(text.c_str(), 1);
  NoInput<Char> end;
  plx::securec::input::Source<Char>* const none = nullptr;
  plx::securec::input::Source<Char>*const five = &number, *const nothing = &end;
  int value;
  void* const null = nullptr;
  EXPECT_EQ(-1, by_list<L::kEngine>(none, format.c_str(), &value));
  EXPECT_EQ(-1, (by_list<L::kEngine, decltype(five), Char>(five, nullptr)));
  EXPECT_EQ(-2, by_list<L::kEngine>(five, format.c_str(), null));
  EXPECT_EQ(1, by_list<L::kEngine>(five, format.c_str(), &value));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(-1, by_list<L::kEngine>(nothing, format.c_str(), &value));
  EXPECT_EQ(1, end.asked);  // a terminal is not asked again
}

}  // namespace
