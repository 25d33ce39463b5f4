#include <plx/container.h>

#include <string>
#include <vector>

#include "programs.h"
#include "support/allocation.h"

namespace plx_fuzz {
namespace {

std::vector<void*> released;
void record_release(void* value) { released.push_back(value); }

struct Entry {
  const std::string* key;
  void* value;
};

uint32_t hash_of(const std::string& key) {
  uint32_t h = 0;
  for (unsigned char c : key) h = h * 131 + (c >= 'a' && c <= 'z' ? c - 32u : c);
  return h & 0x7FFFFFFF;
}

// One vector a bucket, the newest node last.
struct Model {
  std::vector<std::vector<Entry>> buckets;
  uint32_t count = 0;
  std::vector<void*> released;

  std::vector<Entry>& bucket_of(const std::string& key) {
    return buckets[hash_of(key) % buckets.size()];
  }
  // The entry that `key` reaches, or -1.
  int index_of(const std::string& key) {
    const std::vector<Entry>& bucket = bucket_of(key);
    for (int i = static_cast<int>(bucket.size()) - 1; i >= 0; --i) {
      if (*bucket[i].key == key) return i;
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
  void release_all() {
    for (void* value : values()) released.push_back(value);
    for (auto& bucket : buckets) bucket.clear();
  }
};

void check_insert(PLX_hashtable* table, Model* model, const std::string& key, void* value,
                  bool memory_short) {
  int code;
  {
    const plx_test::AllocationFault fault(memory_short ? 1 : 0);
    code = PLX_hashtable_insert(table, key.c_str(), value);
  }
  CHECK(code == (memory_short ? -1 : 0));
  if (memory_short) return;
  model->bucket_of(key).push_back({&key, value});
  ++model->count;
}

void check_delete(PLX_hashtable* table, Model* model, const std::string& key) {
  PLX_hashtable_delete(table, std::string(key).c_str());
  const int at = model->index_of(key);
  if (at < 0) return;
  std::vector<Entry>& bucket = model->bucket_of(key);
  model->released.push_back(bucket[at].value);
  bucket.erase(bucket.begin() + at);
  --model->count;
}

void check_enumeration(PLX_hashtable* table, const Model& model) {
  std::vector<void*> values;
  PLX_hashtable_enumBegin(table);
  while (void* value = PLX_hashtable_enumNext(table)) values.push_back(value);
  CHECK(PLX_hashtable_enumNext(table) == nullptr);
  CHECK(values == model.values());
}

void check_array_of_values(PLX_hashtable* table, const Model& model, size_t fail_at) {
  PLX_array* array;
  bool memory_short;
  {
    const plx_test::AllocationFault fault(fail_at);
    array = PLX_array_createFromHashTable(table, record_release);
    memory_short = fault.hit();
  }
  CHECK((array == nullptr) == (memory_short || model.count == 0));
  if (array == nullptr) return;
  CHECK(array->cleanFn == record_release);
  CHECK(model.values() == std::vector<void*>(array->items, array->items + array->count));
  PLX_array_destroyWithoutClean(array);
}

}  // namespace

void run_hash_table(Program& program) {
  static const std::string keys[] = {"",  "a",  "A",    "b",    "Key",          "KEY",
                                     "k", "kE", "\xE4", "\xC4", "longer key 1", "LONGER key 1"};
  int pool[16];
  Model model;
  model.buckets.resize(1 + program.below(20));
  released.clear();
  PLX_hashtable* table =
      PLX_hashtable_create(static_cast<uint32_t>(model.buckets.size()), PLX_stringHashValue,
                           PLX_stringHashCompare, record_release);
  while (!program.done()) {
    const std::string& key = keys[program.below(12)];
    switch (program.below(8)) {
      case 0:
        check_delete(table, &model, key);
        break;
      case 1: {
        const int at = model.index_of(key);
        void* const wanted = at < 0 ? nullptr : model.bucket_of(key)[at].value;
        CHECK(PLX_hashtable_find(table, std::string(key).c_str()) == wanted);
        break;
      }
      case 2:
        check_enumeration(table, model);
        break;
      case 3:
        check_array_of_values(table, model, program.below(8));
        break;
      case 4:  // the count stays
        if (!program.one_in(8)) break;
        PLX_hashtable_clear(table);
        model.release_all();
        break;
      default:
        check_insert(table, &model, key, &pool[program.below(16)], program.one_in(16));
    }
    CHECK(PLX_hashtable_getNodeCount(table) == model.count);
    CHECK(model.released == released);
  }
  model.release_all();
  PLX_hashtable_destroy(table);
  CHECK(model.released == released);
}

}  // namespace plx_fuzz
