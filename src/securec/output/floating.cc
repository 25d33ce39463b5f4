#include "securec/output/floating.h"

#include <float.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <new>

#include "securec/output/keep_errno.h"
#include "securec/output/transcode.h"

namespace plx::securec {
namespace {

constexpr int kDefaultPrecision = 6;

template <typename Float>
struct FloatLimits;

// kFrame is what a number may need besides the digits of its precision. kMaxDigits bounds the
// digits that a value has behind the point: one for each binary place down to the smallest.
template <>
struct FloatLimits<double> {
  static constexpr int kFrame = 349;
  static constexpr int kMaxDigits = DBL_MANT_DIG - DBL_MIN_EXP;
  static_assert(DBL_MAX_10_EXP + kMaxDigits + 8 < kFrame + kMaxDigits, "every number fits");
};
template <>
struct FloatLimits<long double> {
  static constexpr int kFrame = 4972;
  static constexpr int kMaxDigits = LDBL_MANT_DIG - LDBL_MIN_EXP;
  static_assert(LDBL_MAX_10_EXP + kMaxDigits + 8 < kFrame + kMaxDigits, "every number fits");
};

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }

constexpr bool is_fixed(char letter) { return letter == 'f' || letter == 'F'; }
constexpr bool is_general(char letter) { return letter == 'g' || letter == 'G'; }

// The conversion anew, from what was understood of it. The field's width is our own affair, so a
// wide one costs the platform nothing.
struct PlatformFormat {
  char text[9];  // "%# +.*Lf"

  explicit PlatformFormat(const Conversion& conversion) {
    char* end = text;
    *end++ = '%';
    if (conversion.has(Conversion::kAlternate)) *end++ = '#';
    if (conversion.has(Conversion::kSpace)) *end++ = ' ';
    if (conversion.has(Conversion::kPlus)) *end++ = '+';
    *end++ = '.';
    *end++ = '*';
    if (conversion.has(Conversion::kLongDouble)) *end++ = 'L';
    *end++ = conversion.letter;
    *end = 0;
  }
};

// Takes the platform's text apart, as far as zeros go between.
FloatField frame(const Conversion& conversion, const char* text, size_t size, int missing_digits) {
  FloatField field;
  const char* const end = text + size;
  const bool has_sign = *text == '-' || *text == '+' || *text == ' ';
  const bool is_finite = is_digit(text[has_sign ? 1 : 0]);
  field.zero_pads = is_finite && conversion.pads_with_zeros();
  if (has_sign && field.zero_pads) field.prefix.add(*text++);
  field.body = text;
  field.body_size = field.text_columns = static_cast<size_t>(end - text);
  if (!std::all_of(text, end, is_ascii))
    field.text_columns = count_characters(text, field.body_size);
  // A general number drops the zeros at its end, unless told to keep them.
  if (missing_digits == 0 || !is_finite ||
      (is_general(conversion.letter) && !conversion.has(Conversion::kAlternate))) {
    return field;
  }
  field.zeros = static_cast<size_t>(missing_digits);
  if (!is_fixed(conversion.letter)) {
    const char* exponent = std::find_if(text, end, [](char c) { return c == 'e' || c == 'E'; });
    field.tail_size = static_cast<size_t>(end - exponent);
    field.body_size -= field.tail_size;
  }
  return field;
}

}  // namespace

char* FloatText::reserve(size_t size) {
  heap_.reset(new (std::nothrow) char[size]);
  return heap_.get();
}

template <typename Float>
bool FloatText::format_value(const Conversion& conversion, Float value, FloatField* field) {
  using Limits = FloatLimits<Float>;
  const int precision = conversion.has_precision() ? conversion.precision : kDefaultPrecision;
  if (precision > INT_MAX - Limits::kFrame) return false;
  // Digits beyond those that the value has are zeros. The platform takes seconds for many of them,
  // and memory for each; we take neither.
  const int digits = std::min(precision, Limits::kMaxDigits);
  const size_t wanted = static_cast<size_t>(std::max(precision + Limits::kFrame, conversion.width));
  char* buffer = inline_;
  size_t size = sizeof inline_;
  // Callers depend on where the heap begins: without memory just these print nothing.
  if (wanted >= kInlineSize) {
    size = std::min(wanted, static_cast<size_t>(digits + Limits::kFrame)) + 2;
    buffer = reserve(size);
    if (buffer == nullptr) return false;
  }
  const PlatformFormat format(conversion);
  const int length = snprintf(buffer, size, format.text, digits, value);
  if (length < 0 || static_cast<size_t>(length) >= size) return false;
  *field = frame(conversion, buffer, static_cast<size_t>(length), precision - digits);
  return true;
}

bool FloatText::format(const Conversion& conversion, Arguments* arguments, FloatField* field) {
  const KeepErrno keep;
  if (conversion.has(Conversion::kLongDouble)) {
    return format_value(conversion, va_arg(arguments->list, long double), field);
  }
  return format_value(conversion, va_arg(arguments->list, double), field);
}

}  // namespace plx::securec
