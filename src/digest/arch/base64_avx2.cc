// Base64 by AVX2: eight groups a vector, four in each half, by the short tables of the alphabet.
#include "digest/arch/base64.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include "digest/arch/kernels.h"

#define PLX_AVX2 __attribute__((target("avx2")))
#define PLX_AVX2_INLINE PLX_AVX2 __attribute__((always_inline)) inline

namespace plx::digest {
namespace {

constexpr size_t kGroupsPerVector = 8;

PLX_AVX2_INLINE __m256i both_halves(const void* sixteen_bytes) {
  return _mm256_broadcastsi128_si256(_mm_load_si128(static_cast<const __m128i*>(sixteen_bytes)));
}

// Two times twelve bytes; four more are read behind them.
PLX_AVX2_INLINE __m256i load_groups(const uint8_t* in) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 12));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// Each group of bytes a b c is spread as b a c b. Multiplying moves two of the four six-bit values
// down to a byte's low end, and two up to it.
PLX_AVX2_INLINE __m256i split_groups(__m256i bytes) {
  const __m128i spread = _mm_set_epi8(10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1);
  bytes = _mm256_shuffle_epi8(bytes, _mm256_broadcastsi128_si256(spread));
  const __m256i first_third = _mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00));
  const __m256i second_fourth = _mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0));
  return _mm256_or_si256(_mm256_mulhi_epu16(first_third, _mm256_set1_epi32(0x04000040)),
                         _mm256_mullo_epi16(second_fourth, _mm256_set1_epi32(0x01000010)));
}

// The run of each value: 0 up to 25, 1 up to 51, then one for each value.
PLX_AVX2_INLINE __m256i runs_of(__m256i values) {
  const __m256i past_letters = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
  const __m256i past_upper = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));  // -1 where so
  return _mm256_sub_epi8(past_letters, past_upper);
}

// Four values a group become 24 bits, highest first, and these the lowest twelve bytes of each
// half.
PLX_AVX2_INLINE __m256i pack_values(__m256i values) {
  const __m128i gather = _mm_set_epi8(-1, -1, -1, -1, 12, 13, 14, 8, 9, 10, 4, 5, 6, 0, 1, 2);
  const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  return _mm256_shuffle_epi8(groups, _mm256_broadcastsi128_si256(gather));
}

// Twelve bytes of each half, and none behind them.
PLX_AVX2_INLINE void store_24(uint8_t* out, __m256i halves) {
  const __m256i bytes =
      _mm256_permutevar8x32_epi32(halves, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(bytes, 1));
}

}  // namespace

PLX_AVX2 size_t encode_groups_avx2(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                                   size_t num_groups) {
  const __m256i offsets = both_halves(alphabet.digit_offsets);
  size_t left = num_groups;
  constexpr size_t kGroupsRead = kGroupsPerVector + 2;
  for (; left >= kGroupsRead; left -= kGroupsPerVector, in += 24, out += 32) {
    const __m256i values = split_groups(load_groups(in));
    const __m256i digits = _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, runs_of(values)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), digits);
  }
  return num_groups - left;
}

PLX_AVX2 size_t decode_groups_avx2(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                                   size_t num_groups) {
  const __m256i rows = both_halves(alphabet.digit_rows);
  const __m256i offsets = both_halves(alphabet.value_offsets);
  const __m256i row_bits =
      _mm256_broadcastsi128_si256(_mm_set_epi64x(0, static_cast<int64_t>(0x8040201008040201u)));
  const __m256i special_0 = _mm256_set1_epi8(alphabet.specials[0]);
  const __m256i special_1 = _mm256_set1_epi8(alphabet.specials[1]);
  size_t left = num_groups;
  for (; left >= kGroupsPerVector; left -= kGroupsPerVector, in += 32, out += 24) {
    const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(text, 4), _mm256_set1_epi8(15));
    // A character above 127 finds nothing in the rows.
    const __m256i found =
        _mm256_and_si256(_mm256_shuffle_epi8(rows, text), _mm256_shuffle_epi8(row_bits, high));
    if (_mm256_movemask_epi8(_mm256_cmpeq_epi8(found, _mm256_setzero_si256())) != 0) break;
    const __m256i is_special =
        _mm256_or_si256(_mm256_cmpeq_epi8(text, special_0), _mm256_cmpeq_epi8(text, special_1));
    const __m256i index = _mm256_or_si256(high, _mm256_and_si256(is_special, _mm256_set1_epi8(8)));
    const __m256i values = _mm256_add_epi8(text, _mm256_shuffle_epi8(offsets, index));
    store_24(out, pack_values(values));
  }
  return num_groups - left;
}

}  // namespace plx::digest

#endif
