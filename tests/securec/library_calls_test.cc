// Short blocks and texts do not take the way into the C library, on any machine.
#include <gtest/gtest.h>
#include <plx/securec.h>
#include <string.h>

#include "internal/cpu.h"

extern "C" {
static int calls = 0;
void* __real_memset(void* dst, int c, size_t count);
void* __real_memcpy(void* dst, const void* src, size_t count);
size_t __real_strnlen(const char* text, size_t max);
void* __wrap_memset(void* dst, int c, size_t count) {
  ++calls;
  return __real_memset(dst, c, count);
}
void* __wrap_memcpy(void* dst, const void* src, size_t count) {
  ++calls;
  return __real_memcpy(dst, src, count);
}
size_t __wrap_strnlen(const char* text, size_t max) {
  ++calls;
  return __real_strnlen(text, max);
}
}

namespace {

using namespace plx;

class LibraryCalls : public testing::Test {
 protected:
  void SetUp() override {
    calls = 0;
    memset_sOptAsm(block_, 80, 5, 33);
    if (calls == 0) GTEST_SKIP() << "optimised at link time, or watched by a sanitizer";
    calls = 0;
    memcpy_sOptAsm(block_, 80, text_, 63);
    if (calls != 0) GTEST_SKIP() << "not optimised";
  }

  alignas(8) char block_[80] = {};
  alignas(8) char text_[80] = {};
};

TEST_F(LibraryCalls, SmallOptBlocks) {
  for (size_t count = 0; count <= 64; ++count) {
    memcpy_sOptAsm(block_ + count % 2, 79, text_, count);
    memcpy_sOptTc(block_, 80, text_, count);
    for (const int c : {0, 5, 0xFF}) {
      if (count > 32) break;
      memset_sOptAsm(block_ + count % 2, 79, c, count);
      memset_sOptTc(block_, 80, c, count);
    }
  }
  EXPECT_EQ(0, calls);
}

TEST_F(LibraryCalls, ShortTexts) {
  const uint32_t all = cpu::ask();
  for (const uint32_t features : {all, cpu::kAsked}) {
    cpu::g_features.store(features);
    for (size_t length = 0; length < 32; ++length) {
      text_[length] = 0;
      EXPECT_EQ(EOK, strcpy_s(block_ + length % 3, 40, text_));
      EXPECT_EQ(length, strlen(block_ + length % 3));
      text_[length] = 'x';
    }
  }
  EXPECT_EQ(0, calls);
  cpu::g_features.store(all);
}

}  // namespace
