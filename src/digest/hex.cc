#include "digest/hex.h"

#include <algorithm>

namespace plx::digest {

void write_hex(char* out, int out_size, const uint8_t* digest, size_t digest_size,
               const char (&digits)[17]) {
  if (out_size < 2) return;
  const size_t room = static_cast<size_t>(out_size);
  const size_t num_pairs = std::min(digest_size, (room - 1) / 2);
  for (size_t i = 0; i < num_pairs; ++i, out += 2) write_digits(digest[i], digits, out);
  *out++ = '\0';
  if (num_pairs < digest_size && room % 2 == 0) *out = '\0';
}

}  // namespace plx::digest
