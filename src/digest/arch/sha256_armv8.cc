// SHA-256 by the cryptography extensions of ARMv8, for 32-bit programs. This file alone is compiled
// for them, so it includes nothing whose functions the linker might share with other files.
#include <stddef.h>
#include <stdint.h>

#if defined(__arm__)

#include <arm_neon.h>

#include "digest/arch/sha256.h"
#include "digest/sha256_constants.h"

namespace plx::digest {

void sha256_blocks_armv8(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  uint32x4_t abcd = vld1q_u32(state), efgh = vld1q_u32(state + 4);
  for (; num_blocks != 0; --num_blocks, data += kSha256BlockSize) {
    const uint32x4_t abcd_before = abcd, efgh_before = efgh;
    // The last sixteen words of the schedule, four a vector; group g of four rounds uses w[g % 4].
    uint32x4_t w[4];
    for (int i = 0; i < 4; ++i) {
      w[i] = vreinterpretq_u32_u8(vrev32q_u8(vld1q_u8(data + 16 * i)));
    }
#pragma GCC unroll 16
    for (int g = 0; g < 16; ++g) {
      uint32x4_t& current = w[g & 3];
      const uint32x4_t sum = vaddq_u32(current, vld1q_u32(kSha256RoundConstants + 4 * g));
      if (g < 12) {
        current = vsha256su1q_u32(vsha256su0q_u32(current, w[(g + 1) & 3]), w[(g + 2) & 3],
                                  w[(g + 3) & 3]);
      }
      const uint32x4_t abcd_used = abcd;
      abcd = vsha256hq_u32(abcd, efgh, sum);
      efgh = vsha256h2q_u32(efgh, abcd_used, sum);
    }
    abcd = vaddq_u32(abcd, abcd_before);
    efgh = vaddq_u32(efgh, efgh_before);
  }
  vst1q_u32(state, abcd);
  vst1q_u32(state + 4, efgh);
}

}  // namespace plx::digest

#endif
