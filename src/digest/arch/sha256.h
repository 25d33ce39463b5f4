// SHA-256 by hardware. Each is defined on its machine alone.
#ifndef PLX_SRC_DIGEST_ARCH_SHA256_H
#define PLX_SRC_DIGEST_ARCH_SHA256_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest {

void sha256_blocks_sha_ni(uint32_t* state, const uint8_t* data, size_t num_blocks);
void sha256_blocks_armv8(uint32_t* state, const uint8_t* data, size_t num_blocks);

}  // namespace plx::digest

#endif
