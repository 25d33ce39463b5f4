// DES by 256 blocks at once, with AVX2.
#if defined(__x86_64__)

#include <immintrin.h>
#include <string.h>

#include "digest/arch/des.h"
#include "digest/des.h"
#include "digest/des_tables.h"
#include "internal/wipe.h"

#define PLX_DES_INLINE __attribute__((target("avx2"), always_inline)) inline

namespace plx::digest::des {
namespace {

typedef uint64_t Vector __attribute__((vector_size(32), may_alias));

PLX_DES_INLINE Vector broadcast(uint64_t word) {
  return reinterpret_cast<Vector>(_mm256_set1_epi64x(static_cast<int64_t>(word)));
}

#include "digest/arch/des_circuits_gates.inc"
// Uses the circuits.
#include "digest/arch/des_bitslice.inc"

}  // namespace

__attribute__((target("avx2"))) void des_blocks_avx2(const uint32_t* subkeys, int num_passes,
                                                     uint8_t* out, const uint8_t* in,
                                                     size_t num_blocks) {
  crypt_batches(subkeys, num_passes, out, in, num_blocks);
}

}  // namespace plx::digest::des

#endif
