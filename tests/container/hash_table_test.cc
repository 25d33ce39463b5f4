#include <gtest/gtest.h>
#include <plx/container.h>

#include <random>
#include <string>
#include <vector>

#include "support/allocation.h"

namespace {

std::vector<void*> released;
void record_release(void* value) { released.push_back(value); }

struct Entry {
  const std::string* key;
  void* value;
};

// One vector a bucket, the newest node last.
struct Model {
  std::vector<std::vector<Entry>> buckets;
  uint32_t count = 0;
  std::vector<void*> released;

  // The entry that `key` reaches, or -1.
  int index_of(uint32_t bucket, const std::string& key) const {
    for (int i = static_cast<int>(buckets[bucket].size()) - 1; i >= 0; --i) {
      if (*buckets[bucket][i].key == key) return i;
    }
    return -1;
  }
  std::vector<void*> values() const {
    std::vector<void*> all;
    for (const auto& bucket : buckets) {
      for (size_t i = bucket.size(); i-- > 0;) all.push_back(bucket[i].value);
    }
    return all;
  }
};

std::vector<void*> enumerate(PLX_hashtable* table) {
  std::vector<void*> values;
  PLX_hashtable_enumBegin(table);
  while (void* value = PLX_hashtable_enumNext(table)) values.push_back(value);
  EXPECT_EQ(nullptr, PLX_hashtable_enumNext(table));
  return values;
}

uint32_t model_hash(const std::string& key) {
  uint32_t h = 0;
  for (unsigned char c : key) h = h * 131 + (c >= 'a' && c <= 'z' ? c - 32u : c);
  return key.empty() ? 0 : h & 0x7FFFFFFF;
}

TEST(HashTable, LongRunsAgreeWithTheModel) {
  const std::string keys[] = {"",  "a",  "A",    "b",    "Key",          "KEY",
                              "k", "kE", "\xE4", "\xC4", "longer key 1", "LONGER key 1"};
  int values[16];
  std::mt19937 random(7);
  for (uint32_t num_buckets : {1u, 3u, 17u}) {
    PLX_hashtable* table = PLX_hashtable_create(num_buckets, PLX_stringHashValue,
                                                PLX_stringHashCompare, record_release);
    Model model;
    model.buckets.resize(num_buckets);
    released.clear();
    for (int round = 0; round < 20000; ++round) {
      const std::string& key = keys[random() % 12];
      const uint32_t bucket = model_hash(key) % num_buckets;
      const std::string copy = key;  // found by its text, not by its address
      const int at = model.index_of(bucket, key);
      void* const value = &values[random() % 16];
      switch (random() % (round % 40 == 0 ? 5 : 4)) {
        case 0:
          ASSERT_EQ(0, PLX_hashtable_insert(table, key.c_str(), value));
          model.buckets[bucket].push_back({&key, value});
          ++model.count;
          break;
        case 1:
          ASSERT_EQ(at < 0 ? nullptr : model.buckets[bucket][at].value,
                    PLX_hashtable_find(table, copy.c_str()));
          break;
        case 2:
          PLX_hashtable_delete(table, copy.c_str());
          if (at < 0) break;
          model.released.push_back(model.buckets[bucket][at].value);
          model.buckets[bucket].erase(model.buckets[bucket].begin() + at);
          --model.count;
          break;
        case 3:
          ASSERT_EQ(model.values(), enumerate(table));
          break;
        case 4:  // the count stays: callers depend on it
          PLX_hashtable_clear(table);
          for (void* v : model.values()) model.released.push_back(v);
          for (auto& b : model.buckets) b.clear();
          break;
      }
      ASSERT_EQ(model.count, PLX_hashtable_getNodeCount(table)) << round;
      ASSERT_EQ(model.released.size(), released.size()) << round;
    }
    PLX_array* array = PLX_array_createFromHashTable(table, record_release);
    ASSERT_NE(nullptr, array);
    EXPECT_EQ(model.values(), std::vector<void*>(array->items, array->items + array->count));
    EXPECT_EQ(record_release, array->cleanFn);
    PLX_array_destroyWithoutClean(array);
    for (void* v : model.values()) model.released.push_back(v);
    PLX_hashtable_destroy(table);
    EXPECT_EQ(model.released, released);
  }
}

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

TEST(HashTable, EveryAllocationFailing) {
  const uint32_t key = 1;
  int value = 0;
  long leaked = 0;
  const size_t failures = plx_test::fail_each_allocation(
      [&](const plx_test::AllocationFault& fault) {
        PLX_hashtable* table =
            PLX_hashtable_create(8, PLX_intHashValue, PLX_intHashCompare, nullptr);
        const int inserted = PLX_hashtable_insert(table, &key, &value);
        EXPECT_EQ(fault.hit() ? -1 : 0, inserted);
        EXPECT_EQ(fault.hit() ? nullptr : &value, PLX_hashtable_find(table, &key));
        PLX_hashtable_destroy(table);
      },
      &leaked);
  EXPECT_EQ(3u, failures);
  EXPECT_EQ(0, leaked);
}

}  // namespace
