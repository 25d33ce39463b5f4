// The library's tables and its rules of choice, applied to names alone: the functions themselves
// are the library's own and not exported, so the tables are read while compiling.
#include "commands/kernels_in_use.h"

#include <array>

#include "digest/arch/kernel_tables.h"

namespace plx::tool {
namespace {

struct Named : digest::Kernel {
  size_t min_blocks;
};

constexpr size_t min_blocks_of(const digest::Kernel&) { return 0; }
constexpr size_t min_blocks_of(const digest::DesKernel& kernel) { return kernel.min_blocks; }

template <typename T, size_t kCount>
constexpr std::array<Named, kCount> names_of(const T (&table)[kCount]) {
  std::array<Named, kCount> names = {};
  for (size_t i = 0; i < kCount; ++i) names[i] = {table[i], min_blocks_of(table[i])};
  return names;
}

constexpr auto kSha256 = names_of(digest::kSha256Table);
constexpr auto kBase64 = names_of(digest::kBase64Table);
constexpr auto kDes = names_of(digest::kDesTable);

// What runs long inputs.
const Named& des_kernel() {
  const Named* kernel = kDes.data();
  while (kernel->min_blocks == digest::kNever || !kernel->supported()) ++kernel;
  return *kernel;
}

}  // namespace

KernelsInUse kernels_in_use() {
  const Named* sha256 = digest::first_in_hardware(kSha256);
  const Named& des = des_kernel();
  return {sha256 != nullptr ? sha256->name : "portable", digest::first_supported(kBase64).name,
          des.name, des.min_blocks};
}

}  // namespace plx::tool
