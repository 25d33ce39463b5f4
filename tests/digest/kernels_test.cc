// Every kernel that this processor runs, held to the portable cores; and the choice among them.
#include "digest/arch/kernels.h"

#include <gtest/gtest.h>
#include <plx/digest.h>
#include <string.h>

#include <string>

#include "digest/base64_text.h"
#include "digest/des.h"
#include "digest/judge.h"
#include "digest/sha256_staged.h"

namespace {

using namespace plx::digest;
using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::PageEnd;
using plx_test::random_bytes;

// Sizes 0 to 1024 end at a page that cannot be touched, or `offset` bytes before it.
PageEnd in_page, out_page;

TEST(Kernels, Sha256) {
  for (const Sha256Kernel& kernel : kSha256Kernels) {
    if (!kernel.supported()) continue;
    for (size_t num_blocks = 0; num_blocks <= 17; ++num_blocks) {
      for (size_t offset = 0; offset < 64; ++offset) {
        const std::string data = random_bytes(num_blocks * 64 + offset);
        const uint8_t* blocks = in_page.copy(data);
        uint32_t state[8] = {1, 2, 3, 4, 5, 6, 7, 0xFFFFFFFF}, expected[8];
        memcpy(expected, state, sizeof state);
        kernel.blocks(state, blocks, num_blocks);
        staged::blocks_portable(expected, blocks, num_blocks);
        ASSERT_EQ(hex(as_bytes(expected, 32)), hex(as_bytes(state, 32)))
            << kernel.name << " " << num_blocks << " blocks, " << offset;
      }
    }
  }
}

TEST(Kernels, Base64) {
  for (const Base64Kernel& kernel : kBase64Kernels) {
    if (!kernel.supported()) continue;
    for (const Base64Alphabet* alphabet : {&kStandardAlphabet, &kUrlAlphabet}) {
      for (size_t groups = 0; groups <= 342; ++groups) {
        SCOPED_TRACE(testing::Message() << kernel.name << " " << groups);
        const size_t offset = groups * 11 % 64, size = 3 * groups, length = 4 * groups;
        const std::string bytes = random_bytes(size);
        std::string text(length, '\0');
        encode_groups_portable(*alphabet, &text[0], bytes_of(bytes), groups);
        const std::string tail(offset, '.');

        const uint8_t* in = in_page.copy(bytes + tail);
        char* out = reinterpret_cast<char*>(out_page.copy(std::string(length, '.') + tail));
        size_t taken = kernel.encode_groups(*alphabet, out, in, groups);
        ASSERT_EQ(text.substr(0, 4 * taken), std::string(out, 4 * taken));
        ASSERT_EQ(std::string(length - 4 * taken, '.') + tail,
                  std::string(out + 4 * taken, length - 4 * taken + offset));
        ASSERT_LE(groups - taken, 16u);

        // From elsewhere, and in place.
        uint8_t* decoded = out_page.copy(std::string(size, '.') + tail);
        const char* in_text = reinterpret_cast<const char*>(in_page.copy(text + tail));
        taken = kernel.decode_groups(*alphabet, decoded, in_text, groups);
        ASSERT_EQ(hex(bytes.substr(0, 3 * taken)), hex(as_bytes(decoded, 3 * taken)));
        ASSERT_EQ(tail, as_bytes(decoded + size, offset));
        decoded = in_page.copy(text + tail);
        ASSERT_EQ(taken, kernel.decode_groups(*alphabet, decoded, in_text, groups));
        ASSERT_EQ(hex(bytes.substr(0, 3 * taken)), hex(as_bytes(decoded, 3 * taken)));
        ASSERT_EQ(text.substr(4 * taken), as_bytes(decoded + 4 * taken, length - 4 * taken));
      }
    }
  }
}

// The verdict on every character at every position of a vector and its neighbours.
TEST(Kernels, Base64Verdicts) {
  constexpr size_t kGroups = 90;
  for (const Base64Kernel& kernel : kBase64Kernels) {
    if (!kernel.supported()) continue;
    for (const Base64Alphabet* alphabet : {&kStandardAlphabet, &kUrlAlphabet}) {
      for (size_t at = 0; at < 4 * kGroups; at += at < 80 ? 1 : 7) {
        for (int c = 0; c < 256; ++c) {
          std::string text(4 * kGroups, 'q');
          text[at] = static_cast<char>(c);
          uint8_t out[3 * kGroups], expected[3 * kGroups];
          const size_t taken = kernel.decode_groups(*alphabet, out, text.data(), kGroups);
          const size_t good = decode_groups_portable(*alphabet, expected, text.data(), kGroups);
          if (taken == kRefused) {
            ASSERT_NE(kGroups, good) << kernel.name << " " << c << " at " << at;
          } else {
            ASSERT_LE(taken, good) << kernel.name << " " << c << " at " << at;
            ASSERT_EQ(0, memcmp(expected, out, 3 * taken)) << kernel.name << " " << c;
          }
        }
      }
    }
  }
}

TEST(Kernels, Des) {
  const std::string key = random_bytes(24);
  Des3Context ctx;
  PLX_3des_set3keys(&ctx, bytes_of(key), bytes_of(key) + 8, bytes_of(key) + 16);
  for (const DesKernel& kernel : kDesKernels) {
    if (!kernel.supported()) continue;
    for (size_t num_blocks = 0; num_blocks <= 1100; num_blocks += num_blocks < 130 ? 1 : 97) {
      for (int num_passes : {1, 3}) {
        const size_t offset = num_blocks * 11 % 64;
        const std::string data = random_bytes(num_blocks * 8), tail(offset, '.');
        std::string expected = data;
        auto* const at = reinterpret_cast<uint8_t*>(&expected[0]);
        des::des_blocks_portable(ctx.encSubkeys, num_passes, at, at, num_blocks);
        const uint8_t* in = in_page.copy(data + tail);
        uint8_t* out = out_page.copy(data + tail);
        kernel.blocks(ctx.encSubkeys, num_passes, out, in, num_blocks);
        ASSERT_EQ(hex(expected + tail), hex(as_bytes(out, data.size() + offset)))
            << kernel.name << " " << num_blocks;
        memcpy(out, in, data.size());
        kernel.blocks(ctx.encSubkeys, num_passes, out, out, num_blocks);
        ASSERT_EQ(hex(expected), hex(as_bytes(out, data.size()))) << kernel.name;
      }
    }
  }
}

// On a lesser processor the public functions still give the same, by a lesser kernel.
TEST(Kernels, ChosenByFeaturesAlone) {
  const uint32_t all = plx::cpu::ask();
  const std::string data = random_bytes(1000), key = random_bytes(24);
  const auto run_all = [&] {
    std::string out(3000, '\0');
    auto* at = reinterpret_cast<uint8_t*>(&out[0]);
    PLX_b64_encode(bytes_of(data), 1000, &out[0], 2000);
    PLX_b64_decode(out.data(), 1336, at + 1400);
    Des3Context ctx;
    PLX_3des_set2keys(&ctx, bytes_of(key), bytes_of(key) + 8);
    PLX_3des_encrypt(&ctx, bytes_of(data), at + 1400, 1000);
    SHA256(bytes_of(data), 1000, at + 2500);
    sha256_get(at + 2600, bytes_of(data), 1000);
    return hex(out);
  };
  const std::string expected = run_all();
  for (uint32_t hidden = 1; hidden < plx::cpu::kAsked; hidden <<= 1) {
    if ((all & hidden) == 0) continue;
    plx::cpu::g_features.store(all & ~hidden);
    for (const Base64Kernel& kernel : kBase64Kernels) {
      EXPECT_EQ((kernel.features & ~(all & ~hidden)) == 0, kernel.supported()) << kernel.name;
    }
    EXPECT_EQ(expected, run_all()) << hidden;
  }
  plx::cpu::g_features.store(plx::cpu::kAsked);
  EXPECT_STREQ("portable", first_supported(kBase64Kernels).name);
  EXPECT_EQ(&staged::blocks_portable, sha256_blocks_or(staged::blocks_portable));
  EXPECT_EQ(expected, run_all());
  plx::cpu::ask();
}

}  // namespace
