// Base64 text of any length: whole groups, then the tail of one or two bytes. Padding, terminators
// and sizes are the callers'.
#ifndef PLX_SRC_DIGEST_BASE64_TEXT_H
#define PLX_SRC_DIGEST_BASE64_TEXT_H

#include "digest/arch/kernels.h"
#include "digest/base64_groups.h"

namespace plx::digest {

// Digits that `size` bytes need, without padding. Cannot wrap for the 32-bit lengths of the public
// functions, whatever size_t is.
constexpr uint64_t digits_for(uint64_t size) { return size / 3 * 4 + (size % 3 * 4 + 2) / 3; }

// What the kernel left of either text, and the tail. `taken` groups are done.
[[gnu::noinline]] size_t encode_rest(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                                     size_t size, size_t taken);
[[gnu::noinline]] size_t decode_rest(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                                     size_t length, size_t taken);

// Writes the digits of `size` bytes and returns how many.
inline size_t encode_text(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                          size_t size) {
  const size_t taken = first_supported(kBase64Kernels).encode_groups(alphabet, out, in, size / 3);
  return 3 * taken == size ? 4 * taken : encode_rest(alphabet, out, in, size, taken);
}

// Decodes `length` digits, of which the count is not 4k+1, and returns the number of bytes; 0 when
// a character is no digit, with some bytes perhaps written. `out` may be `in`.
inline size_t decode_text(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                          size_t length) {
  const size_t taken = first_supported(kBase64Kernels).decode_groups(alphabet, out, in, length / 4);
  return 4 * taken == length ? 3 * taken : decode_rest(alphabet, out, in, length, taken);
}

// Decodes the text that ends at the first NUL, or at `limit` characters without one, and returns
// the number of bytes; 0 when a character is no digit or the length is of the form 4k+1, with some
// bytes perhaps written. `out` holds what `limit` characters make.
size_t decode_terminated(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                         size_t limit);

}  // namespace plx::digest

#endif
