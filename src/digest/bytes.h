// Big-endian numbers in bytes of any alignment.
#ifndef PLX_SRC_DIGEST_BYTES_H
#define PLX_SRC_DIGEST_BYTES_H

#include <stdint.h>
#include <string.h>

namespace plx::digest {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the swaps below assume it");

inline uint32_t load_be32(const uint8_t* bytes) {
  uint32_t word;
  memcpy(&word, bytes, sizeof word);
  return __builtin_bswap32(word);
}

inline void store_be32(uint8_t* bytes, uint32_t word) {
  word = __builtin_bswap32(word);
  memcpy(bytes, &word, sizeof word);
}

inline uint64_t load_be64(const uint8_t* bytes) {
  uint64_t word;
  memcpy(&word, bytes, sizeof word);
  return __builtin_bswap64(word);
}

inline void store_be64(uint8_t* bytes, uint64_t word) {
  word = __builtin_bswap64(word);
  memcpy(bytes, &word, sizeof word);
}

constexpr uint32_t rotate_right(uint32_t word, int count) {
  return word >> count | word << (32 - count);
}

}  // namespace plx::digest

#endif
