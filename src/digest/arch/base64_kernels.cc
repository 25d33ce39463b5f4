#include "digest/arch/base64.h"
#include "digest/arch/kernels.h"

namespace plx::digest {
namespace {

constexpr Base64Kernel kKernels[] = {
#if defined(__x86_64__)
    {{"avx512", cpu::kAvx512 | cpu::kAvx512Vbmi}, encode_groups_avx512, decode_groups_avx512},
    {{"avx2", cpu::kAvx2}, encode_groups_avx2, decode_groups_avx2},
    {{"ssse3", cpu::kSsse3}, encode_groups_ssse3, decode_groups_ssse3},
#endif
    {{"portable", cpu::kNothing}, encode_groups_portable, decode_groups_portable},
};

}  // namespace

constexpr KernelList<Base64Kernel> kBase64Kernels = {kKernels,
                                                     sizeof kKernels / sizeof kKernels[0]};

}  // namespace plx::digest
