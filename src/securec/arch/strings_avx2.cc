#include "securec/arch/strings_avx2.h"

#if PLX_STRINGS_AVX2

#include <immintrin.h>

#include <algorithm>

#include "securec/memory.h"
#include "securec/small_blocks.h"

#define PLX_AVX2 __attribute__((target("avx2")))
#define PLX_AVX2_INLINE PLX_AVX2 __attribute__((always_inline)) inline

namespace plx::securec::avx2 {
namespace {

constexpr size_t kVector = sizeof(__m256i);

PLX_AVX2_INLINE __m256i load_aligned(const char* src) {
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(src));
}

PLX_AVX2_INLINE void store_vector(char* dst, __m256i vector) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), vector);
}

PLX_AVX2_INLINE void copy_vector(char* dst, const char* src) {
  store_vector(dst, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src)));
}

// One bit for each byte of a vector, set where it is 0.
PLX_AVX2_INLINE uint32_t zero_bytes(__m256i vector) {
  const __m256i equal = _mm256_cmpeq_epi8(vector, _mm256_setzero_si256());
  return static_cast<uint32_t>(_mm256_movemask_epi8(equal));
}

inline size_t first_of(uint32_t bits) { return static_cast<size_t>(__builtin_ctz(bits)); }

// Copies an aligned vector, unless it holds a terminator.
PLX_AVX2_INLINE bool copied(char* dst, const char* src) {
  const __m256i vector = load_aligned(src);
  if (zero_bytes(vector) != 0) return false;
  store_vector(dst, vector);
  return true;
}

// `count` is from 1 to twice kVector.
PLX_AVX2_INLINE void copy_to_64(char* dst, const char* src, size_t count) {
  if (count < kVector) return copy_to_32(dst, src, count);
  copy_vector(dst, src);
  copy_vector(dst + count - kVector, src + count - kVector);
}

inline bool is_accepted(const char* dst, size_t dst_size, const char* src, size_t length) {
  return length < dst_size && are_apart(dst, src, length);
}

}  // namespace

PLX_AVX2 errno_t copy_string(char* dst, size_t dst_size, const char* src) {
  const size_t offset = reinterpret_cast<uintptr_t>(src) % kVector;
  const char* const vectors = src - offset;
  size_t length = 0;
  uint32_t zeros = zero_bytes(load_aligned(vectors)) >> offset;
  if (zeros != 0) {
    length = first_of(zeros);
    if (!is_accepted(dst, dst_size, src, length)) return copy_any_string(dst, dst_size, src);
    copy_to_32(dst, src, length + 1);
    return EOK;
  }
  length = kVector - offset;
  if (length >= dst_size) return copy_any_string(dst, dst_size, src);
  zeros = zero_bytes(load_aligned(vectors + kVector));
  if (zeros != 0) {
    length += first_of(zeros);
    if (!is_accepted(dst, dst_size, src, length)) return copy_any_string(dst, dst_size, src);
    copy_to_64(dst, src, length + 1);
    return EOK;
  }
  length += kVector;
  if (length >= dst_size) return copy_any_string(dst, dst_size, src);
  zeros = zero_bytes(load_aligned(vectors + 2 * kVector));
  if (zeros == 0) return copy_string_from(dst, dst_size, src, length);
  length += first_of(zeros);
  if (!is_accepted(dst, dst_size, src, length)) return copy_any_string(dst, dst_size, src);
  const size_t last = length + 1 - kVector;
  const size_t middle = std::min(last, kVector);
  copy_vector(dst, src);
  copy_vector(dst + middle, src + middle);
  copy_vector(dst + last, src + last);
  return EOK;
}

namespace {

// From `at` on, which is where an aligned vector starts and is not above `count`.
PLX_AVX2_INLINE void copy_rest(char* dst, const char* src, size_t count, size_t at) {
  // A step that stops halfway is taken again by single vectors.
  for (constexpr size_t kStep = 4 * kVector; at + kStep <= count; at += kStep) {
    char* const to = dst + at;
    const char* const from = src + at;
    if (!copied(to, from) || !copied(to + kVector, from + kVector) ||
        !copied(to + 2 * kVector, from + 2 * kVector) ||
        !copied(to + 3 * kVector, from + 3 * kVector)) {
      break;
    }
  }
  while (at + kVector <= count && copied(dst + at, src + at)) at += kVector;
  size_t length = count;
  if (at < count) {
    const uint32_t zeros = zero_bytes(load_aligned(src + at));
    if (zeros != 0) length = std::min(count, at + first_of(zeros));
  }
  copy_vector(dst + length - kVector, src + length - kVector);
  dst[length] = 0;
}

}  // namespace

PLX_AVX2 errno_t copy_counted(char* dst, const char* src, size_t count) {
  const size_t offset = reinterpret_cast<uintptr_t>(src) % kVector;
  const char* const vectors = src - offset;
  const size_t second = kVector - offset;
  uint32_t zeros = zero_bytes(load_aligned(vectors)) >> offset;
  if (zeros != 0 || count <= second) {
    const size_t length = std::min(count, zeros != 0 ? first_of(zeros) : count);
    if (length != 0) copy_to_32(dst, src, length);
    dst[length] = 0;
    return EOK;
  }
  zeros = zero_bytes(load_aligned(vectors + kVector));
  const size_t third = second + kVector;
  if (zeros != 0 || count <= third) {
    const size_t length = std::min(count, zeros != 0 ? second + first_of(zeros) : count);
    copy_to_64(dst, src, length);
    dst[length] = 0;
    return EOK;
  }
  copy_vector(dst, src);
  copy_vector(dst + second, src + second);
  copy_rest(dst, src, count, third);
  return EOK;
}

}  // namespace plx::securec::avx2

#endif
