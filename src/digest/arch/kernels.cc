#include "digest/arch/kernels.h"

#include "digest/arch/kernel_tables.h"

namespace plx::digest {
namespace {

template <typename T, size_t kCount>
constexpr KernelList<T> list_of(const T (&table)[kCount]) {
  return {table, kCount};
}

}  // namespace

constexpr KernelList<Sha256Kernel> kSha256Kernels = list_of(kSha256Table);
constexpr KernelList<Base64Kernel> kBase64Kernels = list_of(kBase64Table);
constexpr KernelList<DesKernel> kDesKernels = list_of(kDesTable);

Sha256Blocks sha256_blocks_or(Sha256Blocks portable) {
  const Sha256Kernel* kernel = first_in_hardware(kSha256Kernels);
  return kernel != nullptr ? kernel->blocks : portable;
}

}  // namespace plx::digest
