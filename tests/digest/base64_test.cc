#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <plx/digest.h>
#include <string.h>

#include <string>
#include <vector>

#include "digest/base64_text.h"
#include "support/judge.h"

namespace {

using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::random_bytes;

std::string judge_base64(const std::string& bytes) {
  std::string text(bytes.size() / 3 * 4 + 5, '\0');
  text.resize(
      static_cast<size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&text[0]),
                                          bytes_of(bytes), static_cast<int>(bytes.size()))));
  return text;
}

std::string as_url(std::string text) {
  for (char& c : text) c = c == '+' ? '-' : c == '/' ? '_' : c;
  text.resize(text.find_last_not_of('=') + 1);
  return text;
}

// The decoders from and to exactly as much memory as is their business: the decoded bytes, or
// "refused" for a result of 0.
const std::string kRefused = "refused";
plx_test::PageEnd in_page, out_page;

std::string decode(const std::string& text) {
  const char* in = reinterpret_cast<const char*>(in_page.copy(text));
  uint8_t* out = out_page.bytes(text.size());
  const unsigned size = PLX_b64_decode(in, static_cast<unsigned>(text.size()), out);
  if (size == 0) return kRefused;
  EXPECT_EQ(0, out[size]);
  return as_bytes(out, size);
}

std::string decode_url(const std::string& text) {
  const char* in = reinterpret_cast<const char*>(in_page.copy(text));
  const size_t room = text.size() * 3 / 4;
  const unsigned size = PLX_base64UrlDecode(out_page.bytes(room), static_cast<unsigned>(room), in,
                                            static_cast<int>(text.size()));
  return size == 0 ? kRefused : as_bytes(out_page.bytes(room), size);
}

// Into exactly enough room, and not into less. fuzz/fuzz_base64.cc decodes the texts again.
TEST(Base64, EveryLengthEncoded) {
  std::vector<size_t> sizes = {3000, 65536, 65537};
  for (size_t size = 1; size <= 300; ++size) sizes.push_back(size);
  for (size_t size : sizes) {
    const std::string bytes = random_bytes(size);
    const uint8_t* in = in_page.copy(bytes);
    const std::string text = judge_base64(bytes), url = as_url(text);
    const unsigned length = static_cast<unsigned>(size);
    const unsigned room = static_cast<unsigned>(text.size() + 1);
    char* out = out_page.chars(room);
    ASSERT_EQ(text.size(), PLX_b64_encode(in, length, out, room));
    ASSERT_STREQ(text.c_str(), out);
    ASSERT_EQ(0u, PLX_b64_encode(in, length, out, room - 1));
    const unsigned url_room = static_cast<unsigned>(url.size() + 1);
    char* url_out = out_page.chars(url_room);
    ASSERT_EQ(0, PLX_base64UrlEncoder(url_out, url_room, in, length));
    ASSERT_STREQ(url.c_str(), url_out);
    url_out[0] = '.';
    ASSERT_EQ(-1, PLX_base64UrlEncoder(url_out, url_room - 1, in, length));
    ASSERT_EQ('.', url_out[0]);
  }
}

// A text that ends in a NUL well before the given length, where its page ends or not; nothing may
// be read behind its page, nor written behind its bytes.
TEST(Base64, UrlTextEndsInANul) {
  constexpr unsigned kRoom = 3 << 14;
  constexpr int kLimit = 1 << 16;
  std::vector<size_t> sizes = {4000, 5000, 6143, 6144, 6145, 6146};
  for (size_t size = 1; size <= 400; ++size) sizes.push_back(size);
  for (size_t size : sizes) {
    const std::string bytes = random_bytes(size), url = as_url(judge_base64(bytes));
    for (const std::string& behind : {std::string(), std::string(size % 70, 'A')}) {
      const std::string text = url + '\0' + behind;
      const char* in = reinterpret_cast<const char*>(in_page.copy(text));
      uint8_t* out = out_page.copy(std::string(kRoom, '.'));
      ASSERT_EQ(size, PLX_base64UrlDecode(out, kRoom, in, kLimit)) << size;
      ASSERT_EQ(hex(bytes), hex(as_bytes(out, size)));
      ASSERT_EQ(std::string(70, '.'), as_bytes(out + size, 70)) << size;
      std::string wrong = text;
      wrong[url.size() - 1 - size % 3] = '=';
      in = reinterpret_cast<const char*>(in_page.copy(wrong));
      ASSERT_EQ(0u, PLX_base64UrlDecode(out, kRoom, in, kLimit)) << size;
      wrong = url.substr(0, url.size() / 4 * 4) + std::string("Z\0", 2) + behind;
      in = reinterpret_cast<const char*>(in_page.copy(wrong));
      ASSERT_EQ(0u, PLX_base64UrlDecode(out, kRoom, in, kLimit)) << size;
    }
  }
}

TEST(Base64, Leniency) {
  struct Row {
    std::string text;
    std::string bytes;
  };
  const Row rows[] = {
      {"Zg==", "f"},
      {"Zh==", "f"},  // unused bits are ignored
      {"Zm8=", "fo"},
      {"Zm9v", "foo"},
      {"Zm=v", std::string("f\x60\x2f", 3)},  // callers depend on an inner "=" being 0
      {"=m9v", std::string("\x02\x6f\x6f", 3)},
      {"Z=9v", std::string("\x64\x0f\x6f", 3)},
      {"==AA", std::string(3, '\0')},
      {"=A==", std::string(1, '\0')},
      {"Zm9vZg==Zm9v", std::string("foof\0\0foo", 9)},
      {"Zg", kRefused},
      {"Zg=", kRefused},
      {"Zm9vZ", kRefused},
      {"Z===", kRefused},
      {"====", kRefused},
      {"Zm9vZ===", kRefused},
      {"Zm9v====", kRefused},
      {"Zm9v\r\n==", kRefused},
      {"", kRefused},
  };
  for (const Row& row : rows) EXPECT_EQ(hex(row.bytes), hex(decode(row.text))) << row.text;
  EXPECT_EQ(kRefused, decode_url("Zg=="));
  EXPECT_EQ(kRefused, decode_url("Zm=v"));
  EXPECT_EQ(kRefused, decode_url("Zm9vZ"));
  EXPECT_EQ("foo", decode_url(std::string("Zm9v\0Z!", 7)));
  EXPECT_EQ(kRefused, decode_url(std::string("\0Zm9v", 5)));
  EXPECT_EQ("f", decode_url("Zh"));
}

// Every character at every position of a single group, of tails, and of texts long enough for a
// kernel.
TEST(Base64, EveryCharacterEverywhere) {
  const std::string common = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  for (size_t length : {2u, 3u, 4u, 254u, 255u, 256u}) {
    for (size_t position = 0; position < length; ++position) {
      for (int c = 1; c < 256; ++c) {
        std::string text(length, 'k');
        text[position] = static_cast<char>(c);
        const bool is_common = common.find(static_cast<char>(c)) != std::string::npos;
        const bool is_url = is_common || c == '-' || c == '_';
        ASSERT_EQ(is_url, decode_url(text) != kRefused) << length << " " << position << " " << c;
        text.resize((length + 3) / 4 * 4, '=');
        const bool is_standard = is_common || c == '+' || c == '/' || c == '=';
        const bool ends_in_three = length % 4 == 2 && position == length - 1 && c == '=';
        ASSERT_EQ(is_standard && !ends_in_three, decode(text) != kRefused)
            << length << " " << position << " " << c;
      }
    }
  }
  EXPECT_EQ(kRefused, decode(std::string("Zm9\0", 4)));
}

TEST(Base64, Refusals) {
  // The pointers are never followed, whatever the lengths say.
  auto* bytes = reinterpret_cast<uint8_t*>(uintptr_t{8});
  auto* text = reinterpret_cast<char*>(uintptr_t{8});
  const unsigned kMost = 0xBD81A98Au, kMostText = 0xFCACE210u, kAll = 0xFFFFFFFFu;
  EXPECT_EQ(kMostText, plx::digest::digits_for(kMost) + 2);
  EXPECT_EQ(0u, PLX_b64_encode(nullptr, 3, text, 99));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, 0, text, 99));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, 3, nullptr, 99));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, 3, text, 0));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, kMost + 1, text, kAll));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, kMost, text, kMostText));
  EXPECT_EQ(0u, PLX_b64_encode(bytes, kAll, text, kAll));
  EXPECT_EQ(0u, PLX_b64_decode(nullptr, 4, bytes));
  EXPECT_EQ(0u, PLX_b64_decode(text, 4, nullptr));
  for (unsigned length : {0u, 3u, kAll, 0x7FFFFFFFu})
    EXPECT_EQ(0u, PLX_b64_decode(text, length, bytes));
  EXPECT_EQ(-1, PLX_base64UrlEncoder(text, 99, nullptr, 3));
  EXPECT_EQ(-1, PLX_base64UrlEncoder(text, 99, bytes, 0));
  EXPECT_EQ(-1, PLX_base64UrlEncoder(nullptr, 99, bytes, 3));
  EXPECT_EQ(-1, PLX_base64UrlEncoder(text, 0, bytes, 3));
  // Lengths whose texts a 32-bit product would take for short ones.
  for (unsigned length : {0xC0000000u, 0xC0000002u, kAll}) {
    EXPECT_EQ(-1, PLX_base64UrlEncoder(text, kAll, bytes, length)) << length;
  }
  EXPECT_EQ(-1, PLX_base64UrlEncoder(text, 0x55555555u, bytes, 0x40000000u));
  EXPECT_EQ(0u, PLX_base64UrlDecode(bytes, 9, nullptr, 4));
  for (int length : {0, -1, INT32_MIN}) EXPECT_EQ(0u, PLX_base64UrlDecode(bytes, 9, text, length));
  EXPECT_EQ(0u, PLX_base64UrlDecode(nullptr, 9, "Zm9v", 4));
  EXPECT_EQ(0u, PLX_base64UrlDecode(bytes, 0, "Zm9v", 4));
  EXPECT_EQ(0u, PLX_base64UrlDecode(bytes, 2, "Zm9v", 0x7FFFFFFF));
}

// The formulas of the refusals, in numbers that cannot wrap.
TEST(Base64, DigitsForEveryLength) {
  for (uint64_t size : {uint64_t{0}, uint64_t{1}, uint64_t{2}, uint64_t{3}, uint64_t{4},
                        uint64_t{0x3FFFFFFF}, uint64_t{0xBD81A98A}, uint64_t{0xFFFFFFFF}}) {
    EXPECT_EQ(size * 4 / 3 + (size % 3 != 0 ? 1 : 0), plx::digest::digits_for(size)) << size;
  }
}

}  // namespace
