// Integers: collecting the digits, and the value that they stand for.
#ifndef PLX_SRC_SECUREC_INPUT_INTEGER_H
#define PLX_SRC_SECUREC_INPUT_INTEGER_H

#include <stdint.h>
#include <string.h>

#include "securec/input/conversion.h"
#include "securec/input/field.h"

namespace plx::securec::input {

// The digits so far, in 64 bits. A larger number stays at the largest.
struct Magnitude {
  uint64_t value = 0;
  bool is_too_large = false;

  // As the bits of a 64-bit integer.
  uint64_t as_signed(bool negative) const {
    const uint64_t limit = uint64_t{INT64_MAX} + negative;
    const uint64_t bounded = value < limit ? value : limit;
    return negative ? 0 - bounded : bounded;
  }

  // A sign negates, as in the C library, unless the number was too large.
  uint64_t as_unsigned(bool negative) const {
    return negative && !is_too_large ? 0 - value : value;
  }
};

// Puts the digits of a run behind a number, however many. Returns where they end.
template <typename Char>
[[gnu::noinline]] const Char* take_many_digits(unsigned base, Run<Char> run, Magnitude* out) {
  const Char* at = run.at();
  for (unsigned digit; at != run.end() && (digit = digit_value(*at)) < base; ++at) {
    if (__builtin_mul_overflow(out->value, base, &out->value) ||
        __builtin_add_overflow(out->value, digit, &out->value)) {
      out->is_too_large = true;
    }
    if (out->is_too_large) out->value = UINT64_MAX;
  }
  return at;
}

// The same, without a test of each digit where there are few.
template <typename Char>
[[gnu::always_inline]] inline const Char* take_digits(unsigned base, Run<Char> run,
                                                      Magnitude* out) {
  constexpr int kDigitsThatFit = 15;  // of any base
  const Char* at = run.at();
  const Char* const safe_end = run.end() - at > kDigitsThatFit ? at + kDigitsThatFit : run.end();
  uint64_t value = 0;
  for (unsigned digit; at != safe_end && (digit = digit_value(*at)) < base; ++at) {
    value = value * base + digit;
  }
  // Only a Field has earlier digits, in the window before.
  if (out->value != 0 || (at == safe_end && at != run.end())) {  // GCOVR_EXCL_BR_LINE
    Magnitude all = *out;
    at = take_many_digits(base, run, &all);
    *out = all;
  } else {
    out->value = value;
  }
  return at;
}

// Reads an integer with the letter of a conversion from a Run or a Field. Returns false when there
// is none: no digit stands behind the sign or behind "0x".
template <typename Char, template <typename> class From>
[[gnu::always_inline]] inline bool read_integer(const Letter& letter, From<Char>* from,
                                                uint64_t* out) {
  const bool negative = from->accept('-');
  if (!negative) from->accept('+');
  unsigned base = letter.base;
  bool has_digit = false;
  if ((base == 0 || base == 16) && from->accept('0')) {
    const bool has_prefix = from->accept_either('x', 'X');
    has_digit = !has_prefix;
    if (base == 0) base = has_prefix ? 16 : 8;
  } else if (base == 0) {
    base = 10;
  }
  Magnitude magnitude;
  const Char* stop;
  do {
    const Run<Char> run = from->run();
    // With a constant base a multiplication is an addition or two.
    stop = base == 10 ? take_digits(10, run, &magnitude) : take_digits(base, run, &magnitude);
    has_digit = has_digit || stop != run.at();
  } while (from->take_until(stop));  // GCOVR_EXCL_BR_LINE: never again for a Run
  *out = letter.is_signed ? magnitude.as_signed(negative) : magnitude.as_unsigned(negative);
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
