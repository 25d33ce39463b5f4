// Every kernel that this processor runs, held to the portable cores; and the choice among them.
#include "digest/arch/kernels.h"

#include <gtest/gtest.h>
#include <plx/digest.h>
#include <string.h>

#include <string>

#include "digest/base64_text.h"
#include "digest/des.h"
#include "digest/sha256_staged.h"
#include "support/judge.h"

namespace {

using namespace plx::digest;
using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::PageEnd;
using plx_test::random_bytes;

// Emulated processors take every seventh offset.
#ifdef __arm__
constexpr size_t kOffsetStep = 7;
#else
constexpr size_t kOffsetStep = 1;
#endif
constexpr size_t kOffsets = 64;

PageEnd in_page, out_page;

// Calls `body(offset, is_at_end)` for each offset, from a page's start and to a page's end: what a
// kernel touches outside lies in a page that cannot be touched, or holds dots that stay.
template <typename Body>
void at_each_offset(const Body& body) {
  for (size_t offset = 0; offset < kOffsets; offset += kOffsetStep) {
    body(offset, false);
    body(offset, true);
  }
}

// `bytes`, `offset` bytes from the start or the end of the room, and dots.
uint8_t* place(PageEnd* page, const std::string& bytes, size_t offset, bool is_at_end) {
  const std::string dots(offset, '.');
  if (is_at_end) return page->copy(bytes + dots);
  return page->copy_to_start(dots + bytes + std::string(kOffsets, '.')) + offset;
}

void expect_dots(const uint8_t* first, size_t count) {
  ASSERT_EQ(std::string(count, '.'), as_bytes(first, count));
}

TEST(Kernels, Sha256) {
  for (size_t num_blocks = 0; num_blocks <= 17; ++num_blocks) {
    const std::string data = random_bytes(num_blocks * 64);
    const uint32_t start[8] = {1, 2, 3, 4, 5, 6, 7, 0xFFFFFFFF};
    uint32_t expected[8], state[8];
    memcpy(expected, start, sizeof start);
    staged::blocks_portable(expected, bytes_of(data), num_blocks);
    for (const Sha256Kernel& kernel : kSha256Kernels) {
      if (!kernel.supported()) continue;
      at_each_offset([&](size_t offset, bool is_at_end) {
        memcpy(state, start, sizeof state);
        kernel.blocks(state, place(&in_page, data, offset, is_at_end), num_blocks);
        ASSERT_EQ(hex(as_bytes(expected, 32)), hex(as_bytes(state, 32)))
            << kernel.name << " " << num_blocks << " blocks, " << offset;
      });
    }
  }
}

void check_encoding(const Base64Kernel& kernel, const Base64Alphabet& alphabet,
                    const std::string& bytes, const std::string& text) {
  at_each_offset([&](size_t offset, bool is_at_end) {
    const uint8_t* in = place(&in_page, bytes, offset, is_at_end);
    uint8_t* out = place(&out_page, std::string(text.size(), '.'), offset, is_at_end);
    const size_t groups = bytes.size() / 3;
    const size_t taken = kernel.encode_groups(alphabet, reinterpret_cast<char*>(out), in, groups);
    ASSERT_LE(groups - taken, 16u);
    ASSERT_EQ(0, memcmp(text.data(), out, 4 * taken));
    expect_dots(out + 4 * taken, text.size() - 4 * taken + (is_at_end ? offset : kOffsets));
    if (!is_at_end) expect_dots(out - offset, offset);
  });
}

// From elsewhere, and in place.
void check_decoding(const Base64Kernel& kernel, const Base64Alphabet& alphabet,
                    const std::string& bytes, const std::string& text) {
  at_each_offset([&](size_t offset, bool is_at_end) {
    uint8_t* in = place(&in_page, text, offset, is_at_end);
    const char* in_text = reinterpret_cast<const char*>(in);
    uint8_t* out = place(&out_page, std::string(bytes.size(), '.'), offset, is_at_end);
    const size_t groups = text.size() / 4;
    const size_t taken = kernel.decode_groups(alphabet, out, in_text, groups);
    ASSERT_LE(groups - taken, 16u);
    ASSERT_EQ(0, memcmp(bytes.data(), out, 3 * taken));
    expect_dots(out + 3 * taken, bytes.size() - 3 * taken + (is_at_end ? offset : kOffsets));
    if (!is_at_end) expect_dots(out - offset, offset);
    ASSERT_EQ(taken, kernel.decode_groups(alphabet, in, in_text, groups));
    ASSERT_EQ(0, memcmp(bytes.data(), in, 3 * taken));
    ASSERT_EQ(0, memcmp(text.data() + 3 * taken, in + 3 * taken, text.size() - 3 * taken));
  });
}

TEST(Kernels, Base64) {
  for (const Base64Alphabet* alphabet : {&kStandardAlphabet, &kUrlAlphabet}) {
    for (size_t groups = 0; groups <= 342; groups += kOffsetStep) {
      const std::string bytes = random_bytes(3 * groups);
      std::string text(4 * groups, '\0');
      encode_groups_portable(*alphabet, &text[0], bytes_of(bytes), groups);
      for (const Base64Kernel& kernel : kBase64Kernels) {
        if (!kernel.supported()) continue;
        SCOPED_TRACE(testing::Message() << kernel.name << " " << groups);
        check_encoding(kernel, *alphabet, bytes, text);
        check_decoding(kernel, *alphabet, bytes, text);
        if (testing::Test::HasFatalFailure()) return;
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
          memset(out, '.', sizeof out);
          const size_t taken = kernel.decode_groups(*alphabet, out, text.data(), kGroups);
          const size_t good = decode_groups_portable(*alphabet, expected, text.data(), kGroups);
          ASSERT_LE(taken, good) << kernel.name << " " << c << " at " << at;
          ASSERT_EQ(0, memcmp(expected, out, 3 * taken)) << kernel.name << " " << c;
          // What stands behind stays.
          memset(expected, '.', sizeof expected);
          ASSERT_EQ(0, memcmp(expected, out + 3 * taken, 3 * (kGroups - taken))) << kernel.name;
        }
      }
    }
  }
}

TEST(Kernels, Des) {
  const std::string key = random_bytes(24);
  Des3Context ctx;
  PLX_3des_set3keys(&ctx, bytes_of(key), bytes_of(key) + 8, bytes_of(key) + 16);
  for (size_t num_blocks = 0; num_blocks <= 1100; num_blocks += num_blocks < 130 ? 1 : 97) {
    const size_t size = 8 * num_blocks;
    const std::string data = random_bytes(size);
    for (int num_passes : {1, 3}) {
      std::string expected = data;
      auto* const at = reinterpret_cast<uint8_t*>(&expected[0]);
      des::des_blocks_portable(ctx.encSubkeys, num_passes, at, at, num_blocks);
      for (const DesKernel& kernel : kDesKernels) {
        if (!kernel.supported()) continue;
        SCOPED_TRACE(testing::Message() << kernel.name << " " << num_blocks);
        // A few offsets for each number of blocks; together they are all.
        for (size_t offset = num_blocks * 11 % 8; offset < kOffsets; offset += 3 * kOffsetStep) {
          const bool is_at_end = (offset + num_blocks) % 2 == 0;
          uint8_t* in = place(&in_page, data, offset, is_at_end);
          uint8_t* out = place(&out_page, std::string(size, '.'), offset, is_at_end);
          kernel.blocks(ctx.encSubkeys, num_passes, out, in, num_blocks);
          ASSERT_EQ(0, memcmp(expected.data(), out, size));
          expect_dots(out + size, is_at_end ? offset : kOffsets);
          if (!is_at_end) expect_dots(out - offset, offset);
          kernel.blocks(ctx.encSubkeys, num_passes, in, in, num_blocks);
          ASSERT_EQ(0, memcmp(expected.data(), in, size));
        }
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
