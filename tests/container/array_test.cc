#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>

#include "support/allocation.h"

namespace {

void leave(void*) {}

int compare_ints(const void* a, const void* b) {
  return *static_cast<const int*>(a) == *static_cast<const int*>(b) ? 0 : 1;
}

TEST(Array, CopiesShareTheirElements) {
  int values[20] = {};
  PLX_array* array = PLX_array_create(leave);
  EXPECT_EQ(nullptr, PLX_array_createFromArray(array));
  for (int& value : values) PLX_array_append(array, &value);
  PLX_array* copy = PLX_array_createFromArray(array);
  ASSERT_NE(nullptr, copy);
  EXPECT_EQ(20, copy->count);
  EXPECT_EQ(20, copy->capacity);  // not 32: callers depend on it
  EXPECT_EQ(leave, copy->cleanFn);
  EXPECT_EQ(0, memcmp(copy->items, array->items, 20 * sizeof(void*)));
  ASSERT_EQ(0, PLX_array_append(copy, values));
  EXPECT_EQ(32, copy->capacity);
  EXPECT_EQ(values, copy->items[20]);
  EXPECT_EQ(nullptr, copy->items[31]);
  PLX_array_destroyWithoutClean(copy);
  PLX_array_destroyWithoutClean(array);
}

TEST(Array, ReleasesWithPlxFreeByDefault) {
  plx_test::AllocationFault count;
  PLX_array* array = PLX_array_create(nullptr);
  for (int i = 0; i < 3; ++i) PLX_array_append(array, PLX_malloc(8));
  PLX_array_append(array, nullptr);
  PLX_array_delete(array, 1);
  PLX_array_modify(array, 0, PLX_malloc(8));
  PLX_array_destroy(array);
  EXPECT_EQ(0, count.live_blocks());
}

PLX_array* watched;

TEST(Array, ReleasesInOrderAndForgets) {
  int values[3];
  watched = PLX_array_create([](void* element) {
    int i = 0;
    while (watched->items[i] == nullptr) ++i;  // those released before are gone
    EXPECT_EQ(watched->items[i], element);
  });
  for (int& value : values) PLX_array_append(watched, &value);
  PLX_array_destroy(watched);
}

TEST(Array, NullIsRefused) {
  int value = 1;
  PLX_array* array = PLX_array_create(nullptr);
  // Elements that a call could go on to compare.
  for (int i = 0; i < 2; ++i) EXPECT_EQ(0, PLX_array_append(array, &value));
  EXPECT_EQ(-1, PLX_array_getCount(nullptr));
  EXPECT_EQ(-1, PLX_array_append(nullptr, &value));
  EXPECT_EQ(-1, PLX_array_insert(nullptr, &value, 0));
  EXPECT_EQ(-1, PLX_array_modify(nullptr, 0, &value));
  EXPECT_EQ(-1, PLX_array_preAppend(nullptr, 1));
  EXPECT_EQ(-1, PLX_array_move(nullptr, 0, 0));
  EXPECT_EQ(-1, PLX_array_find(nullptr, &value, compare_ints));
  EXPECT_EQ(-1, PLX_array_find(array, nullptr, compare_ints));
  EXPECT_EQ(-1, PLX_array_find(array, &value, nullptr));
  EXPECT_EQ(nullptr, PLX_array_getIndex(nullptr, 0));
  EXPECT_EQ(nullptr, PLX_array_createFromArray(nullptr));
  EXPECT_EQ(nullptr, PLX_array_createFromHashTable(nullptr, nullptr));
  PLX_array_sort(nullptr, compare_ints);
  PLX_array_sort(array, nullptr);
  PLX_array_delete(nullptr, 0);
  PLX_array_deleteWithoutClean(nullptr, 0);
  PLX_array_clean(nullptr);
  PLX_array_destroy(nullptr);
  PLX_array_destroyWithoutClean(nullptr);
  PLX_array_exchangeElement(array, 0, 15);  // callers reach slots behind the count
  EXPECT_EQ(&value, array->items[15]);
  PLX_array_destroyWithoutClean(array);
}

// A failed growth loses the slots and keeps the count. fuzz/container/array.cc goes on from there;
// this growth fails by its size, which no block can have.
TEST(Array, RefusedGrowthLosesTheSlots) {
  int value = 7;
  plx_test::AllocationFault live;
  PLX_array* array = PLX_array_create(leave);
  for (int i = 0; i < 32; ++i) PLX_array_append(array, &value);
  EXPECT_EQ(-1, PLX_array_preAppend(array, INT_MAX));  // does not fit: nothing changes
  EXPECT_EQ(&value, PLX_array_getIndex(array, 31));
  EXPECT_EQ(-1, PLX_array_preAppend(array, INT_MAX - 60));
  EXPECT_EQ(nullptr, array->items);
  EXPECT_EQ(32, PLX_array_getCount(array));
  EXPECT_EQ(nullptr, PLX_array_getIndex(array, 0));
  EXPECT_EQ(-1, PLX_array_move(array, 0, 1));
  PLX_array_sort(array, compare_ints);
  PLX_array_clean(array);
  EXPECT_EQ(32, PLX_array_getCount(array));
  ASSERT_EQ(0, PLX_array_modify(array, 2, &value));  // brings all slots back
  EXPECT_EQ(32, array->capacity);
  ASSERT_EQ(0, PLX_array_append(array, &value));
  EXPECT_EQ(nullptr, array->items[31]);
  EXPECT_EQ(&value, array->items[32]);
  PLX_array_destroyWithoutClean(array);
  EXPECT_EQ(0, live.live_blocks());
}

}  // namespace
