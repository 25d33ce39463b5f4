// Appends of less than 96 characters that nothing is wrong with, without a call into the C library:
// most texts are short. They only ever accept. What they return false for is untouched and left to
// the full functions, which know every refusal and its order.
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
constexpr size_t kUnknownText = SIZE_MAX - 1;  // not looked at

#ifdef PLX_SHORT_STRINGS_SSE2

// One bit for each of 16 bytes, set where it is 0.
inline uint32_t zero_bytes(const __m128i* vector) {
  const __m128i equal = _mm_cmpeq_epi8(_mm_load_si128(vector), _mm_setzero_si128());
  return static_cast<uint32_t>(_mm_movemask_epi8(equal));
}

// Length of `text`, of which `limit` bytes may be read, when its terminator is among them and among
// the first kShortText bytes. As in the C library, bytes beside a text are looked at when an
// aligned vector holds them with some of its own: they lie in its page, and decide nothing.
inline size_t short_length(const char* text, size_t limit) {
  constexpr size_t kVector = sizeof(__m128i);
  const size_t offset = reinterpret_cast<uintptr_t>(text) % kVector;
  const __m128i* at = reinterpret_cast<const __m128i*>(text - offset);
  uint32_t zeros = zero_bytes(at) >> offset;
  if (zeros != 0) return static_cast<size_t>(__builtin_ctz(zeros));
  limit = std::min(limit, kShortText);
  for (size_t seen = kVector - offset; seen < limit; seen += kVector) {
    zeros = zero_bytes(++at);
    if (zeros == 0) continue;
    const size_t length = seen + static_cast<size_t>(__builtin_ctz(zeros));
    return length < kShortText ? length : kLongText;
  }
  return kLongText;
}

#else

inline size_t short_length(const char*, size_t) { return kUnknownText; }

#endif

[[gnu::always_inline]] inline void copy_short_block(char* dst, const char* src, size_t count) {
  if (count <= kMaxSmallBlock) {
    copy_small_block(dst, src, count);
  } else {
    copy_medium_block(dst, src, count);
  }
}

inline bool append_short_string(char* dst, size_t dst_size, const char* src) {
  if (!is_valid_size(dst_size) || dst == nullptr || src == nullptr) return false;
  const size_t end = short_length(dst, dst_size);
  if (end >= dst_size) return false;
  const size_t length = short_length(src, dst_size - end);
  if (length >= dst_size - end) return false;
  // Neither text reaches into the other, before or after.
  if (ranges_overlap(dst, src, end + length + 1)) return false;
  copy_short_block(dst + end, src, length + 1);
  return true;
}

}  // namespace plx::securec

#endif
