#include <gtest/gtest.h>
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "securec/memory.h"
#include "support/guarded.h"

namespace {

constexpr size_t kTooLarge = 0x80000000u;
constexpr size_t kAllOnes = static_cast<size_t>(-1);

using Fill = errno_t (*)(void*, size_t, int, size_t);
using Copy = errno_t (*)(void*, size_t, const void*, size_t);

struct NamedFill {
  const char* name;
  Fill call;
  bool tests_sign;
};
constexpr NamedFill kFills[] = {{"memset_s", memset_s, true},
                                {"memset_sOptAsm", memset_sOptAsm, true},
                                {"memset_sOptTc", memset_sOptTc, false},
                                {"fill_memory", plx::securec::fill_memory<>, true}};

struct NamedCopy {
  const char* name;
  Copy call;
  bool tests_sign;
  bool may_overlap;
};
constexpr NamedCopy kCopies[] = {{"memcpy_s", memcpy_s, true, false},
                                 {"memcpy_sOptAsm", memcpy_sOptAsm, true, false},
                                 {"memcpy_sOptTc", memcpy_sOptTc, false, false},
                                 {"memmove_s", memmove_s, true, true},
                                 {"copy_memory", plx::securec::copy_memory<>, true, false},
                                 {"move_memory", plx::securec::move_memory<>, true, true}};

TEST(Memory, FillRefusals) {
  struct Row {
    bool null_dst;
    size_t dst_size;
    size_t count;
    errno_t code;
    size_t filled;  // bytes that hold the value afterwards
  };
  const Row rows[] = {
      {false, 10, 4, EOK, 4},
      {false, 10, 10, EOK, 10},
      {false, 10, 0, EOK, 0},
      {false, 0, 0, EOK, 0},  // callers depend on this one
      {false, 0, 1, ERANGE, 0},
      {true, 0, 0, ERANGE, 0},
      {true, 10, 1, EINVAL, 0},
      {true, kTooLarge, 1, ERANGE, 0},
      {false, 10, 11, ERANGE_CLEARED, 10},
      {false, 10, kAllOnes, ERANGE_CLEARED, 10},
      {false, kTooLarge, kAllOnes, ERANGE, 0},
  };
  for (const NamedFill& fill : kFills) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << fill.name << " " << row.dst_size << " " << row.count);
      std::string image(16, '.');
      EXPECT_EQ(row.code,
                fill.call(row.null_dst ? nullptr : &image[0], row.dst_size, 0x141, row.count));
      EXPECT_EQ(std::string(row.filled, 'A') + std::string(16 - row.filled, '.'), image);
    }
    std::string image(16, '.');
    EXPECT_EQ(fill.tests_sign ? ERANGE : EOK, fill.call(&image[0], kTooLarge, 'A', 4)) << fill.name;
    EXPECT_EQ(fill.tests_sign ? '.' : 'A', image[3]) << fill.name;
  }
}

TEST(Memory, CopyRefusals) {
  // Offsets into one buffer of 24 letters; -1 is null.
  struct Row {
    int dst;
    size_t dst_size;
    int src;
    size_t count;
    errno_t code;
    size_t cleared;  // bytes zeroed from dst on; 0 means untouched or copied
  };
  const Row rows[] = {
      {0, 10, 12, 5, EOK, 0},
      {0, 10, 12, 0, EOK, 0},
      {0, 10, 0, 5, EOK, 0},
      {0, 0, 12, 0, ERANGE, 0},
      {0, kTooLarge, 12, kAllOnes, ERANGE, 0},
      {0, kTooLarge, 12, 0, ERANGE, 0},
      {-1, 0, -1, 9, ERANGE, 0},
      {-1, 10, -1, 5, EINVAL, 0},
      {0, 10, -1, 5, EINVAL_CLEARED, 10},
      {0, 10, -1, 11, EINVAL_CLEARED, 10},
      {0, 10, 12, 11, ERANGE_CLEARED, 10},
      {0, 10, 0, 11, ERANGE_CLEARED, 10},
      {0, 10, 2, 5, EOVERLAP_CLEARED, 10},
      {2, 10, 0, 5, EOVERLAP_CLEARED, 10},
      {0, 10, 5, 5, EOK, 0},  // adjacent blocks do not overlap
      {5, 10, 0, 5, EOK, 0},
  };
  const std::string before = "abcdefghijklmnopqrstuvwx";
  for (const NamedCopy& copy : kCopies) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << copy.name << " " << row.dst << " " << row.dst_size << " "
                                      << row.src << " " << row.count);
      std::string image = before;
      const bool moves = copy.may_overlap && row.code == EOVERLAP_CLEARED;
      const errno_t code = copy.call(row.dst < 0 ? nullptr : &image[row.dst], row.dst_size,
                                     row.src < 0 ? nullptr : &image[row.src], row.count);
      std::string expected = before;
      if (row.code == EOK || moves) {
        expected.replace(row.dst, row.count, before, row.src, row.count);
      } else if (row.cleared != 0) {
        expected.replace(row.dst, row.cleared, row.cleared, '\0');
      }
      EXPECT_EQ(moves ? EOK : row.code, code);
      EXPECT_EQ(expected, image);
    }
    std::string image = before;
    EXPECT_EQ(copy.tests_sign ? ERANGE : EOK, copy.call(&image[0], kTooLarge, &image[12], 4));
    EXPECT_EQ(copy.tests_sign ? "abcd" : "mnop", image.substr(0, 4)) << copy.name;
  }
}

// Every size around the fast paths, and some above, at every offset in a cache line, from the first
// byte behind a guard page and up to the last before one.
TEST(Memory, EverySmallSizeAndAlignment) {
  constexpr size_t kPage = 4096, kWindow = 280;
  plx_test::Guarded<unsigned char> dst(kPage), src(kPage);
  for (size_t i = 0; i < kPage; ++i) src[i] = static_cast<unsigned char>(i * 7 + i / 64 + 1);
  for (size_t count = 0; count <= 200; count += count < 72 ? 1 : 64) {
    for (size_t place = 0; place < 128; ++place) {
      const bool is_at_end = place % 2 != 0;
      const size_t offset = place / 2, src_offset = offset * 5 % 64;
      unsigned char* window = is_at_end ? dst.data() + kPage - kWindow : dst.data();
      unsigned char* to = is_at_end ? window + kWindow - count - offset : window + offset;
      const unsigned char* from =
          is_at_end ? src.data() + kPage - count - src_offset : src.data() + src_offset;
      std::vector<unsigned char> expected(kWindow, 0xCC);
      const size_t at = static_cast<size_t>(to - window);
      for (const NamedCopy& copy : kCopies) {
        memset(window, 0xCC, kWindow);
        std::copy_n(from, count, expected.begin() + at);
        ASSERT_EQ(EOK, copy.call(to, count + 1, from, count));
        ASSERT_EQ(0, memcmp(expected.data(), window, kWindow))
            << copy.name << " " << count << " " << offset;
      }
      for (const NamedFill& fill : kFills) {
        for (int c : {0, 0xFF, 0x5A, -1}) {
          memset(window, 0xCC, kWindow);
          std::fill_n(expected.begin() + at, count, static_cast<unsigned char>(c));
          ASSERT_EQ(EOK, fill.call(to, count, c, count));
          ASSERT_EQ(0, memcmp(expected.data(), window, kWindow))
              << fill.name << " " << count << " " << c;
        }
      }
    }
  }
}

TEST(Memory, SmallMovesOverlapInEveryWay) {
  const auto checked = [](void* to, const void* from, size_t count) {
    EXPECT_EQ(EOK, memmove_s(to, count, from, count));
  };
  for (void (*const move)(void*, const void*, size_t) : {+checked, util_memmove}) {
    for (size_t count = 1; count <= 70; ++count) {
      for (size_t to = 0; to <= 140; ++to) {
        unsigned char image[210], expected[210];
        for (size_t i = 0; i < sizeof image; ++i)
          image[i] = expected[i] = static_cast<unsigned char>(i);
        std::copy_n(image + 70, count, expected + to);
        move(image + to, image + 70, count);
        ASSERT_EQ(0, memcmp(expected, image, sizeof image)) << count << " to " << to;
      }
    }
  }
  util_memmove(nullptr, nullptr, 0);
}

TEST(Memory, WideRefusals) {
  const size_t too_large = SECURE_WCHAR_LIMIT + 1;
  for (auto* operation : {wmemcpy_s, wmemmove_s}) {
    wchar_t d[8] = L"abcdefg";
    const wchar_t s[8] = L"1234567";
    EXPECT_EQ(ERANGE, operation(d, 0, s, 1));
    EXPECT_EQ(ERANGE, operation(d, too_large, s, 1));
    EXPECT_EQ(ERANGE, operation(nullptr, 4, s, 5));  // ERANGE, not EINVAL: callers depend on it
    EXPECT_EQ(EINVAL, operation(nullptr, 4, s, 4));
    EXPECT_EQ(0, wcscmp(d, L"abcdefg"));
    EXPECT_EQ(EOK, operation(d, 4, s, 2));
    EXPECT_EQ(0, wcscmp(d, L"12cdefg"));
    EXPECT_EQ(ERANGE_CLEARED, operation(d, 4, s, 5));
    EXPECT_TRUE(std::all_of(d, d + 4, [](wchar_t c) { return c == 0; }));
    EXPECT_EQ(0, wcscmp(d + 4, L"efg"));
    EXPECT_EQ(EINVAL_CLEARED, operation(d + 4, 2, nullptr, 1));
    EXPECT_EQ(0, wcscmp(d + 6, L"g"));
  }
  wchar_t d[4] = L"abc";
  EXPECT_EQ(EOVERLAP_CLEARED, wmemcpy_s(d + 1, 2, d, 2));
  EXPECT_EQ(0, memcmp(d, L"a\0\0", sizeof d));
}

TEST(Memory, VersionReport) {
  char buf[64];
  unsigned short number = 0;
  EXPECT_EQ(EOK, getQxSecureCVersion(buf, sizeof buf, &number));
  EXPECT_STREQ("Orvane Secure C V100R001C01SPC004", buf);
  EXPECT_EQ(0x0504, number);
  EXPECT_EQ(EOK, getQxSecureCVersion(buf, 34, nullptr));
  EXPECT_EQ(ERANGE_CLEARED, getQxSecureCVersion(buf, 33, nullptr));
  EXPECT_STREQ("", buf);
  number = 0;
  buf[0] = 'x';
  EXPECT_EQ(reinterpret_cast<intptr_t>(buf), getQxSecureCVersion(buf, 0, &number));
  EXPECT_EQ(0, getQxSecureCVersion(nullptr, 64, &number));
  EXPECT_EQ('x', buf[0]);
  EXPECT_EQ(0x0504, number);
}

}  // namespace
