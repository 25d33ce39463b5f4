#include "internal/cpu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace plx::cpu;

TEST(Cpu, FeaturesOfCpuinfo) {
  struct Row {
    const char* text;
    uint32_t features;
  };
  const Row rows[] = {
      {"", 0},
      {"Features", 0},
      {"Features\t: half thumb neon vfpv3\n", kArmNeon},
      {"processor\t: 0\nFeatures\t: fp asimd aes sha1 sha2 crc32\n", kArmNeon | kArmSha2},
      {"Features\t: sha2", kArmSha2},
      {"Features : sha256 xsha2 sha2x\n", 0},
      {"model name : neon sha2\nFeatures\t: half\nHardware : sha2\n", 0},
      {"Features\t: half\nFeatures\t: sha2\n", kArmSha2},
      {"xFeatures : sha2\n", 0},
      {"\n\n Features : sha2\n", 0},
  };
  for (const Row& row : rows) {
    const std::string text = row.text;
    const std::vector<char> exact(text.begin(), text.end());
    EXPECT_EQ(row.features, arm_features_of(exact.data(), exact.size())) << text;
  }
}

TEST(Cpu, AskedOnceAndOfThisMachineOnly) {
  const uint32_t known = ask();
  EXPECT_EQ(known, g_features.load());
  EXPECT_NE(0u, known & kAsked);
  EXPECT_TRUE(has(kNothing));
#if defined(__x86_64__) || defined(__i386__)
  EXPECT_EQ(__builtin_cpu_supports("avx2") != 0, has(kAvx2));
  EXPECT_EQ(__builtin_cpu_supports("avx512vbmi") != 0, has(kAvx512Vbmi));
  EXPECT_FALSE(has(kArmNeon));
#else
  EXPECT_FALSE(has(kSsse3));
#endif
}

}  // namespace
