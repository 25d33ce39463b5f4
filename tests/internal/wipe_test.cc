#include "internal/wipe.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "internal/checked_size.h"

namespace {

// The bytes of a buffer that has left scope, as the next user of its memory finds them.
TEST(Wipe, ClearsWhatNobodyReadsAgain) {
  alignas(plx::SecretBytes<64>) unsigned char memory[sizeof(plx::SecretBytes<64>)];
  auto* secret = new (memory) plx::SecretBytes<64>;
  memset(secret->data(), 0x5A, secret->size());
  secret->~SecretBytes();
  __asm__ __volatile__("" : : "r"(memory) : "memory");
  EXPECT_EQ(0, std::count(std::begin(memory), std::end(memory), 0x5A));
}

TEST(CheckedSize, RefusesToWrap) {
  size_t out = 7;
  EXPECT_TRUE(plx::checked_add(SIZE_MAX - 1, 1, &out));
  EXPECT_EQ(SIZE_MAX, out);
  EXPECT_FALSE(plx::checked_add(SIZE_MAX, 1, &out));
  EXPECT_FALSE(plx::checked_multiply(SIZE_MAX / 2 + 1, 2, &out));
  EXPECT_EQ(SIZE_MAX, out);
  EXPECT_TRUE(plx::checked_multiply(SIZE_MAX / 2, 2, &out));
  EXPECT_EQ(SIZE_MAX - 1, out);
}

}  // namespace
