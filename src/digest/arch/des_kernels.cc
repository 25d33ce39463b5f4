#include "digest/arch/des.h"
#include "digest/arch/kernels.h"
#include "digest/des.h"

namespace plx::digest {
namespace {

// From how many blocks on a kernel beats the tables, measured; on 32-bit machines words of 64 bits
// never do.
constexpr size_t kNever = static_cast<size_t>(-1);
constexpr size_t kMinPortable64 = sizeof(void*) == 8 ? 32 : kNever;

constexpr DesKernel kKernels[] = {
#if defined(__x86_64__)
    {{"avx512", cpu::kAvx512}, 20, des::des_blocks_avx512},
    {{"avx2", cpu::kAvx2}, 24, des::des_blocks_avx2},
#endif
    {{"portable64", cpu::kNothing}, kMinPortable64, des::des_blocks_portable64},
    {{"tables", cpu::kNothing}, 0, des::des_blocks_portable},
};

}  // namespace

constexpr KernelList<DesKernel> kDesKernels = {kKernels, sizeof kKernels / sizeof kKernels[0]};

}  // namespace plx::digest
