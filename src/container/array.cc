#include "container/array.h"

#include <limits.h>

#include <algorithm>
#include <utility>

#include "container/alloc.h"
#include "internal/checked_size.h"
#include "securec/memory.h"

// Callers read the fields directly.
static_assert(offsetof(PLX_array, count) == 0);
static_assert(offsetof(PLX_array, capacity) == 4);
static_assert(offsetof(PLX_array, items) == 8);
static_assert(offsetof(PLX_array, cleanFn) == 8 + sizeof(void*));
static_assert(sizeof(PLX_array) == 8 + 2 * sizeof(void*));

namespace plx::container {
namespace {

constexpr int64_t kGrowthSlots = 16;

size_t slot_bytes(int64_t num_slots) {  // at most INT_MAX slots
  return saturating_multiply(static_cast<size_t>(num_slots), sizeof(void*));
}

// False for every index after a failed growth too, for it leaves a count without slots.
bool holds_index(const PLX_array* array, int index) {
  return array != nullptr && array->items != nullptr && index >= 0 && index < array->count;
}

void release_slot(const PLX_array* array, int index) {
  void* const element = array->items[index];
  if (element == nullptr) return;
  if (array->cleanFn != nullptr) {
    array->cleanFn(element);
  } else {
    release_block(element);
  }
  array->items[index] = nullptr;
}

void move_slots(const PLX_array* array, int to, int from, int num_slots) {
  securec::move_memory(array->items + to, slot_bytes(num_slots), array->items + from,
                       slot_bytes(num_slots));
}

// The former last slot keeps a second copy of the last element.
void close_gap(PLX_array* array, int index) {
  array->items[index] = nullptr;
  const int behind = array->count - 1 - index;
  if (behind > 0) move_slots(array, index, index + 1, behind);
  --array->count;
}

void clean_array(PLX_array* array) {
  if (array == nullptr || array->items == nullptr) return;
  for (int i = 0; i < array->count; ++i) release_slot(array, i);
  release_block(array->items);
  array->items = nullptr;
  array->count = array->capacity = 0;
}

bool insert_element(PLX_array* array, void* element, int index) {
  if (!ensure_room(array, int64_t{array->count} + 1)) return false;
  const int at = std::clamp(index, 0, array->count);
  if (at < array->count) move_slots(array, at + 1, at, array->count - at);
  array->items[at] = element;
  ++array->count;
  return true;
}

bool modify_element(PLX_array* array, int index, void* element) {
  // Callers depend on an index equal to the count: it is stored to and not counted.
  if (index < 0 || index > array->count) return false;
  if (!ensure_room(array, int64_t{index} + 1)) return false;
  release_slot(array, index);
  array->items[index] = element;
  return true;
}

bool move_element(PLX_array* array, int from, int to) {
  from = std::min(from, array->count - 1);
  to = std::min(to, array->count - 1);
  if (from == to) return true;
  if (array->items == nullptr) return false;
  void* const element = array->items[from];
  if (from < to) {
    move_slots(array, from, from + 1, to - from);
  } else {
    move_slots(array, to + 1, to, from - to);
  }
  array->items[to] = element;
  return true;
}

int find_element(const PLX_array* array, const void* key,
                 int (*compare)(const void*, const void*)) {
  for (int i = 0; holds_index(array, i); ++i) {
    const void* const element = array->items[i];
    if (element != nullptr && compare(key, element) == 0) return i;
  }
  return -1;
}

int result(bool done) { return done ? 0 : -1; }

}  // namespace

PLX_array* create_array(ReleaseElement clean) {
  auto* array = allocate_zeroed_record<PLX_array>();
  if (array != nullptr) array->cleanFn = clean;
  return array;
}

void free_array_alone(PLX_array* array) {
  if (array == nullptr) return;
  release_block(array->items);
  release_block(array);
}

bool grow_array(PLX_array* array, int64_t needed) {
  const int64_t rounded = (needed + kGrowthSlots - 1) / kGrowthSlots * kGrowthSlots;
  // Slots that a failed growth lost are brought back in full.
  const int64_t capacity = std::max<int64_t>(rounded, array->capacity);
  if (capacity > INT_MAX) return false;
  void* const slots = array->items == nullptr ? allocate_zeroed(slot_bytes(capacity))
                                              : grow_block(array->items, slot_bytes(capacity),
                                                           slot_bytes(array->capacity));
  const bool was_empty = array->items == nullptr;
  array->items = static_cast<void**>(slots);
  if (slots == nullptr) return false;
  array->capacity = static_cast<int32_t>(capacity);
  const size_t unused = slot_bytes(capacity - array->count);
  if (!was_empty) securec::fill_memory(array->items + array->count, unused, 0, unused);
  return true;
}

bool append_growing(PLX_array* array, void* element) {
  if (!grow_array(array, int64_t{array->count} + 1)) return false;
  array->items[array->count++] = element;
  return true;
}

}  // namespace plx::container

using namespace plx::container;

extern "C" {

PLX_array* PLX_array_create(void (*cleanFn)(void*)) { return create_array(cleanFn); }

void PLX_array_clean(PLX_array* array) { clean_array(array); }

void PLX_array_destroy(PLX_array* array) {
  clean_array(array);
  free_array_alone(array);
}

void PLX_array_destroyWithoutClean(PLX_array* array) { free_array_alone(array); }

int PLX_array_getCount(const PLX_array* array) { return array != nullptr ? array->count : -1; }

int PLX_array_append(PLX_array* array, void* element) {
  if (array == nullptr) return -1;
  return result(append_element(array, element));
}

void* PLX_array_getIndex(const PLX_array* array, int index) {
  return holds_index(array, index) ? array->items[index] : nullptr;
}

int PLX_array_insert(PLX_array* array, void* element, int index) {
  if (array == nullptr) return -1;
  return result(insert_element(array, element, index));
}

int PLX_array_modify(PLX_array* array, int index, void* element) {
  if (array == nullptr || element == nullptr) return -1;
  return result(modify_element(array, index, element));
}

int PLX_array_preAppend(PLX_array* array, int n) {
  if (array == nullptr) return -1;
  const int64_t needed = int64_t{array->count} + n;
  return result(n <= 0 || ensure_room(array, needed));
}

void PLX_array_delete(PLX_array* array, int index) {
  if (!holds_index(array, index)) return;
  release_slot(array, index);
  close_gap(array, index);
}

void PLX_array_deleteWithoutClean(PLX_array* array, int index) {
  if (holds_index(array, index)) close_gap(array, index);
}

int PLX_array_find(const PLX_array* array, const void* key,
                   int (*compare)(const void*, const void*)) {
  if (array == nullptr || key == nullptr || compare == nullptr) return -1;
  return find_element(array, key, compare);
}

void PLX_array_exchangeElement(PLX_array* array, int i, int j) {
  // Nothing is tested; callers reach slots behind the count this way.
  std::swap(array->items[i], array->items[j]);
}

int PLX_array_move(PLX_array* array, int from, int to) {
  if (array == nullptr || from < 0 || to < 0) return -1;
  return result(move_element(array, from, to));
}

}  // extern "C"
