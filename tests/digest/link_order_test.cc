// A host that links libcrypto as well has two functions named SHA256 and gets the one of the
// library that it names first. Compiled once for each order.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <openssl/sha.h>
#include <plx/digest.h>
#include <string.h>

#include <string>

namespace {

constexpr char kDigestOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

std::string library_of(void* address) {
  Dl_info info = {};
  EXPECT_NE(0, dladdr(address, &info));
  return info.dli_fname;
}

std::string text_of(const unsigned char* digest) {
  std::string text;
  for (int i = 0; i < 32; ++i) {
    text += "0123456789abcdef"[digest[i] >> 4];
    text += "0123456789abcdef"[digest[i] & 15];
  }
  return text;
}

TEST(LinkOrder, TheFirstLibraryGivesSha256) {
  EXPECT_NE(std::string::npos, library_of(dlsym(RTLD_DEFAULT, "SHA256")).find(PLX_FIRST_LIBRARY));
  unsigned char digest[32];
  const auto* abc = reinterpret_cast<const unsigned char*>("abc");
  EXPECT_EQ(digest, SHA256(abc, 3, digest));
  EXPECT_EQ(kDigestOfAbc, text_of(digest));
}

TEST(LinkOrder, TheOtherFunctionsDoNotChange) {
  // A result of libcrypto's in its static buffer, which none of ours may touch.
  const auto* abc = reinterpret_cast<const unsigned char*>("abc");
  const unsigned char* shared = SHA256(abc, 2, nullptr);
  const std::string before = text_of(shared);
  char text[65];
  EXPECT_EQ(0, PLX_sha256_encoder_buf(abc, 3, text, sizeof text));
  EXPECT_STREQ(kDigestOfAbc, text);
  unsigned char digest[32];
  sha256_get(digest, abc, 3);
  EXPECT_EQ(kDigestOfAbc, text_of(digest));
  EXPECT_EQ(before, text_of(shared));
  EXPECT_EQ(32, hmac_sha256_get(digest, abc, 3, abc, 3));
  EXPECT_EQ("2f02e24ae2e1fe880399f27600afa88364e6062bf9bbe114b32fa8f23d03608a", text_of(digest));
}

}  // namespace
