#include "internal/cpu.h"

#include <string.h>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#elif defined(__arm__)
#include <stdio.h>
#include <sys/auxv.h>

#include "internal/owned.h"
#endif

namespace plx::cpu {

std::atomic<uint32_t> g_features{0};

namespace {

#if defined(__x86_64__) || defined(__i386__)

// Which register sets the operating system saves; only where it says that XGETBV may be used.
uint32_t saved_registers() {
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

uint32_t detect() {
  constexpr uint32_t kOsxsave = 1u << 27;
  constexpr uint32_t kYmmSaved = 0x06, kZmmSaved = 0xE6;
  constexpr uint32_t kAvx512Parts = bit_AVX512F | bit_AVX512BW | bit_AVX512DQ | bit_AVX512VL;
  uint32_t a, b, c, d;
  if (!__get_cpuid(1, &a, &b, &c, &d)) return 0;
  const uint32_t saved = c & kOsxsave ? saved_registers() : 0;
  uint32_t features = 0;
  if (c & bit_SSSE3) features |= kSsse3;
  if (c & bit_SSE4_1) features |= kSse41;
  if (!__get_cpuid_count(7, 0, &a, &b, &c, &d)) return features;
  if (b & bit_SHA) features |= kSha;
  if ((saved & kYmmSaved) == kYmmSaved && (b & bit_AVX2)) features |= kAvx2;
  if ((saved & kZmmSaved) == kZmmSaved && (b & kAvx512Parts) == kAvx512Parts) {
    features |= kAvx512;
    if (c & bit_AVX512VBMI) features |= kAvx512Vbmi;
  }
  return features;
}

#elif defined(__arm__)

constexpr unsigned long kHwcapNeon = 1ul << 12;
constexpr unsigned long kHwcap2Sha2 = 1ul << 3;

// Some ARMv8 systems do not fill the second word of the capabilities for 32-bit programs.
uint32_t features_of_proc() {
  char text[4096];
  const OwnedFile file(fopen("/proc/cpuinfo", "re"));
  return file != nullptr ? arm_features_of(text, fread(text, 1, sizeof text, file.get())) : 0;
}

uint32_t detect() {
  uint32_t features = 0;
  const unsigned long hwcap2 = getauxval(AT_HWCAP2);
  if (getauxval(AT_HWCAP) & kHwcapNeon) features |= kArmNeon;
  if (hwcap2 & kHwcap2Sha2) features |= kArmSha2;
  if (hwcap2 == 0 && (features & kArmNeon)) features |= features_of_proc() & kArmSha2;
  return features;
}

#else

uint32_t detect() { return 0; }

#endif

bool is_word(const char* text, size_t length, const char* word) {
  return length == strlen(word) && memcmp(text, word, length) == 0;
}

uint32_t feature_of_word(const char* text, size_t length) {
  if (is_word(text, length, "neon") || is_word(text, length, "asimd")) return kArmNeon;
  if (is_word(text, length, "sha2")) return kArmSha2;
  return 0;
}

}  // namespace

uint32_t ask() {
  const uint32_t features = detect() | kAsked;
  g_features.store(features, std::memory_order_relaxed);
  return features;
}

uint32_t arm_features_of(const char* cpuinfo, size_t size) {
  uint32_t features = 0;
  bool is_listed = false;  // whether this line is one of features
  for (size_t at = 0; at < size;) {
    size_t length = 0;
    while (at + length<size&& static_cast<unsigned char>(cpuinfo[at + length])> ' ') ++length;
    if (at == 0 || cpuinfo[at - 1] == '\n') is_listed = is_word(cpuinfo + at, length, "Features");
    if (is_listed) features |= feature_of_word(cpuinfo + at, length);
    at += length + 1;
  }
  return features;
}

}  // namespace plx::cpu
