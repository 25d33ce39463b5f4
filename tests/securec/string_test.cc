// Copy and append against naive models that work character by character, on random arrangements
// of destination and source within one arena, so that every kind of overlap comes up.
#include <gtest/gtest.h>
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <random>

#include "securec/string_model.h"
#include "support/guarded.h"

namespace {

using namespace plx_test;

template <typename Char>
class Strings : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Strings, Widths);

TYPED_TEST(Strings, AgreeWithTheModelInEveryArrangement) {
  using Char = TypeParam;
  constexpr size_t kArena = 20, kTail = 44;
  std::mt19937 random(1);
  const auto below = [&](size_t n) {
    return std::uniform_int_distribution<size_t>(0, n - 1)(random);
  };
  size_t codes[256] = {};
  for (int round = 0; round < 200000; ++round) {
    Char arena[kArena + kTail] = {};
    for (size_t i = 0; i < kArena; ++i) {
      arena[i] = static_cast<Char>(below(8) == 0 ? 0 : 'a' + below(3));
    }
    Char expected[kArena + kTail];
    std::copy(std::begin(arena), std::end(arena), expected);
    const size_t dst = below(kArena), src = below(kArena), room = 1 + below(12);
    const size_t limit = below(3) == 0 ? kWhole : below(10);
    const bool appends = below(2) == 0;
    const errno_t wanted = appends ? model_append(expected + dst, room, expected + src, limit)
                                   : model_copy(expected + dst, room, expected + src, limit);
    errno_t code;
    if (limit == kWhole) {
      code = appends ? Calls<Char>::append(arena + dst, room, arena + src)
                     : Calls<Char>::copy(arena + dst, room, arena + src);
    } else {
      code = appends ? Calls<Char>::append(arena + dst, room, arena + src, limit)
                     : Calls<Char>::copy(arena + dst, room, arena + src, limit);
    }
    ++codes[wanted];
    ASSERT_EQ(wanted, code) << "round " << round;
    ASSERT_TRUE(std::equal(std::begin(arena), std::end(arena), expected))
        << "round " << round << ": " << (appends ? "append" : "copy") << " to " << dst << " room "
        << room << " from " << src << " limit " << limit;
  }
  for (errno_t code : {EOK, EINVAL_CLEARED, ERANGE_CLEARED, EOVERLAP_CLEARED}) {
    EXPECT_GT(codes[code], 1000u) << code;
  }
}

TYPED_TEST(Strings, RefusalsInTheirOrder) {
  using Char = TypeParam;
  const size_t too_large = Calls<Char>::kLimit + 1;
  const Char text[] = {'x', 'y', 0};
  Char d[] = {'a', 'b', 0, 'c'};
  const auto restore = [&] { d[0] = 'a'; };
  for (size_t room : {size_t{0}, too_large, kWhole}) {
    EXPECT_EQ(ERANGE, Calls<Char>::copy(d, room, nullptr));
    EXPECT_EQ(ERANGE, Calls<Char>::copy(nullptr, room, text, too_large));
    EXPECT_EQ(ERANGE, Calls<Char>::append(d, room, nullptr));
    EXPECT_EQ(ERANGE, Calls<Char>::append(d, room, text, too_large));
  }
  EXPECT_EQ(EINVAL, Calls<Char>::copy(nullptr, 4, nullptr));
  EXPECT_EQ(EINVAL, Calls<Char>::copy(nullptr, 4, text, too_large));
  EXPECT_EQ(EINVAL, Calls<Char>::append(nullptr, 4, text));
  EXPECT_EQ(EINVAL, Calls<Char>::append(nullptr, 4, nullptr, too_large));
  EXPECT_EQ('a', d[0]);

  EXPECT_EQ(EINVAL_CLEARED, Calls<Char>::copy(d, 4, nullptr));
  EXPECT_EQ(0, d[0]);
  restore();
  EXPECT_EQ(EINVAL_CLEARED, Calls<Char>::copy(d, 4, nullptr, too_large));
  EXPECT_EQ(0, d[0]);
  restore();
  EXPECT_EQ(EINVAL_CLEARED, Calls<Char>::append(d, 4, nullptr));
  EXPECT_EQ(0, d[0]);
  restore();
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::copy(d, 4, text, too_large));
  EXPECT_EQ(0, d[0]);
  restore();
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::append(d, 4, text, kWhole));
  EXPECT_EQ(0, d[0]);
  EXPECT_EQ('b', d[1]);
  EXPECT_EQ('c', d[3]);
  restore();
  EXPECT_EQ(EOK, Calls<Char>::copy(d, 4, text, Calls<Char>::kLimit));
  EXPECT_EQ('x', d[0]);
}

// Every length around the short copies, from where every number of bytes is left in the page.
TEST(ShortStrings, AtTheEndOfAPage) {
  plx_test::Guarded<char> page(4096);
  std::fill_n(page.data(), page.size(), 'x');
  char d[160], expected[160];
  for (size_t length = 0; length <= 130; ++length) {
    for (size_t behind = 0; behind <= 100; behind += length % 3 + 1) {
      char* const src = page.data() + page.size() - 1 - behind - length;
      src[length] = 0;
      for (const size_t room : {length, length + 1, sizeof d}) {
        for (const size_t limit : {kWhole, length / 2, length, length + 1}) {
          if (room == 0) continue;
          memset(d, 'o', sizeof d);
          memset(expected, 'o', sizeof d);
          const errno_t wanted = model_copy(expected, room, src, limit);
          ASSERT_EQ(wanted,
                    limit == kWhole ? strcpy_s(d, room, src) : strncpy_s(d, room, src, limit));
          ASSERT_EQ(0, memcmp(expected, d, sizeof d)) << length << " " << room << " " << limit;
        }
      }
      memset(d, 'o', sizeof d);
      memset(expected, 'o', sizeof d);
      d[behind % 8] = expected[behind % 8] = 0;
      for (const size_t room : {behind % 8 + length, behind % 8 + length + 1}) {
        if (room == 0) continue;
        ASSERT_EQ(model_append(expected, room, src, kWhole), strcat_s(d, room, src));
        ASSERT_EQ(0, memcmp(expected, d, sizeof d)) << length << " " << room;
      }
      src[length] = 'x';
    }
  }
}

// An unterminated source or destination is never read past the destination's size.
TYPED_TEST(Strings, NothingIsReadPastTheRoom) {
  using Char = TypeParam;
  plx_test::Guarded<Char> src(6), full(6);
  std::fill_n(src.data(), 6, 'a');
  std::fill_n(full.data(), 6, 'b');
  Char d[8] = {};
  EXPECT_EQ(Calls<Char>::kCopyDoesNotFit, Calls<Char>::copy(d, 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::copy(d, 6, src.data(), 100));
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::append(d, 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::append(d, 6, src.data(), 100));
  EXPECT_EQ(EOK, Calls<Char>::copy(d, 7, src.data(), 6));
  EXPECT_EQ(EINVAL_CLEARED, Calls<Char>::append(full.data(), 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, Calls<Char>::append(full.data(), 6, src.data()));
  EXPECT_EQ(0, full[0]);
  EXPECT_EQ('a', full[5]);
}

}  // namespace
