#include <gtest/gtest.h>
#include <limits.h>
#include <plx/key_store.h>
#include <string.h>

#include <string>

#include "cipher/byte_dump.h"
#include "cipher/hex_text.h"
#include "cipher/support.h"
#include "support/guarded.h"

namespace {

using namespace plx_test;

TEST(CipherHelpers, Dump) {
  struct Row {
    const char* title;
    std::string data;
    int len;
    size_t size;
    const char* text;
  };
  const std::string three("\x0A\x00\xFF", 3);
  const Row rows[] = {
      {"key", three, 3, 1024, "key[0A 00 FF]"},
      {"key", three, 1, 1024, "key[0A]"},
      {"", three, 3, 1024, "[0A 00 FF]"},
      {"key", three, 0, 1024, "key[]"},
      {"key", three, INT_MIN, 1024, "key[]"},
      {"key", three, 3, 14, "key[0A 00 FF]"},
      {"key", three, 3, 13, ""},  // a dump that does not fit leaves nothing
      {"key", three, INT_MAX, 12, ""},
      {"title", three, 3, 6, ""},
      {"titles", three, 3, 6, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.title << " " << row.len << " " << row.size);
    std::string text(1024, '.');
    plx::cipher::format_dump(&text[0], row.size, row.title,
                             reinterpret_cast<const unsigned char*>(row.data.data()), row.len);
    EXPECT_STREQ(row.text, text.c_str());
    EXPECT_EQ(std::string(1024 - row.size, '.'), text.substr(row.size));
  }
}

TEST(CipherHelpers, DumpIsSilent) {
  const unsigned char data[] = {1, 2, 3};
  testing::internal::CaptureStdout();
  printUnsignedCharArray("key", data, 3);
  printUnsignedCharArray(nullptr, data, 3);
  printUnsignedCharArray("key", nullptr, 3);
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

// Every character at every place, and every length: blocks and tables must agree.
TEST(CipherHelpers, HexOfEveryCharacterAndLength) {
  const auto value_of = [](int c) {
    return c >= '0' && c <= '9'       ? c - '0'
           : strchr("ABCDEF", c) && c ? c - 'A' + 10
           : c >= 'a' && c <= 'f'     ? c - 'a' + 10
                                      : 0;
  };
  for (size_t len = 0; len <= 70; ++len) {
    const size_t count = (len + 1) / 2;
    Guarded<char> in(len), back(2 * count);
    Guarded<unsigned char> out(count);
    for (int c = 0; c < 256; ++c) {
      std::string expected;
      for (size_t i = 0; i < len; ++i) in[i] = static_cast<char>(i == c % len ? c : '7');
      for (size_t i = 0; i < len; i += 2) {
        const int high = value_of(static_cast<unsigned char>(in[i]));
        const int low = i + 1 < len ? value_of(static_cast<unsigned char>(in[i + 1])) : 0;
        expected += static_cast<char>(16 * high + low);
      }
      ASSERT_EQ(length(expected), plx::cipher::read_hex(in.data(), len, out.data())) << len;
      ASSERT_EQ(0, memcmp(expected.data(), out.data(), count)) << len << " " << c;
      plx::cipher::write_hex(out.data(), length(expected), back.data());
      ASSERT_EQ(to_hex(expected), std::string(back.data(), 2 * count)) << len;
    }
  }
  plx::cipher::write_hex(nullptr, -1, nullptr);
}

TEST(CipherHelpers, LineFeedsAndUnderscores) {
  const std::string text = "a\nb__\n\nc";
  for (int len : {INT_MIN, -1, 0, 1, 2, 5, 8}) {
    std::string marked = text, restored = text;
    convertEOLToUnderscode(&marked[0], len);
    convertUnderscodeToEOL(&restored[0], len);
    for (int i = 0; i < 8; ++i) {
      const auto at = static_cast<size_t>(i);
      EXPECT_EQ(i < len && text[at] == '\n' ? '_' : text[at], marked[at]) << len << " " << i;
      EXPECT_EQ(i < len && text[at] == '_' ? '\n' : text[at], restored[at]) << len << " " << i;
    }
  }
  convertEOLToUnderscode(nullptr, 4);
  convertUnderscodeToEOL(nullptr, 4);
  deleteArrayPoint_s(nullptr);
}

}  // namespace
