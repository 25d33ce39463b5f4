// Hexadecimal text of digests.
#ifndef PLX_SRC_DIGEST_HEX_H
#define PLX_SRC_DIGEST_HEX_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest {

constexpr char kLowerDigits[] = "0123456789abcdef";
constexpr char kUpperDigits[] = "0123456789ABCDEF";

// Writes the two digits of one byte, by arithmetic: no table is read at a place that depends on it.
inline void write_digits(unsigned byte, const char (&digits)[17], char* out) {
  const uint32_t letter_gap = static_cast<uint32_t>(digits[10] - '0' - 10);
  const uint32_t nibbles = byte >> 4 | (byte & 15) << 8;
  const uint32_t is_letter = (nibbles + 0x0606) >> 4 & 0x0101;
  const uint32_t chars = nibbles + 0x3030 + is_letter * letter_gap;
  out[0] = static_cast<char>(chars);
  out[1] = static_cast<char>(chars >> 8);
}

// Writes two digits a byte and a NUL behind them to `out`, which holds `out_size` bytes. With less
// room it writes the pairs that leave room for a NUL, and the NUL. Callers depend on the rest of
// the rule: a further pair that has room, but none for its NUL, becomes two NULs, and an `out_size`
// below 2 writes nothing.
void write_hex(char* out, int out_size, const uint8_t* digest, size_t digest_size,
               const char (&digits)[17] = kLowerDigits);

}  // namespace plx::digest

#endif
