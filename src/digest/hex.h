// Hexadecimal text of digests.
#ifndef PLX_SRC_DIGEST_HEX_H
#define PLX_SRC_DIGEST_HEX_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest {

constexpr char kLowerDigits[] = "0123456789abcdef";
constexpr char kUpperDigits[] = "0123456789ABCDEF";

// Writes two digits a byte and a NUL behind them to `out`, which holds `out_size` bytes. With less
// room it writes the pairs that leave room for a NUL, and the NUL. Callers depend on the rest of
// the rule: a further pair that has room, but none for its NUL, becomes two NULs, and an `out_size`
// below 2 writes nothing.
void write_hex(char* out, int out_size, const uint8_t* digest, size_t digest_size,
               const char (&digits)[17] = kLowerDigits);

}  // namespace plx::digest

#endif
