#include "digest/base64_text.h"

#include <string.h>

#include "digest/arch/kernels.h"

namespace plx::digest {
namespace {

// A kernel takes what suits it and leaves the rest.
size_t encode_groups(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                     size_t num_groups) {
  const size_t taken = first_supported(kBase64Kernels).encode_groups(alphabet, out, in, num_groups);
  if (taken == num_groups) return taken;
  return taken +
         encode_groups_portable(alphabet, out + 4 * taken, in + 3 * taken, num_groups - taken);
}

size_t decode_groups(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                     size_t num_groups) {
  const size_t taken = first_supported(kBase64Kernels).decode_groups(alphabet, out, in, num_groups);
  if (taken == num_groups || taken == kRefused) return taken;
  return taken +
         decode_groups_portable(alphabet, out + 3 * taken, in + 4 * taken, num_groups - taken);
}

}  // namespace

size_t encode_text(const Base64Alphabet& alphabet, char* out, const uint8_t* in, size_t size) {
  const size_t num_groups = size / 3;
  encode_groups(alphabet, out, in, num_groups);
  size_t length = num_groups * 4;
  // The tail is a group with zeros for the missing bytes, of which only the digits that carry
  // input are kept.
  const size_t num_tail_bytes = size % 3;
  if (num_tail_bytes != 0) {
    uint8_t group[3] = {};
    char digits[4];
    memcpy(group, in + num_groups * 3, num_tail_bytes);
    encode_groups_portable(alphabet, digits, group, 1);
    memcpy(out + length, digits, num_tail_bytes + 1);
    length += num_tail_bytes + 1;
  }
  return length;
}

size_t decode_text(const Base64Alphabet& alphabet, uint8_t* out, const char* in, size_t length) {
  const size_t num_groups = length / 4;
  if (decode_groups(alphabet, out, in, num_groups) != num_groups) return 0;
  size_t size = num_groups * 3;
  const size_t num_tail_digits = length % 4;
  if (num_tail_digits != 0) {
    char group[4];
    uint8_t bytes[3];
    memset(group, alphabet.digits[0], sizeof group);
    memcpy(group, in + num_groups * 4, num_tail_digits);
    if (decode_groups_portable(alphabet, bytes, group, 1) != 1) return 0;
    memcpy(out + size, bytes, num_tail_digits - 1);
    size += num_tail_digits - 1;
  }
  return size;
}

}  // namespace plx::digest
