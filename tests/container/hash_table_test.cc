#include <gtest/gtest.h>
#include <plx/container.h>

#include <random>
#include <string>
#include <vector>

#include "support/allocation.h"

namespace {

TEST(HashTable, Callbacks) {
  constexpr uint32_t kMax = 0xFFFFFFFF;
  struct Row {
    const char* key;
    uint32_t buckets;
    uint32_t hash;
  };
  const Row rows[] = {
      {nullptr, 512, 0},
      {"", 512, 0},
      {"a", 512, 65},
      {"A", 512, 65},
      {"ab", 512, 389},
      {"\xE4", 512, 228},  // only ASCII letters fold
      {"[`{\x7F", kMax, 206239977},
      {"channel list", kMax, 1668247399},  // wraps; the top bit goes
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.hash, PLX_stringHashValue(row.key, row.buckets)) << row.hash;
  }
  const uint32_t x = 0xFFFFFFFE, y = 5, same = x;
  EXPECT_EQ(14u, PLX_intHashValue(&x, 16));
  EXPECT_EQ(0u, PLX_intHashValue(nullptr, 16));
  EXPECT_EQ(0, PLX_intHashCompare(&x, &same));
  EXPECT_EQ(1, PLX_intHashCompare(&x, &y));
  EXPECT_EQ(0, PLX_intHashCompare(&x, nullptr));  // null numbers are equal, null strings differ
  EXPECT_EQ(0, PLX_intHashCompare(nullptr, &x));
  EXPECT_EQ(1, PLX_stringHashCompare("a", nullptr));
  EXPECT_EQ(1, PLX_stringHashCompare(nullptr, "a"));
  EXPECT_EQ(1, PLX_stringHashCompare(nullptr, nullptr));
  EXPECT_EQ(1, PLX_stringHashCompare("a", "A"));
  EXPECT_EQ(0, PLX_stringHashCompare("", ""));
}

uint32_t answer;
uint32_t answer_hash(const void*, uint32_t) { return answer; }

TEST(HashTable, RefusesWhatItCannotHold) {
  const uint32_t key = 1;
  int value = 0;
  EXPECT_EQ(nullptr, PLX_hashtable_create(1, nullptr, PLX_intHashCompare, nullptr));
  EXPECT_EQ(nullptr, PLX_hashtable_create(1, PLX_intHashValue, nullptr, nullptr));
  {
    plx_test::AllocationFault count;  // a size that would wrap on a 32-bit machine
    EXPECT_EQ(nullptr,
              PLX_hashtable_create(0x40000001, PLX_intHashValue, PLX_intHashCompare, nullptr));
    EXPECT_EQ(nullptr,
              PLX_hashtable_create(0xFFFFFFFF, PLX_intHashValue, PLX_intHashCompare, nullptr));
    EXPECT_EQ(0, count.live_blocks());
  }
  PLX_hashtable* table = PLX_hashtable_create(0, answer_hash, PLX_intHashCompare, nullptr);
  ASSERT_EQ(512u, table->bucketCount);
  for (uint32_t index : {512u, 0xFFFFFFFFu}) {
    answer = index;
    EXPECT_EQ(-1, PLX_hashtable_insert(table, &key, &value));
    EXPECT_EQ(nullptr, PLX_hashtable_find(table, &key));
  }
  answer = 511;
  EXPECT_EQ(-1, PLX_hashtable_insert(nullptr, &key, &value));
  EXPECT_EQ(-1, PLX_hashtable_insert(table, nullptr, &value));
  EXPECT_EQ(-1, PLX_hashtable_insert(table, &key, nullptr));
  EXPECT_EQ(0u, table->nodeCount);
  EXPECT_EQ(nullptr, PLX_array_createFromHashTable(table, nullptr));  // an empty one
  EXPECT_EQ(0, PLX_hashtable_insert(table, &key, &value));
  EXPECT_EQ(nullptr, PLX_hashtable_find(table, nullptr));
  EXPECT_EQ(nullptr, PLX_hashtable_find(nullptr, &key));
  PLX_hashtable_delete(table, nullptr);
  PLX_hashtable_delete(nullptr, &key);
  PLX_hashtable_clear(nullptr);
  PLX_hashtable_destroy(nullptr);
  PLX_hashtable_enumBegin(nullptr);
  EXPECT_EQ(nullptr, PLX_hashtable_enumNext(nullptr));
  EXPECT_EQ(0u, PLX_hashtable_getNodeCount(nullptr));
  EXPECT_EQ(&value, PLX_hashtable_find(table, &key));
  PLX_hashtable_destroy(table);
}

// Callers depend on both: a new table's position is behind its first bucket, and clearing leaves
// it.
TEST(HashTable, EnumeratesWithoutABeginning) {
  const uint32_t key = 1;
  int first = 0, second = 0;
  PLX_hashtable* table = PLX_hashtable_create(2, answer_hash, PLX_intHashCompare, nullptr);
  answer = 0;
  PLX_hashtable_insert(table, &key, &first);
  answer = 1;
  PLX_hashtable_insert(table, &key, &second);
  EXPECT_EQ(&second, PLX_hashtable_enumNext(table));
  EXPECT_EQ(nullptr, PLX_hashtable_enumNext(table));
  PLX_hashtable_clear(table);
  PLX_hashtable_insert(table, &key, &second);
  EXPECT_EQ(nullptr, PLX_hashtable_enumNext(table));
  PLX_hashtable_destroy(table);
}

}  // namespace
