// Which kernels there are, what each asks of the processor, and in which order they are preferred:
// best first. Constants, so that names and features can also be read at compile time by programs
// that cannot link the functions (plxutil tells which kernels are in use).
#ifndef PLX_SRC_DIGEST_ARCH_KERNEL_TABLES_H
#define PLX_SRC_DIGEST_ARCH_KERNEL_TABLES_H

#include "digest/arch/base64.h"
#include "digest/arch/des.h"
#include "digest/arch/kernels.h"
#include "digest/arch/sha256.h"
#include "digest/des.h"
#include "digest/sha256_packed.h"
#include "digest/sha256_staged.h"

namespace plx::digest {

inline constexpr Sha256Kernel kSha256Table[] = {
#if defined(__x86_64__)
    {{"sha-ni", cpu::kSha | cpu::kSse41 | cpu::kSsse3}, sha256_blocks_sha_ni},
#elif defined(__arm__)
    {{"armv8", cpu::kArmNeon | cpu::kArmSha2}, sha256_blocks_armv8},
#endif
    {{"staged", cpu::kNothing}, staged::blocks_portable},
    {{"packed", cpu::kNothing}, packed::blocks_portable},
};

inline constexpr Base64Kernel kBase64Table[] = {
#if defined(__x86_64__)
    {{"avx512", cpu::kAvx512 | cpu::kAvx512Vbmi}, encode_groups_avx512, decode_groups_avx512},
    {{"avx2", cpu::kAvx2}, encode_groups_avx2, decode_groups_avx2},
    {{"ssse3", cpu::kSsse3}, encode_groups_ssse3, decode_groups_ssse3},
#elif defined(__arm__)
    {{"neon", cpu::kArmNeon}, encode_groups_neon, decode_groups_neon},
#endif
    {{"portable", cpu::kNothing}, encode_groups_portable, decode_groups_portable},
};

// From how many blocks on a DES kernel beats the tables, measured; on 32-bit machines words of 64
// bits never do.
inline constexpr size_t kMinPortable64 = sizeof(void*) == 8 ? 32 : kNever;

inline constexpr DesKernel kDesTable[] = {
#if defined(__x86_64__)
    {{"avx512", cpu::kAvx512}, 20, des::des_blocks_avx512},
    {{"avx2", cpu::kAvx2}, 24, des::des_blocks_avx2},
#endif
    {{"portable64", cpu::kNothing}, kMinPortable64, des::des_blocks_portable64},
    {{"tables", cpu::kNothing}, 0, des::des_blocks_portable},
};

}  // namespace plx::digest

#endif
