// Every combination of flags, widths, precisions, sizes and letters against the C library, for
// both widths of output. Where we differ on purpose the C library is asked for the same in other
// words, with the reason beside it.
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

struct Size {
  const char* text;  // width and precision as we are given them
  int width, precision;
};
const Size kSizes[] = {{"", 0, -1},     {"2", 2, -1},   {"17", 17, -1}, {".", 0, 0},
                       {".1", 0, 1},    {".14", 0, 14}, {"12.", 12, 0}, {"9.4", 9, 4},
                       {"*.*", 17, 15}, {"*.*", 9, -7}, {"*.*", -9, 4}, {"*.*", -12, -1}};

struct Field {
  string flags;
  Size size;

  bool has(char flag) const { return flags.find(flag) != string::npos; }
  string ours(const string& letter) const { return "<%" + flags + size.text + letter + ">"; }
  // The C library gets the numbers of the stars spelled out.
  string platform(const string& letter) const {
    string text = "<%" + flags + (size.width < 0 ? "-" : "");
    if (size.width != 0) text += std::to_string(abs(size.width));
    if (size.precision >= 0) text += '.' + std::to_string(size.precision);
    return text + letter + ">";
  }
  Field without(const string& removed) const {
    Field field = {"", size};
    for (char flag : flags) field.flags += removed.find(flag) + 1 != 0 ? "" : string(1, flag);
    return field;
  }
};

std::vector<Field> all_fields() {
  std::vector<Field> fields;
  for (int set = 0; set < 32; ++set) {
    string flags;
    for (int bit = 0; bit < 5; ++bit) flags += set & 1 << bit ? string(1, "-+ #0"[bit]) : "";
    for (const Size& size : kSizes) fields.push_back({flags, size});
  }
  return fields;
}

template <typename Char>
class Reference : public testing::Test {
 protected:
  static constexpr size_t kCount = 24000;

  // What we are given, what the C library is given, the arguments of both.
  template <typename... Args>
  void compare(const string& ours, const string& platform, Args... args) {
    const auto our_format = text_of<Char>(ours), their_format = text_of<Char>(platform);
    const int got = Engine<Char>::ours(mine_.data(), kCount, our_format.c_str(), args...);
    check(ours, got, platform,
          Engine<Char>::platform(theirs_.data(), kCount, their_format.c_str(), args...));
  }

  template <typename Value, typename TheirValue>
  void compare(const Field& field, const string& letter, const std::vector<Value>& values,
               const Field& their_field, const string& their_letter,
               const std::vector<TheirValue>& their_values) {
    const string ours = field.ours(letter), theirs = their_field.platform(their_letter);
    const auto our_format = text_of<Char>(ours), their_format = text_of<Char>(theirs);
    const auto call = Engine<Char>::ours;
    for (size_t i = 0; i < values.size(); ++i) {
      const int got = field.size.text[0] == '*'
                          ? call(mine_.data(), kCount, our_format.c_str(), field.size.width,
                                 field.size.precision, values[i])
                          : call(mine_.data(), kCount, our_format.c_str(), values[i]);
      check(ours, got, theirs,
            Engine<Char>::platform(theirs_.data(), kCount, their_format.c_str(), their_values[i]));
    }
  }

  template <typename Value>
  void compare(const Field& field, const string& letter, const std::vector<Value>& values,
               const string& their_letter = "") {
    compare(field, letter, values, field, their_letter.empty() ? letter : their_letter, values);
  }

 private:
  void check(const string& ours, int got, const string& platform, int wanted) {
    const bool same = got == wanted && got >= 0 &&
                      std::equal(mine_.begin(), mine_.begin() + got + 1, theirs_.begin());
    EXPECT_TRUE(same) << ours << " gives " << got << ", " << platform << " gives " << wanted;
  }

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

TYPED_TEST(Reference, Integers) {
  for (const Field& field : all_fields()) {
    // Without a width '0' says nothing, but on 32 bits it costs the C library the digit of a wide
    // zero of 64 bits.
    const Field theirs = field.size.width == 0 ? field.without("0") : field;
    const auto agree = [&](const string& letter, const auto& values) {
      this->compare(field, letter, values, theirs, letter, values);
    };
    for (const char* letter : {"d", "i", "u", "o", "x", "X"}) {
      for (const char* size : {"hh", "h", ""}) agree(string(size) + letter, integers<int>());
      agree(string("l") + letter, integers<long>());
      agree(string("z") + letter, integers<size_t>());
      agree(string("ll") + letter, integers<long long>());
    }
  }
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

TYPED_TEST(Reference, Pointers) {
  for (const Field& field : all_fields()) {
    // Signs are for signed numbers, and a pointer is none.
    Field theirs = field.without("+ 0");
    theirs.flags += '#';
    // Zero padding holds beside a precision: as many digits as the width leaves room for.
    if (field.has('0') && !field.has('-')) {
      theirs.size.precision = std::max(theirs.size.precision, field.size.width - 2);
    }
    this->compare(field, "p", std::vector<void*>{reinterpret_cast<void*>(0xbeef)}, theirs, "lx",
                  std::vector<unsigned long>{0xbeef});
    // A null pointer is a text that no precision cuts.
    theirs.size.precision = -1;
    this->compare(field, "p", std::vector<void*>{nullptr}, theirs, "s",
                  std::vector<const char*>{"(nil)"});
  }
}

TYPED_TEST(Reference, TextsAndCharacters) {
  const std::vector<const char*> texts = {"", "a", "some more text",
                                          "longer than any of the fields"};
  const std::vector<const wchar_t*> wide_texts = {L"", L"wide text, and long"};
  for (const Field& field : all_fields()) {
    for (const char* letter : {"s", "hS", "hls"}) this->compare(field, letter, texts, "s");
    for (const char* letter : {"ls", "ws", "S"}) this->compare(field, letter, wide_texts, "ls");
    // The C library prints nothing rather than a part of "(null)".
    for (const char* letter : {"s", "ls"}) {
      this->compare(field, letter, std::vector<void*>{nullptr}, field, "s",
                    std::vector<const char*>{"(null)"});
    }
    for (const char* letter : {"c", "hC"}) {
      this->compare(field, letter, std::vector<int>{'x', 0, 'x' + 0x12300}, "c");
    }
    for (const char* letter : {"lc", "wc", "C"}) {
      this->compare(field, letter, std::vector<wint_t>{L'x', 0}, "lc");
    }
  }
}

TYPED_TEST(Reference, Floats) {
  const std::vector<double> values = {0.0,      -0.0,      1.5,         -2.5,     123456.789,
                                      999999.5, 1e-10,     DBL_MAX,     -DBL_MIN, 5e-324,
                                      HUGE_VAL, -HUGE_VAL, std::nan("")};
  const std::vector<long double> long_values = {0.1L, -1e300L};
  for (const Field& field : all_fields()) {
    for (const string letter : {"e", "f", "g", "E", "F", "G"}) {
      this->compare(field, letter, values);
      for (const char* size : {"L", "q"}) {
        this->compare(field, size + letter, long_values, "L" + letter);
      }
      // No other size makes a long double.
      for (const char* size : {"l", "ll", "h", "j", "I64"}) {
        this->compare(field, size + letter, std::vector<double>{0.1}, letter);
      }
    }
  }
}

// Digits beyond those that the value has are not the platform's.
TYPED_TEST(Reference, FloatsOfManyDigits) {
  const std::vector<double> values = {0.0, 1.0 / 3, -DBL_MAX, 5e-324, HUGE_VAL};
  for (const char* flags : {"", "#", "0", "-+"}) {
    for (const int width : {0, 1500}) {
      for (const string letter : {"e", "f", "g", "E", "G"}) {
        for (const int precision : {163, 767, 1074, 1075, 1300}) {
          this->compare(Field{flags, {"*.*", width, precision}}, letter, values);
        }
        this->compare(Field{flags, {"*.*", width, 17000}}, "L" + letter,
                      std::vector<long double>{1.0L / 3, -LDBL_MIN});
      }
    }
  }
}

TYPED_TEST(Reference, OddFormats) {
  const long long large = 0x123456789abcdef;
  this->compare("", "");
  this->compare("100%% of %d%%%s.", "100%% of %d%%%s.", 7, "it");
  // A flag behind a width is a flag, and digits behind it start the width anew.
  this->compare("%5-d|%5-7d|%5+ #0d|%5-*d|", "%-5d|%-7d|%0+5d|%-*d|", 3, 4, 5, 7, 6);
  // More than 512 digits are not asked of an integer.
  this->compare("%.513d %#600.9999x", "%.512d %#600.512x", 3, 4);
  // Sizes that the C library does not know, knows otherwise, or does not combine.
  this->compare("%I64d %jd %Ld %qd", "%lld %lld %lld %lld", large, large, large, large);
  this->compare("%hlld %lllx", "%lld %llx", large, large);
  this->compare("%Id %td %Ix", "%zd %zd %zx", ptrdiff_t{-5}, ptrdiff_t{-6}, size_t{7});
  this->compare("%I32d %wd %Nd %Zd", "%d %d %d %d", 1, -2, 3, -4);
  this->compare("%I64I32d %lI32d %hhhd %lhd", "%d %d %hhd %hd", -1, -2, 300, 70000);
  this->compare("%lI32s", "%ls", L"wide");
  // 'll' and 'L' are no marks of wide text.
  this->compare("%lls %Ls %hhs", "%s %s %s", "a", "b", "c");
  // An 'I' that is no size is printed, and what follows is text.
  this->compare("%Is %5I%% %I6d %I", "Is I%% I6d I");
}

}  // namespace
