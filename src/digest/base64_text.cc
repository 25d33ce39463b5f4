#include "digest/base64_text.h"

#include <string.h>

#include <algorithm>

#include "internal/readable.h"

namespace plx::digest {
namespace {

// The tail is a group with zeros for what is missing, of which only that is kept which carries
// input.
size_t encode_tail(const Base64Alphabet& alphabet, char* out, const uint8_t* in, size_t num_bytes) {
  uint8_t group[3] = {};
  char digits[4];
  memcpy(group, in, num_bytes);
  encode_groups_portable(alphabet, digits, group, 1);
  memcpy(out, digits, num_bytes + 1);
  return num_bytes + 1;
}

size_t decode_tail(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                   size_t num_digits) {
  char group[4];
  uint8_t bytes[3];
  memset(group, alphabet.digits[0], sizeof group);
  memcpy(group, in, num_digits);
  if (decode_groups_portable(alphabet, bytes, group, 1) != 1) return 0;
  memcpy(out, bytes, num_digits - 1);
  return num_digits - 1;
}

// A kernel takes what suits it and leaves the rest.
size_t decode_groups(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                     size_t num_groups) {
  const size_t taken = first_supported(kBase64Kernels).decode_groups(alphabet, out, in, num_groups);
  if (taken == num_groups) return taken;
  return taken +
         decode_groups_portable(alphabet, out + 3 * taken, in + 4 * taken, num_groups - taken);
}

// Groups from `in` on of which all characters may be read if the first may.
size_t readable_groups(const char* in) {
  return PLX_READS_ARE_CHECKED ? 0 : bytes_to_page_end(in) / 4;
}

}  // namespace

size_t encode_rest(const Base64Alphabet& alphabet, char* out, const uint8_t* in, size_t size,
                   size_t taken) {
  out += 4 * taken, in += 3 * taken;
  const size_t num_groups = size / 3 - taken, num_tail_bytes = size % 3;
  encode_groups_portable(alphabet, out, in, num_groups);
  size_t length = 4 * (taken + num_groups);
  if (num_tail_bytes != 0) {
    length += encode_tail(alphabet, out + 4 * num_groups, in + 3 * num_groups, num_tail_bytes);
  }
  return length;
}

size_t decode_rest(const Base64Alphabet& alphabet, uint8_t* out, const char* in, size_t length,
                   size_t taken) {
  out += 3 * taken, in += 4 * taken;
  const size_t num_groups = length / 4 - taken, num_tail_digits = length % 4;
  if (decode_groups_portable(alphabet, out, in, num_groups) != num_groups) return 0;
  const size_t size = 3 * (taken + num_groups);
  if (num_tail_digits == 0) return size;
  const size_t tail_size =
      decode_tail(alphabet, out + 3 * num_groups, in + 4 * num_groups, num_tail_digits);
  return tail_size != 0 ? size + tail_size : 0;
}

// A NUL is no digit, so decoding finds it. What stands behind it in its page may be looked at; a
// group across two pages is taken a character at a time.
size_t decode_terminated(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                         size_t limit) {
  size_t done = 0;  // groups
  while (const size_t left = limit / 4 - done) {
    const char* const at = in + 4 * done;
    const size_t readable = std::min(left, readable_groups(at));
    if (readable == 0 && strnlen(at, 4) != 4) break;
    const size_t wanted = std::max<size_t>(readable, 1);
    const size_t taken = decode_groups(alphabet, out + 3 * done, at, wanted);
    done += taken;
    if (taken != wanted) break;
  }
  const size_t rest_length = strnlen(in + 4 * done, std::min<size_t>(limit - 4 * done, 4));
  if (rest_length == 1) return 0;
  // A whole group is left only where it holds no digit, which is now found again.
  return decode_rest(alphabet, out, in, 4 * done + rest_length, done);
}

}  // namespace plx::digest
