#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support/allocation.h"

namespace {

// What an array holds; a lost entry reads "(null)".
std::vector<std::string> contents(const StringArray& array) {
  std::vector<std::string> texts;
  for (int i = 0; i < array.size; ++i) {
    texts.push_back(array.entries[i] != nullptr ? array.entries[i] : "(null)");
  }
  return texts;
}

// A push_back whose growth loses the entries; the test frees them, for nobody else does.
int push_back(StringArray* array, const char* text) {
  char* held[600];
  const int size = array->size;
  std::copy_n(array->entries, size, held);
  const int code = array->push_back(text);
  for (int i = 0; i < size; ++i) {
    if (array->entries[i] != held[i]) delete[] held[i];
  }
  return code;
}

TEST(StringArray, RefusesNullAndFullCapacity) {
  StringArray array;
  EXPECT_EQ(0, array.capacity);
  EXPECT_EQ(0, array.size);
  EXPECT_EQ(nullptr, array.entries);
  EXPECT_EQ(0, array.push_back(nullptr));
  EXPECT_EQ(0, array.capacity);
  array.sort(StringArray::cmpAscendingAlpha);
  array.erase(0);
  array.setEntry(0, "x");
  ASSERT_EQ(1, array.push_back("kept"));
  array.setEntry(0, nullptr);
  array.sort(nullptr);
  array.capacity = array.size = 0x40000000;
  EXPECT_EQ(0, array.push_back("x"));
  array.capacity = 16, array.size = 1;
  EXPECT_EQ(std::vector<std::string>{"kept"}, contents(array));
}

// The first allocation is the slots, the 18th those of the growth from 16 to 32, the 20th that of
// the replacement; the others are copies of the text.
TEST(StringArray, EveryAllocationFailingOnce) {
  for (size_t fail_at = 1; fail_at <= 21; ++fail_at) {
    SCOPED_TRACE(fail_at);
    plx_test::AllocationFault fault(fail_at);
    {
      StringArray array;
      int refused = 0;
      while (array.size < 17) {
        const int size = array.size;
        refused += push_back(&array, "text") == 0 ? 1 : 0;
        if (array.size == size) continue;
        ASSERT_EQ(size + 1, array.size);
        ASSERT_STREQ("text", array.entries[size]);
      }
      EXPECT_EQ(fail_at <= 19 ? 1 : 0, refused);
      // A growth that failed has raised the capacity, and the next one doubles that. Where the 16
      // entries then fit the misread size of the copy, they are kept.
      EXPECT_EQ(fail_at == 18 ? 64 : 32, array.capacity);
      const bool kept = fail_at == 1 || (fail_at == 18 && 16 * sizeof(char*) <= 64);
      EXPECT_EQ(kept, array.entries[0] != nullptr);
      EXPECT_EQ(kept, array.entries[15] != nullptr);
      array.setEntry(16, "other");
      EXPECT_STREQ(fail_at == 20 ? "text" : "other", array.entries[16]);
      EXPECT_EQ(fail_at <= 20, fault.hit());
    }
    EXPECT_EQ(0, fault.live_blocks());
  }
}

// While growth keeps failing the capacity keeps rising, and the old block keeps its size.
TEST(StringArray, GrowthFailingForGood) {
  StringArray array;
  for (int i = 0; i < 16; ++i) ASSERT_EQ(1, array.push_back("text"));
  {
    plx_test::AllocationFault fault(1, true);
    for (int i = 0; i < 40; ++i) ASSERT_EQ(0, array.push_back("text"));
  }
  EXPECT_EQ(0x40000000, array.capacity);
  EXPECT_EQ(std::vector<std::string>(16, "text"), contents(array));
  array.erase(3);
  EXPECT_EQ(1, array.push_back("last"));
  EXPECT_EQ(0, array.push_back("none"));
  EXPECT_EQ(16, array.size);
  EXPECT_STREQ("last", array.entries[15]);
}

}  // namespace
