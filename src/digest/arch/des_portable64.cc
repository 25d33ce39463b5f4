// DES by 64 blocks at once, in words that every machine has.
#include <string.h>

#include "digest/arch/des.h"
#include "digest/des.h"
#include "digest/des_tables.h"
#include "internal/wipe.h"

#define PLX_DES_INLINE inline

namespace plx::digest::des {
namespace {

using Vector = uint64_t;

PLX_DES_INLINE Vector broadcast(uint64_t word) { return word; }

#include "digest/arch/des_circuits_gates.inc"
// Uses the circuits.
#include "digest/arch/des_bitslice.inc"

}  // namespace

void des_blocks_portable64(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                           size_t num_blocks) {
  crypt_batches(subkeys, num_passes, out, in, num_blocks);
}

}  // namespace plx::digest::des
