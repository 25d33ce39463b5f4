// Blocks of up to 64 bytes, copied and filled in line: a call into the C library would take longer
// than the work. A block of 16 to 32 bytes, say, is its first and its last 16 bytes, which may
// overlap in the middle; everything is loaded before anything is stored, so that source and
// destination may overlap too. Exactly the bytes of the block are read and written.
#ifndef PLX_SRC_SECUREC_SMALL_BLOCKS_H
#define PLX_SRC_SECUREC_SMALL_BLOCKS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace plx::securec {

constexpr size_t kMaxSmallBlock = 64;
constexpr size_t kMaxMediumBlock = 96;

using Word16 = unsigned char __attribute__((vector_size(16)));

template <typename Word>
inline Word load(const unsigned char* src) {
  Word word;
  memcpy(&word, src, sizeof word);
  return word;
}

template <typename Word>
inline void store(unsigned char* dst, Word word) {
  memcpy(dst, &word, sizeof word);
}

// One word at each end of the block.
template <typename Word>
inline void copy_ends(unsigned char* dst, const unsigned char* src, size_t count) {
  const auto first = load<Word>(src);
  const auto last = load<Word>(src + count - sizeof(Word));
  store(dst, first);
  store(dst + count - sizeof(Word), last);
}

// Two words at each end.
template <typename Word>
inline void copy_ends_twice(unsigned char* dst, const unsigned char* src, size_t count) {
  const size_t tail = count - 2 * sizeof(Word);
  const auto first = load<Word>(src);
  const auto second = load<Word>(src + sizeof(Word));
  const auto third = load<Word>(src + tail);
  const auto last = load<Word>(src + tail + sizeof(Word));
  store(dst, first);
  store(dst + sizeof(Word), second);
  store(dst + tail, third);
  store(dst + tail + sizeof(Word), last);
}

// `count` is from 1 to 32.
[[gnu::always_inline]] inline void copy_to_32(void* dst, const void* src, size_t count) {
  auto* const to = static_cast<unsigned char*>(dst);
  const auto* const from = static_cast<const unsigned char*>(src);
  if (count >= 16) return copy_ends<Word16>(to, from, count);
  if (count >= 8) return copy_ends<uint64_t>(to, from, count);
  if (count >= 4) return copy_ends<uint32_t>(to, from, count);
  // Not every caller has a single byte to copy.
  if (count >= 2) return copy_ends<uint16_t>(to, from, count);  // GCOVR_EXCL_BR_LINE
  *to = *from;
}

// `count` is from 1 to kMaxSmallBlock.
[[gnu::always_inline]] inline void copy_small_block(void* dst, const void* src, size_t count) {
  if (count <= 32) return copy_to_32(dst, src, count);
  copy_ends_twice<Word16>(static_cast<unsigned char*>(dst), static_cast<const unsigned char*>(src),
                          count);
}

// `count` is from 64 to kMaxMediumBlock; the blocks must not overlap.
inline void copy_medium_block(void* dst, const void* src, size_t count) {
  auto* const to = static_cast<unsigned char*>(dst);
  const auto* const from = static_cast<const unsigned char*>(src);
  copy_ends_twice<Word16>(to, from, kMaxSmallBlock);
  copy_ends<Word16>(to + count - 32, from + count - 32, 32);
}

template <typename Word>
inline void fill_ends(unsigned char* dst, Word pattern, size_t count) {
  store(dst, pattern);
  store(dst + count - sizeof(Word), pattern);
}

// `count` is from 0 to kMaxSmallBlock.
[[gnu::always_inline]] inline void fill_small_block(void* dst, int c, size_t count) {
  auto* const to = static_cast<unsigned char*>(dst);
  const uint64_t pattern = static_cast<unsigned char>(c) * UINT64_C(0x0101010101010101);
  if (count >= 16) {
    const auto byte = static_cast<unsigned char>(c);
    const Word16 wide = Word16{} + byte;
    fill_ends(to, wide, count);
    if (count > 32) fill_ends(to + 16, wide, count - 32);
    return;
  }
  if (count >= 8) return fill_ends(to, pattern, count);
  if (count >= 4) return fill_ends(to, static_cast<uint32_t>(pattern), count);
  if (count >= 2) return fill_ends(to, static_cast<uint16_t>(pattern), count);
  if (count == 1) *to = static_cast<unsigned char>(c);
}

}  // namespace plx::securec

#endif
