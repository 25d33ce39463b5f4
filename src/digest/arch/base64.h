// Base64 by vector instructions. Each is defined on its machine alone.
#ifndef PLX_SRC_DIGEST_ARCH_BASE64_H
#define PLX_SRC_DIGEST_ARCH_BASE64_H

#include "digest/base64_groups.h"

namespace plx::digest {

#define PLX_BASE64_KERNEL(suffix)                                                             \
  size_t encode_groups_##suffix(const Base64Alphabet& alphabet, char* out, const uint8_t* in, \
                                size_t num_groups);                                           \
  size_t decode_groups_##suffix(const Base64Alphabet& alphabet, uint8_t* out, const char* in, \
                                size_t num_groups);
PLX_BASE64_KERNEL(avx512)
PLX_BASE64_KERNEL(avx2)
PLX_BASE64_KERNEL(ssse3)
PLX_BASE64_KERNEL(neon)
#undef PLX_BASE64_KERNEL

}  // namespace plx::digest

#endif
