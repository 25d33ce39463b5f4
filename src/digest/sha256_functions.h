// The functions of FIPS 180-4, section 4.1.2, by their names there.
#ifndef PLX_SRC_DIGEST_SHA256_FUNCTIONS_H
#define PLX_SRC_DIGEST_SHA256_FUNCTIONS_H

#include "digest/bytes.h"

namespace plx::digest {

constexpr uint32_t choose(uint32_t x, uint32_t y, uint32_t z) { return z ^ (x & (y ^ z)); }
constexpr uint32_t majority(uint32_t x, uint32_t y, uint32_t z) { return (x & y) | (z & (x | y)); }
constexpr uint32_t big_sigma0(uint32_t x) {
  return rotate_right(x, 2) ^ rotate_right(x, 13) ^ rotate_right(x, 22);
}
constexpr uint32_t big_sigma1(uint32_t x) {
  return rotate_right(x, 6) ^ rotate_right(x, 11) ^ rotate_right(x, 25);
}
constexpr uint32_t small_sigma0(uint32_t x) {
  return rotate_right(x, 7) ^ rotate_right(x, 18) ^ x >> 3;
}
constexpr uint32_t small_sigma1(uint32_t x) {
  return rotate_right(x, 17) ^ rotate_right(x, 19) ^ x >> 10;
}

}  // namespace plx::digest

#endif
