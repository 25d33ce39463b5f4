// Copies and appends of less than 96 characters that nothing is wrong with, without a call into the
// C library: most texts are short. These functions only ever accept. What they return false for is
// untouched and left to the full functions, which know every refusal and its order.
#ifndef PLX_SRC_SECUREC_SHORT_STRINGS_H
#define PLX_SRC_SECUREC_SHORT_STRINGS_H

#include <stddef.h>
#include <stdint.h>

#include <algorithm>

#include "internal/readable.h"
#include "securec/limits.h"
#include "securec/memory.h"
#include "securec/small_blocks.h"

// Where a sanitizer watches, the C library is asked, which the sanitizer knows.
#if defined(__SSE2__) && !PLX_READS_ARE_CHECKED
#define PLX_SHORT_STRINGS_SSE2
#include <emmintrin.h>
#endif

namespace plx::securec {

constexpr size_t kShortText = 96;  // bytes that are looked at
// What is not a length; both are above every valid size.
constexpr size_t kLongText = SIZE_MAX;         // no terminator among these bytes
constexpr size_t kUnknownText = SIZE_MAX - 1;  // not looked at all of them

#ifdef PLX_SHORT_STRINGS_SSE2

// One bit for each of 32 bytes, set where it is 0.
inline uint32_t zero_bytes(const char* text) {
  const auto zeros_of = [](const char* bytes) {
    const __m128i word = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i equal = _mm_cmpeq_epi8(word, _mm_setzero_si128());
    return static_cast<uint32_t>(_mm_movemask_epi8(equal));
  };
  return zeros_of(text) | zeros_of(text + 16) << 16;
}

// Length of `text` when its terminator is among the first kShortText bytes and these lie within a
// page. As in the C library, bytes behind a text are looked at when they lie in the page of its
// first one: they are there, and they decide nothing.
inline size_t short_length(const char* text) {
  const size_t readable = bytes_to_page_end(text);
  if (readable < 32) return kUnknownText;
  const uint32_t first = zero_bytes(text);
  if (__builtin_expect(first != 0, 1)) return static_cast<size_t>(__builtin_ctz(first));
  if (readable < kShortText) return kUnknownText;
  const uint64_t next = zero_bytes(text + 32) | static_cast<uint64_t>(zero_bytes(text + 64)) << 32;
  return next != 0 ? 32 + static_cast<size_t>(__builtin_ctzll(next)) : kLongText;
}

#else

inline size_t short_length(const char*) { return kUnknownText; }

#endif

[[gnu::always_inline]] inline void copy_short_block(char* dst, const char* src, size_t count) {
  if (count <= kMaxSmallBlock) {
    copy_small_block(dst, src, count);
  } else {
    copy_medium_block(dst, src, count);
  }
}

inline bool copy_short_string(char* dst, size_t dst_size, const char* src, size_t count) {
  if (dst_size > SECURE_MEM_LIMIT || dst == nullptr || src == nullptr) return false;
  if (!is_valid_count<char>(count)) return false;
  const size_t whole = short_length(src);
  if (whole == kUnknownText) return false;
  const size_t length = std::min(whole, count);
  if (length > kShortText || length >= dst_size) return false;
  if (ranges_overlap(dst, src, length + 1)) return false;
  if (length != 0) copy_short_block(dst, src, length);
  dst[length] = 0;
  return true;
}

inline bool append_short_string(char* dst, size_t dst_size, const char* src) {
  if (dst_size > SECURE_MEM_LIMIT || dst == nullptr || src == nullptr) return false;
  const size_t end = short_length(dst), length = short_length(src);
  if (end >= dst_size || length >= dst_size - end) return false;
  // Neither text reaches into the other, before or after.
  if (ranges_overlap(dst, src, end + length + 1)) return false;
  copy_short_block(dst + end, src, length + 1);
  return true;
}

}  // namespace plx::securec

#endif
