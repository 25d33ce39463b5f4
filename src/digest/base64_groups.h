// Base64 by whole groups: three bytes on one side, four characters on the other. Both alphabets,
// and the portable form of the seam that kernels implement.
#ifndef PLX_SRC_DIGEST_BASE64_GROUPS_H
#define PLX_SRC_DIGEST_BASE64_GROUPS_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest {

struct Base64Alphabet {
  alignas(64) char digits[64];      // of each six-bit value
  alignas(64) uint8_t values[256];  // of each character; kNoDigit for those outside the alphabet

  // The same for kernels that look up sixteen bytes at a time. A value of run r (0 for A to Z, 1
  // for a to z, 2 to 11 for each of 0 to 9, 12 and 13 for the last two) becomes a character by
  // adding digit_offsets[r].
  alignas(16) int8_t digit_offsets[16];
  // A character with low four bits l and high four bits h is a digit when bit h of
  // digit_rows[l] is set. It becomes a value by adding value_offsets[h], but for the two special
  // ones, which differ from the rest of their row, by adding value_offsets[8 + h].
  alignas(16) uint8_t digit_rows[16];
  alignas(16) int8_t value_offsets[16];
  char specials[2];
};
constexpr uint8_t kNoDigit = 0xFF;

// Callers of the standard decoder depend on an "=" inside the text standing for 0, so that it is a
// digit here; the encoder never writes it for a value.
extern const Base64Alphabet kStandardAlphabet;
extern const Base64Alphabet kUrlAlphabet;

// Encodes `num_groups` groups and returns how many it took: all of them.
size_t encode_groups_portable(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                              size_t num_groups);

// Decodes `num_groups` groups and returns how many it took: all, or those before the first that
// holds no digit. `out` may be `in`.
size_t decode_groups_portable(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                              size_t num_groups);

}  // namespace plx::digest

#endif
