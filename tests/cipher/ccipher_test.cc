#include <gtest/gtest.h>
#include <limits.h>
#include <openssl/rand.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "cipher/support.h"
#include "support/allocation.h"
#include "support/guarded.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;
using TRUX::CIPHER::CCipher;

constexpr auto kNoType = static_cast<AES_CBC_TYPE>(2);
std::string key_k(16, 'k');

TEST(CCipher, DerivesKeys) {
  struct Row {
    const char *pass, *salt;
    int pass_len, salt_len, iterations, key_len, result;
    const char* key;
  };
  const Row rows[] = {
      // RFC 7914, section 11.
      {"passwd", "salt", 6, 4, 1, 16, 1, "55AC046E56E3089FEC1691C22544B605"},
      {"Password", "NaCl", 8, 4, 80000, 16, 1, "4DDCD8F60B98BE21830CEE5EF22701F9"},
      {nullptr, "salt", 6, 4, 1, 16, 0, ""},
      {"passwd", nullptr, 6, 4, 1, 16, 0, ""},
      {"passwd", "salt", 0, 4, 1, 16, 0, ""},
      {"passwd", "salt", -6, 4, 1, 16, 0, ""},
      {"passwd", "salt", 6, 0, 1, 16, 0, ""},
      {"passwd", "salt", 6, -4, 1, 16, 0, ""},
      {"passwd", "salt", 6, 4, 0, 16, 0, ""},
      {"passwd", "salt", 6, 4, -1, 16, 0, ""},
      {"passwd", "salt", 6, 4, 1, 0, 0, ""},
      {"passwd", "salt", 6, 4, 1, -16, 0, ""},
  };
  for (const Row& row : rows) {
    std::string out(20, '.');
    const auto* salt = reinterpret_cast<const unsigned char*>(row.salt);
    EXPECT_EQ(row.result, CCipher::deriveKey(row.pass, row.pass_len, salt, row.salt_len,
                                             row.iterations, row.key_len, bytes_of(out)));
    EXPECT_EQ(unhex(row.key) + std::string(20 - strlen(row.key) / 2, '.'), out);
    EXPECT_EQ(0, CCipher::deriveKey(row.pass, 6, salt, 4, 1, 16, nullptr));
  }
}

TEST(CCipher, Base64OfEveryLength) {
  std::string data;
  for (int len = 1; len <= 200; ++len) {
    data += static_cast<char>(len * 37);
    std::string expected;
    for (size_t i = 0; i < data.size(); i += 48) {
      unsigned char line[65];
      const std::string piece = data.substr(i, 48);
      EVP_EncodeBlock(line, bytes_of(piece), length(piece));
      expected += std::string(reinterpret_cast<char*>(line)) + "\n";
    }
    ASSERT_EQ(expected, base64(data));
  }
  for (int len : {0, -1, INT_MIN, INT_MAX}) {  // the last would give a text above INT_MAX
    EXPECT_EQ(nullptr, CCipher::Base64(bytes_of(data), len)) << len;
  }
  EXPECT_EQ(nullptr, CCipher::Base64(nullptr, 3));
}

// The final step writes into the text: callers depend on it. fuzz/fuzz_sealed.cc makes the same
// calls by hand on texts of every kind.
TEST(CCipher, MalformedBase64ScratchesItsText) {
  const std::string row = std::string(64, 'Q') + "QUJD!";
  Guarded<char> in(row.data(), row.size());
  int size = -1;
  unsigned char* out = CCipher::UnBase64(in.data(), length(row), &size);
  EXPECT_EQ(51, size);
  deleteArrayPoint_s(out);
  EXPECT_NE(row, std::string(in.data(), row.size()));

  int n = -1;
  char text[] = "QUJD";
  EXPECT_EQ(nullptr, CCipher::UnBase64(nullptr, 4, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, 0, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, -4, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, 4, nullptr));
  EXPECT_EQ(-1, n);
}

TEST(CCipher, SealCapacity) {
  struct Row {
    const char* why;
    int in_len, capacity, result, size;
    size_t touched;
  };
  const Row rows[] = {
      {"room for all", 16, 48, 1, 48, 48},
      {"the last block passes the capacity: callers depend on it", 16, 33, 1, 48, 48},
      {"the whole blocks reach the capacity", 31, 32, 0, 32, 32},
      {"the IV alone reaches it", 0, 16, 0, 16, 16},
      {"it is smaller than the IV", 16, 5, 0, 5, 5},
      {"no capacity", 16, 0, 0, 0, 0},
      {"negative capacity", 16, INT_MIN, 0, INT_MIN, 0},
      {"a negative length seals nothing", INT_MIN, 17, 1, 32, 32},
      {"and needs room for the IV", INT_MIN, 16, 0, 16, 16},
      {"more than any capacity", INT_MAX, 64, 0, 64, 64},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    const std::string in(16, 'i');
    std::string out(80, '.');
    int size = row.capacity;
    // No type seals as AES_CBC_128.
    EXPECT_EQ(row.result, CCipher::EncryptData(bytes_of(in), row.in_len, bytes_of(out), size,
                                               bytes_of(key_k), kNoType));
    EXPECT_EQ(row.size, size);
    const std::string rest(80 - row.touched, '.');
    EXPECT_EQ(rest, out.substr(row.touched));
    // A refusal zeroes the capacity.
    EXPECT_EQ(row.result == 0, out == std::string(row.touched, '\0') + rest);
    if (row.result == 0) continue;
    const std::string sealed_with = out.substr(0, row.touched);
    EXPECT_EQ(row.in_len > 0 ? in : "",
              judge_cipher("AES-128-CBC", false, true, key_k, sealed_with, sealed_with.substr(16)));
  }
}

TEST(CCipher, OpeningIsLenient) {
  const std::string blob = sealed(std::string(40, 'p'), key_k);  // 16 + 48 bytes
  struct Row {
    const char* why;
    char key;
    int in_len;
    AES_CBC_TYPE type;
    size_t size;
  };
  const Row rows[] = {
      {"the right key", 'k', 64, AES_CBC_128, 40},
      {"callers depend on a wrong key not being noticed", 'w', 64, AES_CBC_128, 32},
      {"nor a cut blob", 'k', 63, AES_CBC_128, 32},
      {"", 'k', 48, AES_CBC_128, 16},
      {"no cipher text", 'k', 16, AES_CBC_128, 0},
      {"no whole IV", 'k', 15, AES_CBC_128, 0},
      {"a negative length", 'k', INT_MIN, AES_CBC_128, 0},
      {"no type", 'k', 64, kNoType, 0},
      {"", 'k', 64, static_cast<AES_CBC_TYPE>(-1), 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    Guarded<unsigned char> in(bytes_of(blob), static_cast<size_t>(std::max(row.in_len, 0)));
    std::string out(64, '.'), key(16, row.key);
    int size = 1;  // tested, but no bound
    EXPECT_EQ(1, CCipher::DecryptData(in.data(), row.in_len, bytes_of(out), size, bytes_of(key),
                                      row.type));
    EXPECT_EQ(row.size, static_cast<size_t>(size));
    EXPECT_EQ(std::string(64 - row.size, '.'), out.substr(row.size));
  }
}

TEST(CCipher, NullsAndFailuresBeneath) {
  std::string in(16, 'i'), out(64, '.');
  for (auto run : {CCipher::EncryptData, CCipher::DecryptData}) {
    int size = 64, none = 0;
    EXPECT_EQ(0, run(nullptr, 16, bytes_of(out), size, bytes_of(key_k), AES_CBC_128));
    EXPECT_EQ(0, run(bytes_of(in), 16, nullptr, size, bytes_of(key_k), AES_CBC_128));
    EXPECT_EQ(0, run(bytes_of(in), 16, bytes_of(out), size, nullptr, AES_CBC_128));
    EXPECT_EQ(0, run(bytes_of(in), 16, bytes_of(out), none, bytes_of(key_k), AES_CBC_128));
    EXPECT_EQ(64, size);
  }
  EXPECT_EQ(0, CCipher::GenerateRand(nullptr, 32));
  EXPECT_EQ(0, CCipher::GenerateRand(bytes_of(out), 0));
  EXPECT_EQ(0, CCipher::GenerateRand(bytes_of(out), -1));
  EXPECT_EQ(std::string(64, '.'), out);
  EXPECT_EQ(1, CCipher::GenerateRand(bytes_of(out), 32));
  EXPECT_NE(out.substr(0, 16), out.substr(16, 16));
  EXPECT_EQ(std::string(32, '.'), out.substr(32));

  // libcrypto has no cipher: what fails is passed over, and has written nothing.
  const HostErrors errors;
  const NoProviders none;
  int size = 64;
  EXPECT_EQ(
      1, CCipher::EncryptData(bytes_of(in), 16, bytes_of(out), size, bytes_of(key_k), AES_CBC_128));
  EXPECT_EQ(16, size);
  EXPECT_EQ(std::string(32, '.'), out.substr(32));
  EXPECT_EQ(
      1, CCipher::DecryptData(bytes_of(in), 16, bytes_of(out), size, bytes_of(key_k), AES_CBC_128));
  EXPECT_EQ(0, size);
  EXPECT_EQ(1, CCipher::deriveKey("p", 1, bytes_of(in), 16, 1, 16, bytes_of(out)));
}

TEST(CCipher, InstanceDerivesWithItsVector) {
  CCipher* instance = CCipher::getInstance();
  EXPECT_EQ(instance, CCipher::getInstance());
  std::string vector(17, '\0'), expected(16, '.');
  instance->getCCipherInitVector(nullptr, 16);
  instance->getCCipherInitVector(bytes_of(vector), 15);
  EXPECT_TRUE(vector == std::string(17, '\0'));
  instance->getCCipherInitVector(bytes_of(vector), 17);
  getInitVector(bytes_of(expected), 16);
  EXPECT_TRUE(vector == expected + '\0');

  CCipher own;
  const std::string cut = "ABCDEFGHIJKLMNOP", filled = "A" + std::string(15, '\0');
  for (const auto& [text, factor] :
       {std::pair("QUJDREVGR0hJSktMTU5PUFFSU1RV\n", cut), std::pair("QR==", filled)}) {
    Guarded<char> in(text, strlen(text) + 1);
    std::string out(17, '.');
    EXPECT_EQ(1, own.DeriveInitKey(in.data(), bytes_of(out)));
    EXPECT_EQ(pbkdf2(factor, expected, 100000, 16) + ".", out);
  }
  EXPECT_EQ(0, own.DeriveInitKey(nullptr, bytes_of(vector)));
  EXPECT_EQ(0, own.DeriveInitKey("", bytes_of(vector)));
  EXPECT_EQ(0, own.DeriveInitKey("QUJD", nullptr));
}

// The first call makes the instance, in whichever test that is.
TEST(CCipher, InstanceWithoutMemory) {
  const AllocationFault fault(1);
  const bool none = CCipher::getInstance() == nullptr;
  EXPECT_EQ(fault.hit(), none);
  EXPECT_EQ(0, fault.live_blocks());
}

}  // namespace
