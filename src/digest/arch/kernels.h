// The kernels of this family: each primitive's variants for instruction sets, best first. What
// chooses, tests, fuzzes or measures them walks these lists.
#ifndef PLX_SRC_DIGEST_ARCH_KERNELS_H
#define PLX_SRC_DIGEST_ARCH_KERNELS_H

#include <iterator>

#include "digest/base64_groups.h"
#include "internal/cpu.h"

namespace plx::digest {

struct Kernel {
  char name[16];
  uint32_t features;  // that the processor must have

  bool supported() const { return cpu::has(features); }
};

template <typename T>
struct KernelList {
  const T* first;
  size_t count;

  const T* begin() const { return first; }
  const T* end() const { return first + count; }
};

// The first kernel of a list that the processor can run. Lists end in one that needs nothing.
template <typename List>
const auto& first_supported(const List& kernels) {
  const uint32_t features = cpu::features();
  auto kernel = std::begin(kernels);
  while (kernel->features & ~features) ++kernel;
  return *kernel;
}

// The first that the processor has instructions of its own for; null when there is none.
template <typename List>
auto first_in_hardware(const List& kernels) -> decltype(std::begin(kernels)) {
  for (const auto& kernel : kernels) {
    if (kernel.features != cpu::kNothing && kernel.supported()) return &kernel;
  }
  return nullptr;
}

// The compression function of SHA-256 over whole blocks. The last two are the portable ones of the
// two families; each family falls back to its own.
using Sha256Blocks = void (*)(uint32_t* state, const uint8_t* data, size_t num_blocks);
struct Sha256Kernel : Kernel {
  Sha256Blocks blocks;
};
extern const KernelList<Sha256Kernel> kSha256Kernels;
// What the processor has in hardware, else the caller's own.
Sha256Blocks sha256_blocks_or(Sha256Blocks portable);

// Base64 by whole groups, as base64_groups.h has it, save that a kernel takes only as many groups
// as suit it and leaves the rest: those that are too few for a vector, and all from the first
// vector on that holds a character that is no digit. It writes only what it has taken.
struct Base64Kernel : Kernel {
  size_t (*encode_groups)(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                          size_t num_groups);
  size_t (*decode_groups)(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                          size_t num_groups);
};
extern const KernelList<Base64Kernel> kBase64Kernels;

// DES over whole blocks, as des.h has it. Worth its while from `min_blocks` on; any number works.
inline constexpr size_t kNever = static_cast<size_t>(-1);
struct DesKernel : Kernel {
  size_t min_blocks;
  void (*blocks)(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                 size_t num_blocks);
};
extern const KernelList<DesKernel> kDesKernels;

}  // namespace plx::digest

#endif
