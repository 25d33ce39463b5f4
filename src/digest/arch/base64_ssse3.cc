// Base64 by SSSE3: four groups a vector, by the short tables of the alphabet.
#include "digest/arch/base64.h"

#if defined(__x86_64__)

#include <immintrin.h>
#include <string.h>

#include "digest/arch/kernels.h"

#define PLX_SSSE3 __attribute__((target("ssse3")))

namespace plx::digest {
namespace {

constexpr size_t kGroupsPerVector = 4;

}  // namespace

PLX_SSSE3 size_t encode_groups_ssse3(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                                     size_t num_groups) {
  const __m128i offsets = _mm_load_si128(reinterpret_cast<const __m128i*>(alphabet.digit_offsets));
  const __m128i spread = _mm_set_epi8(10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1);
  size_t left = num_groups;
  // A load reads four bytes more than it needs.
  for (; left >= kGroupsPerVector + 2; left -= kGroupsPerVector, in += 12, out += 16) {
    // Each group of bytes a b c is spread as b a c b. Multiplying moves two of the four six-bit
    // values down to a byte's low end, and two up to it.
    const __m128i bytes =
        _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)), spread);
    const __m128i first_third = _mm_and_si128(bytes, _mm_set1_epi32(0x0FC0FC00));
    const __m128i second_fourth = _mm_and_si128(bytes, _mm_set1_epi32(0x003F03F0));
    const __m128i values = _mm_or_si128(_mm_mulhi_epu16(first_third, _mm_set1_epi32(0x04000040)),
                                        _mm_mullo_epi16(second_fourth, _mm_set1_epi32(0x01000010)));
    // The run of each value: 0 up to 25, 1 up to 51, then one for each value.
    const __m128i runs = _mm_sub_epi8(_mm_subs_epu8(values, _mm_set1_epi8(51)),
                                      _mm_cmpgt_epi8(values, _mm_set1_epi8(25)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_add_epi8(values, _mm_shuffle_epi8(offsets, runs)));
  }
  return num_groups - left;
}

PLX_SSSE3 size_t decode_groups_ssse3(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                                     size_t num_groups) {
  const __m128i rows = _mm_load_si128(reinterpret_cast<const __m128i*>(alphabet.digit_rows));
  const __m128i offsets = _mm_load_si128(reinterpret_cast<const __m128i*>(alphabet.value_offsets));
  const __m128i row_bits = _mm_set_epi64x(0, static_cast<int64_t>(0x8040201008040201u));
  const __m128i special_0 = _mm_set1_epi8(alphabet.specials[0]);
  const __m128i special_1 = _mm_set1_epi8(alphabet.specials[1]);
  const __m128i gather = _mm_set_epi8(-1, -1, -1, -1, 12, 13, 14, 8, 9, 10, 4, 5, 6, 0, 1, 2);
  size_t left = num_groups;
  for (; left >= kGroupsPerVector; left -= kGroupsPerVector, in += 16, out += 12) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    const __m128i high = _mm_and_si128(_mm_srli_epi32(text, 4), _mm_set1_epi8(15));
    // A character above 127 finds nothing in the rows.
    const __m128i found =
        _mm_and_si128(_mm_shuffle_epi8(rows, text), _mm_shuffle_epi8(row_bits, high));
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(found, _mm_setzero_si128())) != 0) break;
    const __m128i is_special =
        _mm_or_si128(_mm_cmpeq_epi8(text, special_0), _mm_cmpeq_epi8(text, special_1));
    const __m128i index = _mm_or_si128(high, _mm_and_si128(is_special, _mm_set1_epi8(8)));
    const __m128i values = _mm_add_epi8(text, _mm_shuffle_epi8(offsets, index));
    // Four values a group become 24 bits, highest first, and these the lowest twelve bytes.
    const __m128i pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
    const __m128i groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
    const __m128i decoded = _mm_shuffle_epi8(groups, gather);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), decoded);
    const int last_four = _mm_cvtsi128_si32(_mm_srli_si128(decoded, 8));
    memcpy(out + 8, &last_four, sizeof last_four);
  }
  return num_groups - left;
}

}  // namespace plx::digest

#endif
