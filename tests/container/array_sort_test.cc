#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>
#include <pthread.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Compare = int (*)(const void*, const void*);

PLX_array* array_of(std::vector<int>& values) {
  PLX_array* array = PLX_array_create(nullptr);
  PLX_array_preAppend(array, static_cast<int>(values.size()));
  for (int& value : values) PLX_array_append(array, &value);
  return array;
}

int compare_ints(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
  return x < y ? -1 : x > y;
}

std::mt19937 nonsense;

TEST(ArraySort, NonsenseLosesNothing) {
  const Compare answers[] = {[](const void*, const void*) { return -1; },
                             [](const void*, const void*) { return INT_MIN; },
                             [](const void*, const void*) { return 1; },
                             [](const void*, const void*) { return static_cast<int>(nonsense()); }};
  std::vector<int> values(1000);
  for (Compare answer : answers) {
    PLX_array* array = array_of(values);
    std::vector<void*> before(array->items, array->items + array->capacity);
    PLX_array_sort(array, answer);
    std::vector<void*> after(array->items, array->items + array->capacity);
    EXPECT_TRUE(std::equal(before.begin() + 1000, before.end(), after.begin() + 1000));
    std::sort(after.begin(), after.begin() + 1000);
    EXPECT_EQ(before, after);  // the addresses ascended to begin with
    PLX_array_destroyWithoutClean(array);
  }
}

// Orders in which the middle element is the largest, or the smallest, at every split, built up from
// the last one: a recursion into the larger side would be as deep as there are elements.
std::vector<int> middle_is_largest(int count) {
  std::vector<int> values;
  for (int n = 0; n < count; ++n) {
    values.push_back(n);  // of n + 1 elements
    values[n] = values[0];
    values[0] = values[n / 2];
    values[n / 2] = n;
  }
  return values;
}

std::vector<int> middle_is_smallest(int count) {
  std::vector<int> values;  // back to front
  for (int n = 0; n < count; ++n) {
    values.push_back(n);
    std::swap(values[n], values[n - n / 2]);
    values[n - n / 2] = count - 1 - n;
  }
  std::reverse(values.begin(), values.end());
  return values;
}

void* sort_in_thread(void* array) {
  PLX_array_sort(static_cast<PLX_array*>(array), compare_ints);
  return nullptr;
}

TEST(ArraySort, AdverseOrdersOnASmallStack) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 64 * 1024));
  for (const auto& order : {middle_is_largest, middle_is_smallest}) {
    std::vector<int> values = order(20000);
    PLX_array* array = array_of(values);
    pthread_t thread;
    ASSERT_EQ(0, pthread_create(&thread, &attributes, sort_in_thread, array));
    pthread_join(thread, nullptr);
    for (int i = 0; i < array->count; ++i) ASSERT_EQ(i, *static_cast<int*>(array->items[i]));
    PLX_array_destroyWithoutClean(array);
  }
  pthread_attr_destroy(&attributes);
}

}  // namespace
