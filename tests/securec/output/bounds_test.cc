// Nothing is written outside the room, and every byte inside it is known: each format is printed
// into every room up to more than it needs and compared with what it gives without limits.
#include <errno.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdint.h>

#include <algorithm>
#include <tuple>

#include "securec/output/counted.h"
#include "securec/output/engines.h"
#include "support/allocation.h"
#include "support/guarded.h"

namespace {

using plx_test::AllocationFault;
using plx_test::Engine;
using plx_test::Guarded;
using plx_test::print;
using plx_test::text_of;

// Each kind of piece that a field is made of, with text behind it or nothing that would be cut as
// well. All take the same arguments.
const char* const kFormats[] = {
    "literal text %% and more",
    "<%s",
    "<%30s",
    "<%30.0s",
    "<%-30.7s>",
    "<%.4s%.0ls",  // what follows a cut text cannot make it whole
    "%.0s<%ls>",
    "%.0s<%12ls",
    "%.0s<%12.0ls",
    "%.0s<%-12.3ls>",
    "%.0s%.0ls<%9c",
    "%.0s%.0ls<%d>",
    "%.0s%.0ls<%14d%%>",
    "%.0s%.0ls<%14d",
    "%.0s%.0ls<%-14d>",
    "%.0s%.0ls<%014d>",
    "%.0s%.0ls<%.14d>",
    "%.0s%.0ls<%#x>",
    "%.0s%.0ls%9.0hhd",  // no digits
    "%.0s%.0ls%+.0hhd",
    "%.0s%.0ls%.9hhd",
    "%.0s%.0ls%c<%f>",
    "%.0s%.0ls%c<%20f",
    "%.0s%.0ls%c<%020e>",
    "%.0s%.0ls%c<%-20.1e>",
    "%.0s%.0ls%c<%.1090e>",  // zeros within the number
    "%.0s%.0ls%c<%.1090f",
    "%.0s%.0ls%c%.0f%9p",
};
#define ARGUMENTS "na\xC3\xAFve text, caf\xC3\xA9", L"wide \x20AC text", -0x12D700, 1.5, nullptr

template <typename Char>
class Bounds : public testing::Test {
 protected:
  using Text = std::basic_string<Char>;
  static constexpr Char kFill = 0x55;

  static void SetUpTestSuite() { ASSERT_NE(nullptr, setlocale(LC_ALL, "C.UTF-8")); }
  static void TearDownTestSuite() { setlocale(LC_ALL, "C"); }
  void SetUp() override { errno = 77; }
  void TearDown() override { EXPECT_EQ(77, errno); }

  // Calls `print` with a room of `count` characters, and expects `image` and then what was there.
  template <typename Print>
  static void expect(int result, Text image, size_t count, Print print) {
    Guarded<Char> room(count);
    std::fill_n(room.data(), count, kFill);
    EXPECT_EQ(result, print(room.data())) << count;
    image.resize(count, kFill);
    EXPECT_TRUE(std::equal(image.begin(), image.end(), room.data())) << count;
  }

  static Text terminated(const Text& text, size_t count) { return text.substr(0, count) + Char{}; }

  // What an unlimited call leaves: everything, or nothing in front of a cut text.
  static Text whole_or_empty(const Text& text, size_t count) {
    Text image = terminated(text, count - 1);
    if (text.size() >= count) image[0] = 0;
    return image;
  }
};

using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Bounds, Widths);

TYPED_TEST(Bounds, EveryRoom) {
  using Char = TypeParam;
  constexpr int kUnit = sizeof(Char);
  for (const char* ascii : kFormats) {
    SCOPED_TRACE(ascii);
    const auto format = text_of<Char>(ascii);
    Char whole[2000];
    const int size = Engine<Char>::ours(whole, 2000, format.c_str(), ARGUMENTS);
    const std::basic_string<Char> text(whole, whole + size);
    // Long texts skip most of their middle.
    for (int count = 0; count <= size + 2; count += count > 60 && count < size - 60 ? 29 : 1) {
      typename Engine<Char>::Stream stream;
      const int odd = count % kUnit;  // wide rooms are bytes, and need not be whole characters
      this->expect(count < size ? -1 : size, text.substr(0, count), count, [&](Char* room) {
        stream = {count * kUnit + odd, room};
        const int result = plx_test::run(&stream, format.c_str(), ARGUMENTS);
        EXPECT_EQ(room + std::min(count, size), stream.position);
        return result;
      });
      EXPECT_EQ(odd + kUnit * std::max(count - size, -1), stream.room);
      if (count == 0) continue;
      const auto call = count % 2 != 0 ? Engine<Char>::ours : plx_test::print_list<Char>;
      this->expect(count > size ? size : -1, this->whole_or_empty(text, count), count,
                   [&](Char* room) { return call(room, count, format.c_str(), ARGUMENTS); });
    }
  }
}

using NarrowBounds = Bounds<char>;

TEST_F(NarrowBounds, ACountCutsTheText) {
  const std::string text = "literal \xE2\x82\xAC  -7";
  const int size = static_cast<int>(text.size());
  for (const auto call : plx_test::kCounted) {
    const auto printed = [&](size_t room_size, size_t count) {
      return
          [=](char* room) { return call(room, room_size, count, "literal %lc %3g", 0x20AC, -7.0); };
    };
    for (int room = 1; room <= size + 3; ++room) {
      for (int count = 0; count < room; ++count) {
        expect(count < size ? -1 : size, terminated(text, count), room, printed(room, count));
      }
      // Callers depend on a terminator at the very end when the count sets no limit.
      auto image = whole_or_empty(text, room);
      image.resize(room, kFill);
      image[room - 1] = 0;
      for (const size_t count : {size_t(room), size_t{0x7FFFFFFE}, size_t{UINT32_MAX}, SIZE_MAX}) {
        expect(size < room ? size : -1, image, room, printed(room, count));
      }
    }
    // A format refused behind the cut is never seen, one before it empties the destination.
    expect(-1, std::string("ab\0", 3), 8, [&](char* room) { return call(room, 8, 2, "abcd%y"); });
    expect(-1, std::string("\0b\x55\0", 4), 8,
           [&](char* room) { return call(room, 8, 3, "ab%y"); });
  }
}

// Fields of converted text count characters. A text that does not convert fails the call, a single
// character that does not prints nothing.
TYPED_TEST(Bounds, ConvertedText) {
  using Char = TypeParam;
  // A state that someone else left in the middle of a character is not ours.
  mbrtowc(nullptr, "\xC3", 1, nullptr);
  errno = 77;
  const std::tuple<const char*, const char*, const wchar_t*> rows[] = {
      {"<%", "<\xC3\xA9\xE2\x82\xACx>", L"<\xE9\x20ACx>"},
      {"<%5", "<  \xC3\xA9\xE2\x82\xACx>", L"<  \xE9\x20ACx>"},
      {"<%-5", "<\xC3\xA9\xE2\x82\xACx  >", L"<\xE9\x20ACx  >"},
      {"<%3.2", "< \xC3\xA9\xE2\x82\xAC>", L"< \xE9\x20AC>"},
      {"<%.0", "<>", L"<>"},
  };
  Guarded<char> narrow("\xC3\xA9\xE2\x82\xACx", 7), open_narrow("abc\xC3\xA9", 5), bad("a\xC3", 3);
  Guarded<wchar_t> wide(L"\xE9\x20ACx", 4), open_wide(L"abcd", 4);
  // What the precision leaves out is not read.
  EXPECT_EQ(text_of<Char>(" abcdabc"),
            print<Char>("%5.4ls%.3s", open_wide.data(), open_narrow.data()).substr(0, 8));
  if constexpr (sizeof(Char) == 1) {
    for (const auto& [field, wanted, other] : rows) {
      EXPECT_EQ(wanted, print<char>(field + std::string("ls>"), wide.data())) << other;
    }
    EXPECT_EQ("<  \xE2\x82\xAC>", print<char>("<%5lc>", 0x20AC));  // padded by its bytes
    EXPECT_EQ("<>", print<char>("<%5lc>", 0xD800));
    EXPECT_EQ("<>", print<char>("<%5C>", WEOF));
    EXPECT_EQ("refused", print<char>("<%-5ls>", L"a\xD800"));
    EXPECT_EQ("<a>", print<char>("<%.1ls>", L"a\xD800"));
  } else {
    for (const auto& [field, other, wanted] : rows) {
      EXPECT_EQ(wanted, print<wchar_t>(field + std::string("s>"), narrow.data())) << other;
    }
    EXPECT_EQ(L"abc\xE9", print<wchar_t>("%.4s", open_narrow.data()));
    EXPECT_EQ(L"<    \x20AC>", print<wchar_t>("<%5lc>", 0x20AC));
    EXPECT_EQ(L"<>", print<wchar_t>("<%5c>", 0xC3));
    EXPECT_EQ(L"refused", print<wchar_t>("<%-5s>", bad.data()));
    EXPECT_EQ(L"refused", print<wchar_t>("<%s>", "a\xC3(\xA9"));
    EXPECT_EQ(L"<a>", print<wchar_t>("<%.1s>", "a\xC3"));
    // What stands for the end of a file is no character.
    const std::wstring eof(1, static_cast<wchar_t>(WEOF));
    wchar_t dst[30];
    SecurecWideOutputStream stream = {sizeof dst, dst};
    EXPECT_EQ(-1, plx_test::run(&stream, L"ab%lc", WEOF));
    EXPECT_EQ(int{28 * sizeof(wchar_t)}, stream.room);
    EXPECT_EQ(L"refused", print<wchar_t>("%-5lc", WEOF));
    EXPECT_EQ(L"refused", print<wchar_t>("%-40ls", (L"some text of a length" + eof).c_str()));
    EXPECT_EQ(L"a", print<wchar_t>("%.1ls", (L"a" + eof).c_str()));
    EXPECT_EQ(-1, swprintf_s(dst, 30, (L"%d" + eof).c_str(), 1));
  }
}

// A long float lives on the heap, and prints nothing where there is none.
TYPED_TEST(Bounds, FloatsWithoutMemory) {
  using Char = TypeParam;
  const struct {
    const char* format;
    int size, size_without_memory;
    size_t allocations;
  } rows[] = {{"<%.162f>", 166, 166, 0}, {"<%.163f>", 167, 2, 1},
              {"<%511f>", 513, 513, 0},  {"<%512f>", 514, 2, 1},
              {"<%-600G>|", 603, 3, 1},  {"<%.163g>%.163f<%300.163f>", 472, 4, 3}};
  Char dst[1000];
  for (const auto& row : rows) {
    SCOPED_TRACE(row.format);
    const auto format = text_of<Char>(row.format);
    for (const size_t fail_at : {0, 1}) {
      AllocationFault fault(fail_at, true);
      EXPECT_EQ(fail_at == 0 ? row.size : row.size_without_memory,
                Engine<Char>::ours(dst, 1000, format.c_str(), 1.5, 1.5, 1.5));
      EXPECT_EQ(0, fault.live_blocks());
      EXPECT_EQ(row.allocations, fault.allocations());
    }
  }
  const auto format = text_of<Char>("<%Lf>%d");
  AllocationFault fault(1);
  EXPECT_EQ(3, Engine<Char>::ours(dst, 1000, format.c_str(), 1.5L, 7));
}

// Neither memory nor time grows with a number that is only asked for.
TYPED_TEST(Bounds, FloatsOfAbsurdSizes) {
  using Char = TypeParam;
  EXPECT_EQ(text_of<Char>("<1.5>"), print<Char>("<%.*g>", 2147483298, 1.5));
  EXPECT_EQ(text_of<Char>("<>"), print<Char>("<%.*g>", 2147483299, 1.5));
  EXPECT_EQ(text_of<Char>("<1.5>"), print<Char>("<%.*Lg>", 2147478675, 1.5L));
  EXPECT_EQ(text_of<Char>("<>"), print<Char>("<%.*Lg>", 2147478676, 1.5L));
  EXPECT_EQ(text_of<Char>("refused"), print<Char>("<%*.*f>", 2000000000, 2000000000, 1.5));
}

}  // namespace
