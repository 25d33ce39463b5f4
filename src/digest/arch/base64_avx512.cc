// Base64 by AVX-512 VBMI: sixteen groups a vector, with both tables held in registers. Masks make
// the last vector as short as it must be, so that all groups are taken.
#include "digest/arch/base64.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include "digest/arch/kernels.h"

#ifndef __clang__
// gcc 12 takes the undefined vectors inside its own intrinsics for ours.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#define PLX_AVX512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi")))
#define PLX_AVX512_INLINE PLX_AVX512 __attribute__((always_inline)) inline

namespace plx::digest {
namespace {

constexpr size_t kGroupsPerVector = 16;

// The lowest `count` bits, from 0 to 64.
constexpr uint64_t low_bits(size_t count) {
  return count == 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1;
}

// Each group of bytes a b c is spread as b a c b, from which the four six-bit values are the bits
// from 10, 4, 22 and 16 on of each 32.
PLX_AVX512_INLINE __m512i encode_vector(__m512i bytes, __m512i spread, __m512i digits) {
  const __m512i bit_offsets = _mm512_set1_epi64(0x3036242A1016040A);
  const __m512i groups = _mm512_permutexvar_epi8(spread, bytes);
  // The two bits above each value are ignored by the look-up.
  return _mm512_permutexvar_epi8(_mm512_multishift_epi64_epi8(bit_offsets, groups), digits);
}

// Four values a group become 24 bits, highest first, and these the lowest 48 bytes.
PLX_AVX512_INLINE __m512i pack_values(__m512i values, __m512i gather) {
  const __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
  const __m512i groups = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
  return _mm512_permutexvar_epi8(gather, groups);
}

PLX_AVX512_INLINE void store_48(uint8_t* out, __m512i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(bytes));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(bytes, 2));
}

struct Shuffles {
  alignas(64) uint8_t spread[64];
  alignas(64) uint8_t gather[64];
};

constexpr Shuffles make_shuffles() {
  Shuffles shuffles{};
  for (int i = 0; i < 64; ++i) {
    constexpr int kSpread[4] = {1, 0, 2, 1};
    shuffles.spread[i] = static_cast<uint8_t>(i / 4 * 3 + kSpread[i % 4]);
    if (i < 48) shuffles.gather[i] = static_cast<uint8_t>(i / 3 * 4 + 2 - i % 3);
  }
  return shuffles;
}

constexpr Shuffles kShuffles = make_shuffles();

}  // namespace

PLX_AVX512 size_t encode_groups_avx512(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                                       size_t num_groups) {
  const __m512i digits = _mm512_load_si512(alphabet.digits);
  const __m512i spread = _mm512_load_si512(kShuffles.spread);
  size_t left = num_groups;
  // A full load reads sixteen bytes more than it needs.
  constexpr size_t kGroupsRead = kGroupsPerVector + 6;
  for (; left >= 3 * kGroupsPerVector + kGroupsRead; left -= 4 * kGroupsPerVector) {
    __m512i text[4];
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
      text[i] = encode_vector(_mm512_loadu_si512(in + 48 * i), spread, digits);
    }
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) _mm512_storeu_si512(out + 64 * i, text[i]);
    in += 4 * 48;
    out += 4 * 64;
  }
  for (; left >= kGroupsPerVector; left -= kGroupsPerVector, in += 48, out += 64) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(low_bits(48), in);
    _mm512_storeu_si512(out, encode_vector(bytes, spread, digits));
  }
  if (left != 0) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(low_bits(3 * left), in);
    _mm512_mask_storeu_epi8(out, low_bits(4 * left), encode_vector(bytes, spread, digits));
  }
  return num_groups;
}

PLX_AVX512 size_t decode_groups_avx512(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                                       size_t num_groups) {
  const __m512i low_values = _mm512_load_si512(alphabet.values);
  const __m512i high_values = _mm512_load_si512(alphabet.values + 64);
  const __m512i gather = _mm512_load_si512(kShuffles.gather);
  // The highest bit of a byte is set by a character above 127 or by a table entry that says no.
  // A full store writes sixteen bytes more than it decodes; the next overwrites them, and the last
  // of four stores no more than is decoded. With `out` equal to `in` they stay behind what is still
  // to be read, for all loads come first.
  size_t left = num_groups;
  for (; left >= 4 * kGroupsPerVector; left -= 4 * kGroupsPerVector) {
    __m512i bytes[4];
    __m512i errors = _mm512_setzero_si512();
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
      const __m512i text = _mm512_loadu_si512(in + 64 * i);
      const __m512i values = _mm512_permutex2var_epi8(low_values, text, high_values);
      errors = _mm512_ternarylogic_epi64(errors, text, values, 0xFE);
      bytes[i] = pack_values(values, gather);
    }
    if (_mm512_movepi8_mask(errors) != 0) return num_groups - left;
#pragma GCC unroll 3
    for (int i = 0; i < 3; ++i) _mm512_storeu_si512(out + 48 * i, bytes[i]);
    store_48(out + 48 * 3, bytes[3]);
    in += 4 * 64;
    out += 4 * 48;
  }
  for (; left >= kGroupsPerVector; left -= kGroupsPerVector, in += 64, out += 48) {
    const __m512i text = _mm512_loadu_si512(in);
    const __m512i values = _mm512_permutex2var_epi8(low_values, text, high_values);
    if (_mm512_movepi8_mask(_mm512_or_si512(text, values)) != 0) return num_groups - left;
    store_48(out, pack_values(values, gather));
  }
  if (left != 0) {
    const __m512i zero_digit = _mm512_set1_epi8(alphabet.digits[0]);
    const __m512i text = _mm512_mask_loadu_epi8(zero_digit, low_bits(4 * left), in);
    const __m512i values = _mm512_permutex2var_epi8(low_values, text, high_values);
    if (_mm512_movepi8_mask(_mm512_or_si512(text, values)) != 0) return num_groups - left;
    _mm512_mask_storeu_epi8(out, low_bits(3 * left), pack_values(values, gather));
  }
  return num_groups;
}

}  // namespace plx::digest

#endif
