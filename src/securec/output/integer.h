// Integers and pointers.
#ifndef PLX_SRC_SECUREC_OUTPUT_INTEGER_H
#define PLX_SRC_SECUREC_OUTPUT_INTEGER_H

#include <stdint.h>

#include <algorithm>

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/field.h"

namespace plx::securec {

constexpr int kMaxIntegerPrecision = 512;

inline void set_signed(const Conversion& conversion, int64_t value, IntegerField* field) {
  field->digits.value = static_cast<uint64_t>(value);
  if (value < 0) {
    field->digits.value = 0 - field->digits.value;
    field->prefix.add('-');
  } else if (conversion.has(Conversion::kPlus)) {
    field->prefix.add('+');
  } else if (conversion.has(Conversion::kSpace)) {
    field->prefix.add(' ');
  }
}

// The precision is the least number of digits; one, when it is not given, for zero has none.
inline void set_digits(const Conversion& conversion, IntegerField* field) {
  field->num_digits = static_cast<uint32_t>(field->digits.count());
  const uint32_t least = static_cast<uint32_t>(
      conversion.has_precision() ? std::min(conversion.precision, kMaxIntegerPrecision) : 1);
  if (least > field->num_digits) field->zeros = least - field->num_digits;
}

inline void add_hex_prefix(char letter, IntegerField* field) {
  if (field->digits.value == 0) return;
  field->prefix.add('0');
  field->prefix.add(letter);
}

// Takes the argument of a 'd', 'i', 'u', 'o', 'x' or 'X'.
inline IntegerField format_integer(const Conversion& conversion, Arguments* arguments) {
  IntegerField field;
  const char letter = conversion.letter;
  if (letter == 'd' || letter == 'i') {
    set_signed(conversion, take_signed(conversion, arguments), &field);
  } else {
    field.digits.value = take_unsigned(conversion, arguments);
    field.digits.bits = letter == 'u' ? 0 : letter == 'o' ? 3 : 4;
    field.digits.upper = letter == 'X';
  }
  set_digits(conversion, &field);
  field.zero_pads = conversion.pads_with_zeros() && !conversion.has_precision();
  if (conversion.has(Conversion::kAlternate)) {
    if (field.digits.bits == 3 && field.zeros == 0) field.zeros = 1;
    if (field.digits.bits == 4) add_hex_prefix(letter, &field);
  }
  return field;
}

// The address of a 'p', other than null.
inline IntegerField format_pointer(const Conversion& conversion, uintptr_t address) {
  IntegerField field;
  field.digits = {address, 4, false};
  set_digits(conversion, &field);
  add_hex_prefix('x', &field);
  // Unlike an integer's, a pointer's zero padding is not switched off by a precision: callers
  // depend on it.
  field.zero_pads = conversion.pads_with_zeros();
  return field;
}

}  // namespace plx::securec

#endif
