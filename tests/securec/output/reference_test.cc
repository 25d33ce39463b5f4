// Flags, widths, precisions, sizes and letters against the C library, in values at which numbers
// change their form, for both widths of output. Where we differ on purpose the C library is asked
// for the same in other words. fuzz/fuzz_output.cc compares any values, and numbers given by stars.
#include <ctype.h>
#include <float.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <math.h>

#include <algorithm>
#include <vector>

#include "securec/output/engines.h"

namespace {

using plx_test::Engine;
using plx_test::text_of;
using std::string;

template <typename Char>
class Reference : public testing::Test {
 protected:
  // What we are given, what the C library is given, the arguments of both.
  template <typename... Args>
  void compare(const string& ours, const string& platform, Args... args) {
    const auto our_format = text_of<Char>(ours), their_format = text_of<Char>(platform);
    const int got = Engine<Char>::ours(mine_.data(), kCount, our_format.c_str(), args...);
    const int wanted =
        Engine<Char>::platform(theirs_.data(), kCount, their_format.c_str(), args...);
    const bool same = got == wanted && got >= 0 &&
                      std::equal(mine_.begin(), mine_.begin() + got + 1, theirs_.begin());
    EXPECT_TRUE(same) << ours << " gives " << got << ", " << platform << " gives " << wanted;
  }

  // Under every set of flags.
  template <typename Value>
  void compare_all(const string& letter, const std::vector<Value>& values) {
    for (int set = 0; set < 32; ++set) {
      string flags;
      for (int bit = 0; bit < 5; ++bit) flags += set & 1 << bit ? string(1, "-+ #0"[bit]) : "";
      for (const char* size : {"", "2", "17", ".", ".1", ".14", "12.", "9.4", "17.15"}) {
        // Zero padding of no width costs the C library of 32 bits the digit of a wide zero.
        if (sizeof(long) == 4 && (set & 16) != 0 && !isdigit(*size)) continue;
        const string format = "<%" + flags + size + letter + ">";
        for (const Value value : values) compare(format, format, value);
      }
    }
  }

 private:
  static constexpr size_t kCount = 24000;
  std::vector<Char> mine_ = std::vector<Char>(kCount), theirs_ = std::vector<Char>(kCount);
};

using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Reference, Widths);

template <typename T>
std::vector<T> integers() {
  const long long values[] = {0,     1,       -1,         7,           200,       -129,
                              65536, INT_MIN, 4294967296, 99999999999, LLONG_MAX, LLONG_MIN};
  return {std::begin(values), std::end(values)};
}

TYPED_TEST(Reference, Fields) {
  const std::vector<double> values = {0.0,      -0.0,      1.5,         -2.5,     123456.789,
                                      999999.5, 1e-10,     DBL_MAX,     -DBL_MIN, 5e-324,
                                      HUGE_VAL, -HUGE_VAL, std::nan("")};
  for (const char* letter : {"d", "i", "u", "o", "x", "X"}) {
    for (const char* size : {"hh", "h", ""}) {
      this->compare_all(string(size) + letter, integers<int>());
    }
    this->compare_all(string("l") + letter, integers<long>());
    this->compare_all(string("z") + letter, integers<size_t>());
    this->compare_all(string("ll") + letter, integers<long long>());
  }
  for (const string letter : {"e", "f", "g", "E", "F", "G"}) {
    this->compare_all(letter, values);
    this->compare_all("L" + letter, std::vector<long double>{0.1L, -1e300L});
  }
  this->compare_all("s", std::vector<const char*>{"", "a", "longer than any of the fields"});
  this->compare_all("ls", std::vector<const wchar_t*>{L"", L"wide text, and long"});
  this->compare_all("c", std::vector<int>{'x', 0, 'x' + 0x12300});
  this->compare_all("lc", std::vector<wint_t>{L'x', 0});
}

// Where a number gets one digit more, in each base.
TYPED_TEST(Reference, EveryLengthOfNumber) {
  std::vector<unsigned long long> values;
  for (int bit = 0; bit < 64; ++bit) values.push_back(1ULL << bit);
  for (unsigned long long power = 1; power < ULLONG_MAX / 10; power *= 10)
    values.push_back(power * 10);
  for (const unsigned long long value : values) {
    for (const unsigned long long v : {value - 1, value}) {
      this->compare("%llu %llX %llo", "%llu %llX %llo", v, v, v);
    }
  }
}

// Digits beyond those that the value has are not the platform's.
TYPED_TEST(Reference, FloatsOfManyDigits) {
  for (const string field : {"%", "%#", "%01500", "%-+1500"}) {
    for (const char* letter : {"e", "f", "g", "E", "G"}) {
      for (const char* precision : {".163", ".767", ".1074", ".1075", ".1300"}) {
        const string format = field + precision + letter;
        for (const double value : {0.0, 1.0 / 3, -DBL_MAX, 5e-324, HUGE_VAL}) {
          this->compare(format, format, value);
        }
      }
      const string format = field + ".17000L" + letter;
      for (const long double value : {1.0L / 3, -LDBL_MIN}) this->compare(format, format, value);
    }
  }
}

TYPED_TEST(Reference, OddFormats) {
  const long long large = 0x123456789abcdef;
  this->compare("", "");
  this->compare("100%% of %d%%%s.", "100%% of %d%%%s.", 7, "it");
  // A flag behind a width is a flag, and digits behind it start the width anew.
  this->compare("%5-d|%5-7d|%5+ #0d|%5-*d|", "%-5d|%-7d|%0+5d|%-*d|", 3, 4, 5, 7, 6);
  // Arguments behind those that are handed over in registers.
  const string many = "%d%d%d%.*d%*d%c%lc|%g%g%g%g%g%g%g%g%g";
  this->compare(many, many, 1, 2, 3, 4, 5, 6, 7, 'c', wint_t{L'd'}, 1., 2., 3., 4., 5., 6., 7., 8.,
                9.5);
  // Nothing is taken of a number beyond its size.
  const long wide = static_cast<long>(large);
  this->compare("%d %u %x", "%d %u %x", wide, wide, wide);
  // More than 512 digits are not asked of an integer.
  this->compare("%.513d %#600.9999x", "%.512d %#600.512x", 3, 4);
  // Signs are for signed numbers, and a pointer is none. Its zero padding holds beside a precision:
  // as many digits as the width leaves room for.
  const unsigned long p = 0xbeef;
  this->compare("%p|%+p|% 17p|%#.6p", "%#lx|%#lx|%#17lx|%#.6lx", p, p, p, p);
  this->compare("%020.9p|%-020.9p|%05.9p|%012p", "%#20.18lx|%-#20.9lx|%#.9lx|%#12.10lx", p, p, p,
                p);
  // A null pointer is a text that no precision cuts, nor is there a part of a null text's.
  this->compare("%.2p|%-9.1p|%+09p", "(nil)|(nil)    |    (nil)", 0L, 0L, 0L);
  this->compare("%.3s|%-9.1ls|%7s", "(nu|(        | (null)", 0L, 0L, 0L);
  // Sizes that the C library does not know, knows otherwise, or does not combine.
  this->compare("%I64d %jd %Ld %qd", "%lld %lld %lld %lld", large, large, large, large);
  this->compare("%hlld %lllx", "%lld %llx", large, large);
  this->compare("%Id %td %Ix", "%zd %zd %zx", ptrdiff_t{-5}, ptrdiff_t{-6}, size_t{7});
  this->compare("%Ii %Io %Iu %IX", "%zi %zo %zu %zX", ptrdiff_t{-5}, size_t{9}, ~size_t{0},
                ~size_t{0});
  this->compare("%I32d %wd %Nd %Zd", "%d %d %d %d", 1, -2, 3, -4);
  this->compare("%I64I32d %lI32d %hhhd %lhd", "%d %d %hhd %hd", -1, -2, 300, 70000);
  this->compare("%lI32s %ws %4.2S", "%ls %ls %4.2ls", L"wide", L"wide", L"wide");
  this->compare("%wc %C", "%lc %lc", wint_t{L'x'}, wint_t{L'y'});
  // 'll' and 'L' are no marks of wide text.
  this->compare("%lls %Ls %hhs %hS %hls", "%s %s %s %s %s", "a", "b", "c", "d", "e");
  this->compare("%hC", "%c", 'x');
  // 'L' and 'q' make a long double, and nothing else does.
  this->compare("%Le %qG", "%Le %LG", 0.1L, -1e300L);
  this->compare("%le %llf %hg %jE %I64F", "%e %f %g %E %F", 0.1, 0.2, 0.3, 0.4, 0.5);
  // An 'I' that is no size is printed, and what follows is text.
  this->compare("%Is %5I%% %I6d %I", "Is I%% I6d I");
}

}  // namespace
