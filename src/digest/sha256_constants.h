// The constants of FIPS 180-4 for SHA-256.
#ifndef PLX_SRC_DIGEST_SHA256_CONSTANTS_H
#define PLX_SRC_DIGEST_SHA256_CONSTANTS_H

#include <stddef.h>
#include <stdint.h>

namespace plx::digest {

constexpr size_t kSha256BlockSize = 64;
constexpr size_t kSha256DigestSize = 32;

// What follows a message: as many of these as a block has room for.
extern const uint8_t kSha256Padding[kSha256BlockSize];  // section 5.1.1

extern const uint32_t kSha256InitialState[8];     // section 5.3.3
extern const uint32_t kSha256RoundConstants[64];  // section 4.2.2

}  // namespace plx::digest

#endif
