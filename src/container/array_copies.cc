// Arrays made from the elements of another container, which stay shared with it.
#include "container/array.h"
#include "container/hash_table.h"
#include "securec/memory.h"

namespace plx::container {
namespace {

// An empty array with room for `count` elements; null without memory, and for a count of 0.
PLX_array* create_with_room(ReleaseElement clean, int64_t count) {
  PLX_array* const array = create_array(clean);
  if (array != nullptr && ensure_room(array, count)) return array;
  free_array_alone(array);
  return nullptr;
}

PLX_array* copy_array(const PLX_array* source) {
  if (source->items == nullptr) return nullptr;
  PLX_array* const copy = create_with_room(source->cleanFn, source->count);
  if (copy == nullptr) return nullptr;
  // Callers depend on the capacity being the count, not the slots that there are.
  copy->capacity = copy->count = source->count;
  const size_t size = static_cast<size_t>(source->count) * sizeof(void*);
  securec::copy_memory(copy->items, size, source->items, size);
  return copy;
}

PLX_array* collect_values(PLX_hashtable* table, ReleaseElement clean) {
  PLX_array* const array = create_with_room(clean, table->nodeCount);
  if (array == nullptr) return nullptr;
  begin_enumeration(table);
  while (void* const value = next_value(table)) {
    if (!append_element(array, value)) {
      free_array_alone(array);
      return nullptr;
    }
  }
  return array;
}

}  // namespace
}  // namespace plx::container

extern "C" {

PLX_array* PLX_array_createFromArray(const PLX_array* array) {
  return array != nullptr ? plx::container::copy_array(array) : nullptr;
}

PLX_array* PLX_array_createFromHashTable(PLX_hashtable* table, void (*cleanFn)(void*)) {
  return table != nullptr ? plx::container::collect_values(table, cleanFn) : nullptr;
}

}  // extern "C"
