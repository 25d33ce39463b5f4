// DES by 512 blocks at once, with AVX-512: its instruction for any function of three inputs halves
// the circuits.
#if defined(__x86_64__)

#include <immintrin.h>
#include <string.h>

#include "digest/arch/des.h"
#include "digest/des.h"
#include "digest/des_tables.h"
#include "internal/wipe.h"

#define PLX_DES_TARGET target("avx512f,avx512bw,avx512dq,avx512vl")
#define PLX_DES_INLINE __attribute__((PLX_DES_TARGET, always_inline)) inline

namespace plx::digest::des {
namespace {

typedef uint64_t Vector __attribute__((vector_size(64), may_alias));

PLX_DES_INLINE Vector broadcast(uint64_t word) {
  return reinterpret_cast<Vector>(_mm512_set1_epi64(static_cast<int64_t>(word)));
}

// Bit 4a + 2b + c of `kFunction` is the result for a, b and c.
template <int kFunction>
PLX_DES_INLINE Vector ternary(Vector a, Vector b, Vector c) {
  return reinterpret_cast<Vector>(
      _mm512_ternarylogic_epi64(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b),
                                reinterpret_cast<__m512i>(c), kFunction));
}

#include "digest/arch/des_circuits_ternary.inc"
// Uses the circuits.
#include "digest/arch/des_bitslice.inc"

}  // namespace

__attribute__((PLX_DES_TARGET)) void des_blocks_avx512(const uint32_t* subkeys, int num_passes,
                                                       uint8_t* out, const uint8_t* in,
                                                       size_t num_blocks) {
  crypt_batches(subkeys, num_passes, out, in, num_blocks);
}

}  // namespace plx::digest::des

#endif
