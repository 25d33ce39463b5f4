#include "securec/output/integer.h"

#include <stdint.h>

#include <algorithm>

namespace plx::securec {
namespace {

// The letter of the prefix follows the case of the digits: it is the seventeenth.
constexpr char kLowerDigits[] = "0123456789abcdefx";
constexpr char kUpperDigits[] = "0123456789ABCDEFX";

constexpr int kMaxPrecision = 512;
constexpr char kNil[] = "(nil)";

// Precision is the least number of digits. One, when it is not given: zero itself has no digits.
size_t missing_digits(const Conversion& conversion, size_t num_digits) {
  const int wanted = conversion.has_precision() ? std::min(conversion.precision, kMaxPrecision) : 1;
  const size_t least = static_cast<size_t>(wanted);
  return least > num_digits ? least - num_digits : 0;
}

Field field_between(const Conversion& conversion, const char* first, const char* end) {
  Field field;
  field.set_body(first, static_cast<size_t>(end - first));
  field.zeros = missing_digits(conversion, field.body_size);
  field.zero_pads = conversion.pads_with_zeros() && !conversion.has_precision();
  return field;
}

Field format_signed(const Conversion& conversion, int64_t value, DigitBuffer& buffer) {
  char* const end = buffer + sizeof buffer;
  const uint64_t bits = static_cast<uint64_t>(value);
  Field field = field_between(conversion, write_decimal(value < 0 ? 0 - bits : bits, end), end);
  if (value < 0) {
    field.add_prefix('-');
  } else if (conversion.has(Conversion::kPlus)) {
    field.add_prefix('+');
  } else if (conversion.has(Conversion::kSpace)) {
    field.add_prefix(' ');
  }
  return field;
}

Field format_octal(const Conversion& conversion, uint64_t value, DigitBuffer& buffer) {
  char* const end = buffer + sizeof buffer;
  Field field = field_between(conversion, write_octal(value, end), end);
  if (conversion.has(Conversion::kAlternate) && field.zeros == 0) field.zeros = 1;
  return field;
}

Field format_hex(const Conversion& conversion, uint64_t value, bool prefixed, const char* digits,
                 DigitBuffer& buffer) {
  char* const end = buffer + sizeof buffer;
  Field field = field_between(conversion, write_hex(value, end, digits), end);
  if (prefixed && value != 0) {
    field.add_prefix('0');
    field.add_prefix(digits[16]);
  }
  return field;
}

}  // namespace

Field format_integer(const Conversion& conversion, Arguments* arguments, DigitBuffer& buffer) {
  char* const end = buffer + sizeof buffer;
  switch (conversion.letter) {
    case 'd':
    case 'i':
      return format_signed(conversion, take_signed(conversion, arguments), buffer);
    case 'o':
      return format_octal(conversion, take_unsigned(conversion, arguments), buffer);
    case 'x':
    case 'X':
      return format_hex(conversion, take_unsigned(conversion, arguments),
                        conversion.has(Conversion::kAlternate),
                        conversion.letter == 'x' ? kLowerDigits : kUpperDigits, buffer);
    default:
      return field_between(conversion, write_decimal(take_unsigned(conversion, arguments), end),
                           end);
  }
}

Field format_pointer(const Conversion& conversion, Arguments* arguments, DigitBuffer& buffer) {
  const uintptr_t value = reinterpret_cast<uintptr_t>(va_arg(arguments->list, void*));
  if (value == 0) {
    Field nil;
    nil.set_body(kNil, sizeof kNil - 1);
    return nil;
  }
  Field field = format_hex(conversion, value, true, kLowerDigits, buffer);
  // Unlike an integer's, a pointer's zero padding is not switched off by a precision: callers
  // depend on it.
  field.zero_pads = conversion.pads_with_zeros();
  return field;
}

}  // namespace plx::securec
