// Copies and fills of a few bytes without a call: two moves of half the size that overlap in the
// middle, whatever the size is. Most of what a format prints is that short.
#ifndef PLX_SRC_SECUREC_OUTPUT_BLOCKS_H
#define PLX_SRC_SECUREC_OUTPUT_BLOCKS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

namespace plx::securec {

template <typename Word>
inline void copy_overlapping(char* dst, const char* src, size_t size) {
  Word first, last;
  memcpy(&first, src, sizeof first);
  memcpy(&last, src + size - sizeof last, sizeof last);
  memcpy(dst, &first, sizeof first);
  memcpy(dst + size - sizeof last, &last, sizeof last);
}

// Not inlined, so that the compiler does not see a long copy where a short buffer is copied from.
__attribute__((noinline)) inline void copy_long_block(char* dst, const char* src, size_t size) {
  memcpy(dst, src, size);
}

inline void copy_block(char* dst, const char* src, size_t size) {
  if (size > 16) {
    copy_long_block(dst, src, size);
  } else if (size >= 8) {
    copy_overlapping<uint64_t>(dst, src, size);
  } else if (size >= 4) {
    copy_overlapping<uint32_t>(dst, src, size);
  } else if (size >= 2) {
    copy_overlapping<uint16_t>(dst, src, size);
  } else if (size != 0) {
    *dst = *src;
  }
}

inline void copy_block(wchar_t* dst, const wchar_t* src, size_t count) {
  if (count != 0) memcpy(dst, src, count * sizeof(wchar_t));
}

// From ASCII.
inline void copy_block(wchar_t* dst, const char* src, size_t count) {
  std::copy_n(src, count, dst);
}

template <typename Word>
inline void fill_overlapping(char* dst, char c, size_t size) {
  constexpr Word kOnes = static_cast<Word>(0x0101010101010101);
  const Word pattern = static_cast<Word>(kOnes * static_cast<unsigned char>(c));
  memcpy(dst, &pattern, sizeof pattern);
  memcpy(dst + size - sizeof pattern, &pattern, sizeof pattern);
}

inline void fill_block(char* dst, char c, size_t size) {
  if (size > 16) {
    memset(dst, c, size);
  } else if (size >= 8) {
    fill_overlapping<uint64_t>(dst, c, size);
  } else if (size >= 4) {
    fill_overlapping<uint32_t>(dst, c, size);
  } else if (size >= 2) {
    fill_overlapping<uint16_t>(dst, c, size);
  } else if (size != 0) {
    *dst = c;
  }
}

inline void fill_block(wchar_t* dst, char c, size_t count) {
  std::fill_n(dst, count, static_cast<wchar_t>(c));
}

}  // namespace plx::securec

#endif
