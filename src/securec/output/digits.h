// Digits of a number: how many it has, and the digits themselves, written backwards from `end`.
// Zero has none.
#ifndef PLX_SRC_SECUREC_OUTPUT_DIGITS_H
#define PLX_SRC_SECUREC_OUTPUT_DIGITS_H

#include <stddef.h>
#include <stdint.h>

namespace plx::securec {

constexpr size_t kMaxDigits = 22;  // of 64 bits in octal

// An unsigned number in decimal, octal or hexadecimal.
struct Digits {
  uint64_t value = 0;
  uint8_t bits = 0;  // of one digit: 3 or 4, and 0 for decimal
  bool upper = false;

  size_t count() const;
  void write(char* end) const;  // as many as count() says, the last one just below `end`
};

}  // namespace plx::securec

#endif
