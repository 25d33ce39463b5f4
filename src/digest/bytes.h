// Big-endian numbers in bytes of any alignment.
#ifndef PLX_SRC_DIGEST_BYTES_H
#define PLX_SRC_DIGEST_BYTES_H

#include <stddef.h>
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

// Short pieces of a block are moved sixteen bytes at a time where they can be. A kernel soon loads
// the block by as many, and a load that is put together from several stores waits for all of them
// to leave the processor.
typedef uint32_t Quad __attribute__((vector_size(16)));

template <size_t kSize>
inline void copy_step(uint8_t*& out, const uint8_t*& in) {
  memcpy(out, in, kSize);
  out += kSize;
  in += kSize;
}

// Copies up to 64 bytes. No loop, for compilers make a copy by eights of it.
inline void copy_part(uint8_t* out, const uint8_t* in, size_t size) {
  if (size & 64) copy_step<64>(out, in);
  if (size & 32) copy_step<32>(out, in);
  if (size & 16) copy_step<16>(out, in);
  if (size % 16 != 0) memcpy(out, in, size % 16);
}

// Four big-endian words to four of the machine's, or back.
inline Quad load_swapped(const void* words) {
  Quad quad;
  memcpy(&quad, words, sizeof quad);
  return quad << 24 | (quad & 0xFF00) << 8 | (quad >> 8 & 0xFF00) | quad >> 24;
}

constexpr uint32_t rotate_right(uint32_t word, int count) {
  return word >> count | word << (32 - count);
}

// Eight words as big-endian bytes: a digest.
inline void store_digest(uint8_t* bytes, const uint32_t* words) {
  for (int i = 0; i < 8; i += 4) {
    const Quad quad = load_swapped(words + i);
    memcpy(bytes + 4 * i, &quad, sizeof quad);
  }
}

}  // namespace plx::digest

#endif
