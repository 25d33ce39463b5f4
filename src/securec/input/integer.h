// Integers: collecting the digits, and the value that they stand for.
#ifndef PLX_SRC_SECUREC_INPUT_INTEGER_H
#define PLX_SRC_SECUREC_INPUT_INTEGER_H

#include <stdint.h>
#include <string.h>

#include "securec/input/conversion.h"
#include "securec/input/field.h"

namespace plx::securec::input {

// The digits so far, in 64 bits. A larger number stays at the largest.
class Magnitude {
 public:
  explicit Magnitude(unsigned base) : base_(base) {}

  template <typename Char>
  const Char* take_digits(const Char* at, const Char* end) {
    uint64_t value = value_;
    for (; at != end; ++at) {
      const unsigned digit = digit_value(*at);
      if (digit >= base_) break;
      if (value < kNeverTooLarge) {
        value = value * base_ + digit;
      } else if (__builtin_mul_overflow(value, base_, &value) ||
                 __builtin_add_overflow(value, digit, &value)) {
        too_large_ = true;
      }
    }
    value_ = value;
    return at;
  }

  // As the bits of a 64-bit integer.
  uint64_t as_signed(bool negative) const {
    const uint64_t limit = uint64_t{INT64_MAX} + negative;
    const uint64_t value = too_large_ || value_ > limit ? limit : value_;
    return negative ? 0 - value : value;
  }

  // A sign negates, as in the C library, unless the number was too large.
  uint64_t as_unsigned(bool negative) const {
    if (too_large_) return UINT64_MAX;
    return negative ? 0 - value_ : value_;
  }

 private:
  // One more digit of any base fits behind a value below this.
  static constexpr uint64_t kNeverTooLarge = uint64_t{1} << 60;

  uint64_t value_ = 0;
  unsigned base_;
  bool too_large_ = false;
};

// Reads an integer as `conversion` wants it. Returns false when there is none: no digit stands
// behind the sign or behind "0x".
template <typename Char>
bool read_integer(const Conversion& conversion, Field<Char> field, uint64_t* out) {
  const bool negative = field.accept('-');
  if (!negative) field.accept('+');
  unsigned base = conversion.letter.base;
  bool has_digit = false;
  if ((base == 0 || base == 16) && field.accept('0')) {
    const bool has_prefix = field.accept_either('x', 'X');
    has_digit = !has_prefix;
    if (base == 0) base = has_prefix ? 16 : 8;
  } else if (base == 0) {
    base = 10;
  }
  Magnitude magnitude(base);
  field.take_runs([&](const Char* begin, const Char* end) {
    const Char* stop = magnitude.take_digits(begin, end);
    has_digit = has_digit || stop != begin;
    return stop;
  });
  *out =
      conversion.letter.is_signed ? magnitude.as_signed(negative) : magnitude.as_unsigned(negative);
  return has_digit;
}

// Stores the low `size` bytes of a number: 1, 2, 4 or 8.
inline void store_integer(void* dst, size_t size, uint64_t value) {
  const auto store = [dst](auto number) { memcpy(dst, &number, sizeof number); };
  switch (size) {
    case 1:
      return store(static_cast<uint8_t>(value));
    case 2:
      return store(static_cast<uint16_t>(value));
    case 4:
      return store(static_cast<uint32_t>(value));
    default:
      return store(value);
  }
}

}  // namespace plx::securec::input

#endif
