#include "digest/arch/kernels.h"
#include "digest/arch/sha256.h"
#include "digest/sha256_packed.h"
#include "digest/sha256_staged.h"

namespace plx::digest {
namespace {

constexpr Sha256Kernel kKernels[] = {
#if defined(__x86_64__)
    {{"sha-ni", cpu::kSha | cpu::kSse41 | cpu::kSsse3}, sha256_blocks_sha_ni},
#elif defined(__arm__)
    {{"armv8", cpu::kArmNeon | cpu::kArmSha2}, sha256_blocks_armv8},
#endif
    {{"staged", cpu::kNothing}, staged::blocks_portable},
    {{"packed", cpu::kNothing}, packed::blocks_portable},
};

}  // namespace

constexpr KernelList<Sha256Kernel> kSha256Kernels = {kKernels,
                                                     sizeof kKernels / sizeof kKernels[0]};

Sha256Blocks sha256_blocks_or(Sha256Blocks portable) {
  for (const Sha256Kernel& kernel : kKernels) {
    if (kernel.features != cpu::kNothing && kernel.supported()) return kernel.blocks;
  }
  return portable;
}

}  // namespace plx::digest
