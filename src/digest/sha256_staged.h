// SHA-256, first family: bytes are staged in the context's buffer until they fill a block.
// Contracts as in plx/digest.h, with lengths of size_t.
#ifndef PLX_SRC_DIGEST_SHA256_STAGED_H
#define PLX_SRC_DIGEST_SHA256_STAGED_H

#include <plx/digest.h>

namespace plx::digest::staged {

void start(Sha256Context* ctx);
void append(Sha256Context* ctx, const uint8_t* data, size_t size);
void finish(Sha256Context* ctx, uint8_t* digest);

// The digest of one piece of data; `digest` holds 32 bytes.
void hash(uint8_t* digest, const uint8_t* data, size_t size);

// The compression function over whole blocks, as FIPS 180-4 section 6.2.2 has it.
void blocks_portable(uint32_t* state, const uint8_t* data, size_t num_blocks);

}  // namespace plx::digest::staged

#endif
