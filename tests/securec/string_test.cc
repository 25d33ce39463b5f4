// What copies and appends refuse, and what they read. fuzz/fuzz_securec.cc holds them to naive
// models, in every arrangement of destination and source.
#include <gtest/gtest.h>
#include <plx/securec.h>
#include <string.h>

#include <algorithm>

#include "fuzz/string_model.h"
#include "internal/cpu.h"
#include "securec/string.h"
#include "support/guarded.h"

namespace {

using namespace plx_test;
namespace cpu = plx::cpu;

// What the rest of the library calls.
struct Hidden : Calls<char> {
  static errno_t copy(char* d, size_t n, const char* s) {
    return plx::securec::copy_string(d, n, s);
  }
  static errno_t copy(char* d, size_t n, const char* s, size_t c) {
    return plx::securec::copy_string(d, n, s, c);
  }
  static errno_t append(char* d, size_t n, const char* s) {
    return plx::securec::append_string(d, n, s);
  }
  static errno_t append(char* d, size_t n, const char* s, size_t c) {
    return plx::securec::append_string(d, n, s, c);
  }
};

template <typename Functions>
class Strings : public testing::Test {};
using Functions = testing::Types<Calls<char>, Calls<wchar_t>, Hidden>;
TYPED_TEST_SUITE(Strings, Functions);

TYPED_TEST(Strings, RefusalsInTheirOrder) {
  using C = TypeParam;
  using Char = typename C::Char;
  const size_t too_large = C::kLimit + 1;
  const Char text[] = {'x', 'y', 0};
  const struct {
    bool has_dst, has_src;
    size_t room;
    errno_t code;
  } rows[] = {
      {true, false, 0, ERANGE},        {true, false, too_large, ERANGE},
      {false, true, 0, ERANGE},        {false, true, kWhole, ERANGE},
      {false, false, 4, EINVAL},       {false, true, 4, EINVAL},
      {true, true, 0, ERANGE},         {true, false, 4, EINVAL_CLEARED},
      {true, true, too_large, ERANGE},
  };
  Char d[] = {'a', 'b', 0, 'c'};
  const auto expect = [&](errno_t wanted, errno_t code) {
    EXPECT_EQ(wanted, code);
    EXPECT_EQ(wanted == ERANGE || wanted == EINVAL ? 'a' : 0, d[0]);
    EXPECT_EQ('b', d[1]);
    EXPECT_EQ('c', d[3]);
    d[0] = 'a';
  };
  for (const auto& row : rows) {
    Char* const dst = row.has_dst ? d : nullptr;
    const Char* const src = row.has_src ? text : nullptr;
    SCOPED_TRACE(testing::Message() << row.code << " " << row.room);
    expect(row.code, C::copy(dst, row.room, src));
    expect(row.code, C::append(dst, row.room, src));
    for (const size_t count : {size_t{2}, too_large}) {
      expect(row.code, C::copy(dst, row.room, src, count));
      expect(row.code, C::append(dst, row.room, src, count));
    }
  }
  // Nothing is read for a destination without room.
  auto* const nowhere = reinterpret_cast<Char*>(uintptr_t{8});
  expect(ERANGE, C::copy(d, 0, nowhere));
  expect(ERANGE, C::copy(d, 0, nowhere, 2));
  EXPECT_EQ(ERANGE, C::append(nowhere, 0, nowhere));
  expect(ERANGE_CLEARED, C::copy(d, 4, text, too_large));
  expect(ERANGE_CLEARED, C::append(d, 4, text, kWhole));
  EXPECT_EQ(EOK, C::copy(d, 4, text, C::kLimit));
  EXPECT_EQ('x', d[0]);
}

// With the copies for this processor, and with those for any.
class ShortStrings : public testing::TestWithParam<bool> {
 protected:
  ShortStrings() : all_(cpu::ask()) {
    if (!GetParam()) cpu::g_features.store(cpu::kAsked);
  }
  ~ShortStrings() override { cpu::g_features.store(all_); }

 private:
  const uint32_t all_;
};
INSTANTIATE_TEST_SUITE_P(, ShortStrings, testing::Bool());

// Every length around the short copies, from where every number of bytes is left in the page.
TEST_P(ShortStrings, AtTheEndOfAPage) {
  Guarded<char> page(4096);
  std::fill_n(page.data(), page.size(), 'x');
  char d[320], expected[320];
  const auto fill = [&] {
    memset(d, 'o', sizeof d);
    memset(expected, 'o', sizeof d);
  };
  for (size_t length = 0; length < 300; length += length < 100 ? 1 : 7) {
    for (size_t behind = 0; behind <= 100; behind += length % 2 * 2 + 1) {
      char* const src = page.data() + page.size() - 1 - behind - length;
      src[length] = 0;
      for (const size_t room : {length, length + 1, sizeof d}) {
        for (const size_t limit : {kWhole, length / 2, length, length + 1, sizeof d - 1}) {
          if (room == 0) continue;
          fill();
          const size_t taken = std::min(length, limit);
          const bool fits = taken < room;
          if (fits) std::copy_n(src, taken, expected);
          expected[fits ? taken : 0] = 0;
          ASSERT_EQ(fits ? EOK : ERANGE_CLEARED,
                    limit == kWhole ? strcpy_s(d, room, src) : strncpy_s(d, room, src, limit));
          ASSERT_EQ(0, memcmp(expected, d, sizeof d)) << length << " " << room << " " << limit;
        }
      }
      const size_t used = behind % 8, all = used + length;
      for (const size_t room : {all, all + 1}) {
        if (length == 0) continue;
        fill();
        d[used] = 0;
        std::copy_n(src, length, expected + used);
        expected[room > all ? all : 0] = 0;
        ASSERT_EQ(room > all ? EOK : ERANGE_CLEARED, strcat_s(d, room, src));
        ASSERT_EQ(0, memcmp(expected, d, sizeof d)) << length << " " << room;
      }
      src[length] = 'x';
    }
  }
}

TEST_P(ShortStrings, UnterminatedAtTheEndOfAPage) {
  for (size_t length = 1; length <= 1100; ++length) {
    Guarded<char> src(length);
    std::fill_n(src.data(), length, 'x');
    char d[1101];
    EXPECT_EQ(EOK, strncpy_s(d, length + 1, src.data(), length));
    EXPECT_EQ(length, strnlen(d, sizeof d));
    EXPECT_EQ(ERANGE_CLEARED, strcpy_s(d, length, src.data()));
    EXPECT_EQ(ERANGE_CLEARED, strncpy_s(d, length, src.data(), length));
    EXPECT_EQ(length - 1, strnlen(d + 1, sizeof d - 1));
    EXPECT_EQ(ERANGE_CLEARED, strcat_s(d, length, src.data()));
    EXPECT_EQ(EINVAL_CLEARED, strcat_s(src.data(), length, "y"));
  }
}

// An unterminated source or destination is never read past the destination's size.
TYPED_TEST(Strings, NothingIsReadPastTheRoom) {
  using C = TypeParam;
  using Char = typename C::Char;
  Guarded<Char> src(6), full(6);
  std::fill_n(src.data(), 6, 'a');
  std::fill_n(full.data(), 6, 'b');
  Char d[8] = {};
  EXPECT_EQ(C::kCopyDoesNotFit, C::copy(d, 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, C::copy(d, 6, src.data(), 100));
  EXPECT_EQ(ERANGE_CLEARED, C::append(d, 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, C::append(d, 6, src.data(), 100));
  EXPECT_EQ(EOK, C::copy(d, 7, src.data(), 6));
  EXPECT_EQ(EOVERLAP_CLEARED, C::copy(d + 1, 6, d, 5));
  EXPECT_EQ(EINVAL_CLEARED, C::append(full.data(), 6, src.data()));
  EXPECT_EQ(ERANGE_CLEARED, C::append(full.data(), 6, src.data()));
  EXPECT_EQ(0, full[0]);
  EXPECT_EQ('a', full[5]);
}

}  // namespace
