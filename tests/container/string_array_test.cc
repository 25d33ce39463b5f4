#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>

#include <string>
#include <vector>

#include "support/allocation.h"
#include "support/leaks.h"

namespace {

// What an array holds; a lost entry reads "(null)".
std::vector<std::string> contents(const StringArray& array) {
  std::vector<std::string> texts;
  for (int i = 0; i < array.size; ++i) {
    texts.push_back(array.entries[i] != nullptr ? array.entries[i] : "(null)");
  }
  return texts;
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
  ASSERT_EQ(1, array.push_back("too"));
  array.setEntry(0, nullptr);
  array.sort(nullptr);
  array.capacity = array.size = 0x40000000;
  EXPECT_EQ(0, array.push_back("x"));
  array.capacity = 16, array.size = 2;
  EXPECT_EQ((std::vector<std::string>{"kept", "too"}), contents(array));
}

// While growth keeps failing the capacity keeps rising, and the old block keeps its size. Programs
// in which single growths fail are in fuzz/container/string_array.cc.
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

TEST(StringArray, FreesWhatItReplaces) {
  plx_test::AllocationFault live;
  {
    StringArray array;
    array.push_back("first");
    array.setEntry(0, "second");
    array.erase(0);
    EXPECT_EQ(1, live.live_blocks());  // the slots
  }
  EXPECT_EQ(0, live.live_blocks());
}

// Growth loses the texts, which programs depend on, but not the slots that named them.
TEST(StringArray, GrowthFreesTheOldSlotsAlone) {
  const plx_test::LeaksExpected leaks;
  plx_test::AllocationFault live;
  {
    StringArray array;
    for (int i = 0; i < 17; ++i) array.push_back("text");
  }
  EXPECT_EQ(16, live.live_blocks());
}

}  // namespace
