#include <gtest/gtest.h>
#include <plx/container.h>
#include <string.h>

#include <algorithm>

#include "support/allocation.h"

namespace {

TEST(Alloc, FreshBlocksAreZero) {
  for (size_t size : {1u, 7u, 4096u, 1u << 20}) {
    auto* block = static_cast<unsigned char*>(PLX_malloc(size));
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(std::all_of(block, block + size, [](unsigned char c) { return c == 0; }));
    memset(block, 0xFF, size);
    PLX_free(block);
  }
}

TEST(Alloc, RefusedSizesNeverReachTheAllocator) {
  char kept[] = "kept";
  plx_test::AllocationFault count;
  EXPECT_EQ(nullptr, PLX_malloc(0));
  EXPECT_EQ(nullptr, PLX_malloc(0x80000000u));
  EXPECT_EQ(nullptr, PLX_malloc(static_cast<size_t>(-1)));
  EXPECT_EQ(nullptr, PLX_realloc(kept, 0));  // the block stays: callers depend on it
  EXPECT_EQ(nullptr, PLX_strdup(nullptr));
  PLX_free(nullptr);
  EXPECT_EQ(0u, count.allocations());
  EXPECT_STREQ("kept", kept);
}

TEST(Alloc, GrowingConsumesTheOldBlock) {
  char* block = PLX_strdup("abcd");
  block = static_cast<char*>(PLX_reallocMem(block, 4000, 4));
  ASSERT_NE(nullptr, block);
  EXPECT_EQ(0, memcmp(block, "abcd", 4));
  PLX_free(block);
  void* fresh = PLX_reallocMem(nullptr, 16, 4);
  EXPECT_NE(nullptr, fresh);
  PLX_free(fresh);

  for (size_t new_size : {size_t{8}, size_t{0}, size_t{0x80000000u}}) {
    void* lost = PLX_malloc(8);
    plx_test::AllocationFault count;
    EXPECT_EQ(nullptr, PLX_reallocMem(lost, new_size, 8));
    EXPECT_EQ(-1, count.live_blocks()) << new_size;
  }
  void* lost = PLX_malloc(8);
  plx_test::AllocationFault fail(1);
  EXPECT_EQ(nullptr, PLX_reallocMem(lost, 64, 8));
  EXPECT_EQ(-1, fail.live_blocks());
}

TEST(Alloc, ShortMemoryGivesNull) {
  plx_test::AllocationFault fail(1, true);
  EXPECT_EQ(nullptr, PLX_malloc(1));
  EXPECT_EQ(nullptr, PLX_realloc(nullptr, 1));
  EXPECT_EQ(nullptr, PLX_strdup("a"));
}

TEST(Alloc, ForwardsToThePlatform) {
  void* aligned = nullptr;
  ASSERT_EQ(0, PLX_posix_memalign(&aligned, 64, 100));
  EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(aligned) % 64);
  PLX_free(aligned);
  EXPECT_NE(0, PLX_posix_memalign(&aligned, 3, 100));
  void* page = PLX_valloc(10);
  EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(page) % 4096);
  PLX_free(page);
  void* grown = PLX_realloc(PLX_malloc(4), 400);
  EXPECT_NE(nullptr, grown);
  PLX_free(grown);
}

}  // namespace
