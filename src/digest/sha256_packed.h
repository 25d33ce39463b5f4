// SHA-256, second family: bytes are packed into the big-endian words of the context's block.
// Contracts as in plx/digest.h.
#ifndef PLX_SRC_DIGEST_SHA256_PACKED_H
#define PLX_SRC_DIGEST_SHA256_PACKED_H

#include <plx/digest.h>

namespace plx::digest::packed {

void start(Sha256Ctx* ctx);
void append(Sha256Ctx* ctx, const uint8_t* data, size_t size);
void finish(Sha256Ctx* ctx, const uint8_t* data, size_t size);

// The compression function over whole blocks, with a schedule of sixteen words that moves along,
// as FIPS 180-4 section 6.2.3 has it.
void blocks_portable(uint32_t* state, const uint8_t* data, size_t num_blocks);

}  // namespace plx::digest::packed

#endif
