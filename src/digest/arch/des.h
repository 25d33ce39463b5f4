// DES by many blocks at once. Those of an instruction set are defined on its machine alone.
#ifndef PLX_SRC_DIGEST_ARCH_DES_H
#define PLX_SRC_DIGEST_ARCH_DES_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest::des {

#define PLX_DES_KERNEL(suffix)                                                    \
  void des_blocks_##suffix(const uint32_t* subkeys, int num_passes, uint8_t* out, \
                           const uint8_t* in, size_t num_blocks);
PLX_DES_KERNEL(avx512)
PLX_DES_KERNEL(avx2)
PLX_DES_KERNEL(portable64)
#undef PLX_DES_KERNEL

}  // namespace plx::digest::des

#endif
