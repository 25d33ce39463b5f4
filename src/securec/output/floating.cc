#include "securec/output/floating.h"

#include <float.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <new>

#include "securec/keep_errno.h"
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

constexpr bool is_fixed(char letter) { return letter == 'f' || letter == 'F'; }
constexpr bool is_general(char letter) { return letter == 'g' || letter == 'G'; }

// The conversion anew, from what was understood of it. The field's width is our own affair, so that
// a wide one costs the platform nothing.
struct PlatformFormat {
  char text[16];  // "%# +.16445Lf"

  PlatformFormat(const Conversion& conversion, int precision, const char* size) {
    char* end = text;
    *end++ = '%';
    if (conversion.has(Conversion::kAlternate)) *end++ = '#';
    if (conversion.has(Conversion::kSpace)) *end++ = ' ';
    if (conversion.has(Conversion::kPlus)) *end++ = '+';
    *end++ = '.';
    const Digits digits = {static_cast<uint64_t>(precision), 0, false};
    end += digits.count();
    digits.write(end);
    while (*size != 0) *end++ = *size++;
    *end++ = conversion.letter;
    *end = 0;
  }
};

// The C library prints one number, in at most `size` bytes. Where it has the functions of C23 for
// just that, they save the walk through a format. Android has none of them, whosever headers it is
// compiled against.
#if defined(__GLIBC_PREREQ) && !defined(__ANDROID__)
#if __GLIBC_PREREQ(2, 25)
#define PLX_HAS_STRFROM 1
#endif
#endif

int print_number(char* dst, size_t size, const Conversion& conversion, int precision,
                 double value) {
  const PlatformFormat format(conversion, precision, "");
#ifdef PLX_HAS_STRFROM
  constexpr unsigned kAnyFlag = Conversion::kAlternate | Conversion::kSpace | Conversion::kPlus;
  if (!conversion.has(kAnyFlag)) return strfromd(dst, size, format.text, value);
#endif
  return snprintf(dst, size, format.text, value);
}

int print_number(char* dst, size_t size, const Conversion& conversion, int precision,
                 long double value) {
  return snprintf(dst, size, PlatformFormat(conversion, precision, "L").text, value);
}

}  // namespace

char* FloatText::reserve(size_t size) {
  heap_.reset(new (std::nothrow) char[size]);
  return heap_.get();
}

template <typename Float>
inline bool FloatText::print_value(const Conversion& conversion, Float value) {
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
  const int length = print_number(buffer, size, conversion, digits, value);
  size_ = static_cast<size_t>(length);
  missing_digits_ = static_cast<size_t>(precision - digits);
  return length >= 0 && size_ < size;  // GCOVR_EXCL_BR_LINE: the sizes above suffice
}

bool FloatText::print(const Conversion& conversion, Arguments* arguments) {
  const KeepErrno keep;
  if (conversion.has(Conversion::kLongDouble)) {
    return print_value(conversion, va_arg(arguments->list, long double));
  }
  return print_value(conversion, va_arg(arguments->list, double));
}

FloatField FloatText::frame(const Conversion& conversion) const {
  FloatField field;
  const char* begin = text();
  const char* const end = begin + size_;
  if (*begin == '-' || *begin == '+' || *begin == ' ') field.prefix.add(*begin++);
  const bool is_finite = *begin <= '9';  // or it is a letter
  field.zero_pads = is_finite && conversion.pads_with_zeros();
  field.body = begin;
  field.body_size = static_cast<size_t>(end - begin);
  field.text_columns = count_characters(begin, field.body_size);
  // A general number drops the zeros at its end, unless told to keep them.
  if (!is_finite || (is_general(conversion.letter) && !conversion.has(Conversion::kAlternate))) {
    return field;
  }
  field.zeros = missing_digits_;
  if (!is_fixed(conversion.letter)) {
    const char* exponent = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
    field.tail_size = static_cast<size_t>(end - exponent);
    field.body_size -= field.tail_size;
  }
  return field;
}

}  // namespace plx::securec
