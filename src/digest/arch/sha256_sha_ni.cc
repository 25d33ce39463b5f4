// SHA-256 by the SHA extensions of x86. The instructions keep the working variables as two vectors
// (A, B, E, F) and (C, D, G, H), highest element first, and do two rounds each.
#include "digest/arch/sha256.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include "digest/sha256_constants.h"

namespace plx::digest {

__attribute__((target("sha,sse4.1,ssse3"))) void sha256_blocks_sha_ni(uint32_t* state,
                                                                      const uint8_t* data,
                                                                      size_t num_blocks) {
  const __m128i byte_swap = _mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203);
  const auto* constants = reinterpret_cast<const __m128i*>(kSha256RoundConstants);
  auto* const state_vectors = reinterpret_cast<__m128i*>(state);

  __m128i low = _mm_loadu_si128(state_vectors);       // D C B A
  __m128i high = _mm_loadu_si128(state_vectors + 1);  // H G F E
  low = _mm_shuffle_epi32(low, 0xB1);                 // C D A B
  high = _mm_shuffle_epi32(high, 0x1B);               // E F G H
  __m128i abef = _mm_alignr_epi8(low, high, 8);
  __m128i cdgh = _mm_blend_epi16(high, low, 0xF0);

  for (; num_blocks != 0; --num_blocks, data += kSha256BlockSize) {
    // Keeps the compiler from moving all constants into registers that it does not have.
    __asm__("" : "+r"(constants));
    const __m128i abef_before = abef, cdgh_before = cdgh;
    // The last sixteen words of the schedule, four a vector; group g of four rounds uses w[g % 4].
    __m128i w[4];
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
      w[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data) + i);
      w[i] = _mm_shuffle_epi8(w[i], byte_swap);
    }
#pragma GCC unroll 16
    for (int g = 0; g < 16; ++g) {
      const __m128i current = w[g & 3];
      __m128i& next = w[(g + 1) & 3];
      __m128i& previous = w[(g + 3) & 3];
      __m128i sum = _mm_add_epi32(current, _mm_load_si128(constants + g));
      cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
      if (g >= 3 && g < 15) {
        next = _mm_add_epi32(next, _mm_alignr_epi8(current, previous, 4));
        next = _mm_sha256msg2_epu32(next, current);
      }
      sum = _mm_shuffle_epi32(sum, 0x0E);
      abef = _mm_sha256rnds2_epu32(abef, cdgh, sum);
      if (g >= 1 && g < 13) previous = _mm_sha256msg1_epu32(previous, current);
    }
    abef = _mm_add_epi32(abef, abef_before);
    cdgh = _mm_add_epi32(cdgh, cdgh_before);
  }

  low = _mm_shuffle_epi32(abef, 0x1B);   // A B E F -> F E B A
  high = _mm_shuffle_epi32(cdgh, 0xB1);  // C D G H -> D C H G
  _mm_storeu_si128(state_vectors, _mm_blend_epi16(low, high, 0xF0));
  _mm_storeu_si128(state_vectors + 1, _mm_alignr_epi8(high, low, 8));
}

}  // namespace plx::digest

#endif
