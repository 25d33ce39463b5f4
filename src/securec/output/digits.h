// Digits of a number, written backwards: the last one just below `end`. Each function returns
// where the first one stands; zero has no digits.
#ifndef PLX_SRC_SECUREC_OUTPUT_DIGITS_H
#define PLX_SRC_SECUREC_OUTPUT_DIGITS_H

#include <stddef.h>
#include <stdint.h>

namespace plx::securec {

constexpr size_t kMaxDigits = 22;  // of 64 bits in octal

char* write_decimal(uint64_t value, char* end);
char* write_octal(uint64_t value, char* end);

// `digits` are the sixteen to use.
char* write_hex(uint64_t value, char* end, const char* digits);

}  // namespace plx::securec

#endif
