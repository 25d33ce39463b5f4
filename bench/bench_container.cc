// The containers beside what a C++ or GLib program would take instead.
#include <glib.h>
#include <plx/container.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/support.h"

namespace {

constexpr size_t kElements = 100000;

int compare_ints(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
  return (x > y) - (x < y);
}
// The compiler is not to see which function is called, as it does not see it in a library.
int (*volatile called_compare)(const void*, const void*) = compare_ints;

std::vector<int> random_values(size_t count) {
  std::mt19937 random(1);
  std::vector<int> values(count);
  for (int& value : values) value = static_cast<int>(random());
  return values;
}

std::vector<void*> pointers_to(std::vector<int>& values) {
  std::vector<void*> pointers;
  for (int& value : values) pointers.push_back(&value);
  return pointers;
}

void register_sort(size_t count) {
  static std::vector<std::vector<int>> inputs;
  inputs.push_back(random_values(count));
  const std::vector<void*> unsorted = pointers_to(inputs.back());
  PLX_array* array = PLX_array_create(nullptr);
  PLX_array_preAppend(array, static_cast<int>(count));
  for (void* element : unsorted) PLX_array_append(array, element);
  plx_bench::compare(
      "array-sort/" + std::to_string(count),
      [array, unsorted] {
        std::copy(unsorted.begin(), unsorted.end(), array->items);
        PLX_array_sort(array, called_compare);
      },
      [work = unsorted, unsorted]() mutable {
        std::copy(unsorted.begin(), unsorted.end(), work.begin());
        const auto compare = called_compare;
        std::sort(work.begin(), work.end(),
                  [compare](void* a, void* b) { return compare(a, b) < 0; });
      },
      count);
}

void append_all(PLX_array* array, size_t count) {
  static int element;
  for (size_t i = 0; i < count; ++i) PLX_array_append(array, &element);
}

void register_append(size_t count) {
  const std::string row = "array-append/" + std::to_string(count);
  static int element;
  plx_bench::compare(
      row,
      [count] {
        PLX_array* array = PLX_array_create(nullptr);
        PLX_array_preAppend(array, static_cast<int>(count));
        append_all(array, count);
        PLX_array_destroyWithoutClean(array);
      },
      [count] {
        std::vector<void*> vector;
        vector.reserve(count);
        for (size_t i = 0; i < count; ++i) vector.push_back(&element);
        benchmark::DoNotOptimize(vector.data());
      },
      count);
  // A vector that is kept in memory between the calls, as the array has to be.
  plx_bench::add(row, "peer:in-memory", [count] {
    auto* vector = new std::vector<void*>;
    vector->reserve(count);
    for (size_t i = 0; i < count; ++i) {
      benchmark::DoNotOptimize(vector);
      vector->push_back(&element);
      benchmark::ClobberMemory();
    }
    delete vector;
  });
  plx_bench::add(row, "plx:one-by-one", [count] {
    PLX_array* array = PLX_array_create(nullptr);
    append_all(array, count);
    PLX_array_destroyWithoutClean(array);
  });
}

// So many keys go in and are found again, in another order.
void register_hash_table(size_t count) {
  std::vector<std::string> keys;
  for (size_t i = 0; i < count; ++i) keys.push_back("channel/" + std::to_string(i * 7919));
  std::vector<std::string> wanted = keys;
  std::shuffle(wanted.begin(), wanted.end(), std::mt19937(2));
  const auto buckets = static_cast<uint32_t>(count);
  plx_bench::compare(
      "hash-table/" + std::to_string(count),
      [keys, wanted, buckets] {
        PLX_hashtable* table =
            PLX_hashtable_create(buckets, PLX_stringHashValue, PLX_stringHashCompare, nullptr);
        for (const std::string& key : keys) {
          PLX_hashtable_insert(table, key.c_str(), const_cast<std::string*>(&key));
        }
        for (const std::string& key : wanted) {
          benchmark::DoNotOptimize(PLX_hashtable_find(table, key.c_str()));
        }
        PLX_hashtable_destroy(table);
      },
      [keys, wanted] {
        GHashTable* table = g_hash_table_new(g_str_hash, g_str_equal);
        for (const std::string& key : keys) {
          g_hash_table_insert(table, const_cast<char*>(key.c_str()),
                              const_cast<std::string*>(&key));
        }
        for (const std::string& key : wanted) {
          benchmark::DoNotOptimize(g_hash_table_lookup(table, key.c_str()));
        }
        g_hash_table_destroy(table);
      },
      count);
}

// Finding with more and more elements in a table whose buckets stay as many, beside one that grows.
void register_load(size_t count) {
  constexpr uint32_t kBuckets = 1024;
  static std::vector<std::vector<uint32_t>> keys;
  keys.emplace_back(count);
  std::vector<uint32_t>& own = keys.back();
  for (size_t i = 0; i < count; ++i) own[i] = static_cast<uint32_t>(i * 2654435761u);
  PLX_hashtable* table =
      PLX_hashtable_create(kBuckets, PLX_intHashValue, PLX_intHashCompare, nullptr);
  GHashTable* peer = g_hash_table_new(g_int_hash, g_int_equal);
  for (uint32_t& key : own) {
    PLX_hashtable_insert(table, &key, &key);
    g_hash_table_insert(peer, &key, &key);
  }
  const uint32_t* first = own.data();
  plx_bench::compare(
      "hash-load/" + std::to_string(count),
      [=] {
        for (size_t i = 0; i < count; ++i) {
          benchmark::DoNotOptimize(PLX_hashtable_find(table, first + i));
        }
      },
      [=] {
        for (size_t i = 0; i < count; ++i) {
          benchmark::DoNotOptimize(g_hash_table_lookup(peer, first + i));
        }
      },
      count);
}

}  // namespace

void plx_bench::register_benchmarks() {
  for (size_t count : {size_t{100}, size_t{1000}, size_t{10000}, kElements}) {
    register_sort(count);
    register_append(count);
    register_hash_table(count);
  }
  for (size_t count : {1, 10, 10000000}) register_append(count);
  for (size_t count : {64, 256, 1024, 4096, 16384, 65536}) register_load(count);
}
