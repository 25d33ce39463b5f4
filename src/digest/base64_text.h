// Base64 text of any length: whole groups, then the tail of one or two bytes. Padding, terminators
// and sizes are the callers'.
#ifndef PLX_SRC_DIGEST_BASE64_TEXT_H
#define PLX_SRC_DIGEST_BASE64_TEXT_H

#include "digest/base64_groups.h"

namespace plx::digest {

// Digits that `size` bytes need, without padding. Cannot wrap for the 32-bit lengths of the public
// functions, whatever size_t is.
constexpr uint64_t digits_for(uint64_t size) { return size / 3 * 4 + (size % 3 * 4 + 2) / 3; }

// Writes the digits of `size` bytes and returns how many.
size_t encode_text(const Base64Alphabet& alphabet, char* out, const uint8_t* in, size_t size);

// Decodes `length` digits, of which the count is not 4k+1, and returns the number of bytes; 0 when
// a character is no digit, with some bytes perhaps written. `out` may be `in`.
size_t decode_text(const Base64Alphabet& alphabet, uint8_t* out, const char* in, size_t length);

}  // namespace plx::digest

#endif
