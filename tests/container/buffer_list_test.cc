#include <gtest/gtest.h>
#include <limits.h>
#include <plx/container.h>

#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/allocation.h"

namespace {

PLX_bufList* create(int num_bufs, int buf_size, std::string* printed) {
  testing::internal::CaptureStdout();
  PLX_bufList* list = PLX_bufList_init(num_bufs, buf_size);
  *printed = testing::internal::GetCapturedStdout();
  return list;
}

TEST(BufferList, InitPrintsItsLine) {
  const char kNoRecord[] = "PLX_bufList_init at 30 line,error!\n";
  const char kNoNodes[] = "PLX_bufList_init at 38 line,error!\n";
  const char kNoData[] = "PLX_bufList_init at 44 line\n";
  const char kCreated[] = "PLX_bufList_init at 65 line\n";
  struct Row {
    int num_bufs, buf_size;
    size_t fail_at;
    const char* line;
  };
  const Row rows[] = {
      {2, 16, 0, kCreated},      {1, 1, 0, kCreated},          {2, 16, 1, kNoRecord},
      {2, 16, 2, kNoNodes},      {2, 16, 3, kNoData},          {0, 16, 0, kNoNodes},
      {0, 0, 0, kNoNodes},       {-1, 16, 0, kNoNodes},        {INT_MIN, -1, 0, kNoNodes},
      {INT_MAX, 1, 0, kNoNodes}, {0x15555556, 1, 0, kNoNodes},  // 12 times this wraps to 8
      {4, 0, 0, kNoData},        {4, -1, 0, kNoData},          {-1, -1, 0, kNoNodes},
      {2, INT_MIN, 0, kNoData},  {2, 0x40000000, 0, kNoData},  {65536, 65536, 0, kNoData},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.num_bufs << " " << row.buf_size << " " << row.fail_at);
    testing::internal::CaptureStdout();
    PLX_bufList* list;
    long live;
    {
      plx_test::AllocationFault fault(row.fail_at);
      list = PLX_bufList_init(row.num_bufs, row.buf_size);
      EXPECT_EQ(row.line == kCreated, list != nullptr);
      PLX_bufList_realse(list);
      live = fault.live_blocks();
    }
    EXPECT_EQ(row.line, testing::internal::GetCapturedStdout());
    EXPECT_EQ(0, live);
  }
}

TEST(BufferList, RefusesNullAndEmpty) {
  std::string printed;
  PLX_bufList* list = create(2, 4, &printed);
  void* buf = nullptr;
  int len = 0;
  EXPECT_EQ(-1, PLX_bufList_push_back(list, list->data, 1));  // no buffer was taken yet
  EXPECT_EQ(-1, PLX_bufList_getUseableBuf(list, nullptr));
  EXPECT_EQ(list->nodes, list->freeHead);
  EXPECT_EQ(-1, PLX_bufList_getUseableBuf(nullptr, &buf));
  EXPECT_EQ(-1, PLX_bufList_front(list, nullptr, nullptr));
  ASSERT_EQ(0, PLX_bufList_getUseableBuf(list, &buf));
  EXPECT_EQ(-1, PLX_bufList_push_back(nullptr, buf, 1));
  ASSERT_EQ(0, PLX_bufList_push_back(list, buf, 4));
  EXPECT_EQ(-1, PLX_bufList_pop_front(list, nullptr, &len));
  EXPECT_EQ(-1, PLX_bufList_pop_front(list, &buf, nullptr));
  EXPECT_EQ(-1, PLX_bufList_pop_front(nullptr, &buf, &len));
  EXPECT_EQ(-1, PLX_bufList_front(nullptr, &buf, &len));
  EXPECT_EQ(-1, PLX_bufList_clearAllBufList(nullptr));
  EXPECT_EQ(0, PLX_bufList_front(list, nullptr, nullptr));
  EXPECT_EQ(1, list->usedCount);
  // A buffer queued again without being taken tangles the queue, and all stays within the pool.
  ASSERT_EQ(0, PLX_bufList_push_back(list, buf, 1));
  for (int i = 0; i < 2; ++i) ASSERT_EQ(0, PLX_bufList_pop_front(list, &buf, &len));
  EXPECT_EQ(-1, PLX_bufList_pop_front(list, &buf, &len));  // none is counted as queued
  EXPECT_EQ(1, list->nodes[0].len);  // callers depend on the length that was queued last
  EXPECT_EQ(0, PLX_bufList_clearAllBufList(list));
  EXPECT_EQ(0, list->usedCount);
  PLX_bufList_realse(list);
  PLX_bufList_realse(nullptr);
}

}  // namespace
