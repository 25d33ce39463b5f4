// What the processor can do beyond what the library is compiled for.
#ifndef PLX_SRC_INTERNAL_CPU_H
#define PLX_SRC_INTERNAL_CPU_H

#include <stddef.h>
#include <stdint.h>

#include <atomic>

namespace plx::cpu {

enum Feature : uint32_t {
  kNothing = 0,
  // x86. The AVX features are there only if the system saves their registers, too.
  kSsse3 = 1u << 0,
  kSse41 = 1u << 1,
  kSha = 1u << 2,
  kAvx2 = 1u << 3,
  kAvx512 = 1u << 4,  // F, BW, DQ and VL
  kAvx512Vbmi = 1u << 5,
  // ARM
  kArmNeon = 1u << 6,
  kArmSha2 = 1u << 7,
};

// All features of this processor, with kAsked set.
constexpr uint32_t kAsked = 1u << 31;
uint32_t ask();

// The answer is kept. Two first calls at once both ask and agree.
extern std::atomic<uint32_t> g_features;

inline uint32_t features() {
  const uint32_t known = g_features.load(std::memory_order_relaxed);
  return __builtin_expect(known != 0, 1) ? known : ask();
}

// Whether the processor has all of `wanted`.
inline bool has(uint32_t wanted) { return (features() & wanted) == wanted; }

// The ARM features that the text of /proc/cpuinfo lists.
uint32_t arm_features_of(const char* cpuinfo, size_t size);

}  // namespace plx::cpu

#endif
