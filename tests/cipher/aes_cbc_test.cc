#include <gtest/gtest.h>
#include <limits.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "cipher/support.h"
#include "support/guarded.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;

const std::string kKey = "0123456789abcdefghijklmnopqrstuv", kFactor = "a 16-byte factor";

class AesCbc : public testing::Test {
 protected:
  ~AesCbc() override { memset(g_WorkKey, 0, sizeof g_WorkKey); }
  KeyFiles files_;
};

// The pairs behind one face.
template <AES_CBC_TYPE kType>
int encrypt_by_key(const unsigned char* in, int in_len, char* out, int out_size) {
  return PLX_aesCbcEncryptByKey(in, in_len, out, out_size, bytes_of(kKey), kType);
}
template <AES_CBC_TYPE kType>
int decrypt_by_key(const char* in, int in_len, char* out, int out_size) {
  return PLX_aesCbcDecryptByKey(in, in_len, out, out_size, bytes_of(kKey), kType);
}
struct Pair {
  const char* name;
  int (*encrypt)(const unsigned char*, int, char*, int);
  int (*decrypt)(const char*, int, char*, int);
  const char* cipher;
  int row;  // of a stored key, or -1
  std::string key;
};
const Pair kPairs[] = {
    {"128", encrypt_by_key<AES_CBC_128>, decrypt_by_key<AES_CBC_128>, "AES-128-CBC", -1, kKey},
    {"256", encrypt_by_key<AES_CBC_256>, decrypt_by_key<AES_CBC_256>, "AES-256-CBC", -1, kKey},
    {"cached", PLX_aesCbcEncrypt, PLX_aesCbcDecrypt, "AES-128-CBC", 0, kKey},
    {"of the box", PLX_aesCbcEncryptByRandomKey, PLX_aesCbcDecryptByRandomKey, "AES-128-CBC", 4,
     std::string("short") + std::string(11, '\0')},
};

// The blob of a sealed text.
std::string unsealed(std::string text) {
  std::replace(text.begin(), text.end(), '_', '\n');
  std::string blob(text.size(), '\0');
  EVP_ENCODE_CTX* ctx = EVP_ENCODE_CTX_new();
  int n = 0;
  EVP_DecodeInit(ctx);
  EVP_DecodeUpdate(ctx, bytes_of(blob), &n, bytes_of(text), length(text));
  EVP_ENCODE_CTX_free(ctx);
  return blob.substr(0, static_cast<size_t>(n));
}

TEST_F(AesCbc, SealsWhatLibcryptoOpens) {
  for (const Pair& pair : kPairs) {
    const bool stored = pair.row >= 0;
    if (stored) files_.provision(pair.row, kFactor, pair.key.c_str());
    std::string previous;
    // Loading a key takes its time, so stored keys get fewer lengths.
    for (int len = 0; len <= 100; len += stored ? 50 : 1) {
      SCOPED_TRACE(testing::Message() << pair.name << " " << len);
      const std::string plain(static_cast<size_t>(len), 'p');
      const int groups = (16 + len / 16 * 16 + 16 + 2) / 3 * 4;
      const int text_len = groups + (groups + 63) / 64, result = text_len / 4 * 4 + 4;
      Guarded<char> out(static_cast<size_t>(result) + 1);
      EXPECT_EQ(-1, pair.encrypt(bytes_of(plain), len, out.data(), result));
      EXPECT_EQ(0, out[0]);
      ASSERT_EQ(result, pair.encrypt(bytes_of(plain), len, out.data(), result + 1));
      const std::string text = out.data();
      ASSERT_EQ(text_len, length(text));
      EXPECT_EQ(stored ? '_' : '\n', text.back());
      EXPECT_EQ(std::string::npos, text.find(stored ? '\n' : '_'));
      EXPECT_NE(previous, text);
      previous = text;
      const std::string blob = unsealed(text);
      EXPECT_EQ(plain, judge_cipher(pair.cipher, false, true, pair.key, blob, blob.substr(16)));

      Guarded<char> in(text.data(), text.size());  // no terminator behind it
      Guarded<char> back(static_cast<size_t>(len) + 1);
      EXPECT_EQ(-1, pair.decrypt(in.data(), text_len, back.data(), len));
      EXPECT_EQ(0, back[0]);
      ASSERT_EQ(len, pair.decrypt(in.data(), text_len, back.data(), len + 1));
      EXPECT_EQ(plain, back.data());
      EXPECT_EQ(text, std::string(in.data(), text.size()));
    }
  }
}

TEST_F(AesCbc, Refusals) {
  const char text[] = "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVo=";  // 26 bytes
  struct Row {
    const char* why;
    bool in, out;
    int in_len, out_size, encrypted, decrypted;
  };
  const Row rows[] = {
      {"all is well", true, true, 36, 200, 92, 0},
      {"no input", false, true, 36, 200, -1, -1},
      {"no output", true, false, 36, 200, -1, -1},
      {"15 bytes of output", true, true, 0, 15, -1, -1},
      {"no room", true, true, 36, 0, -1, -1},
      {"negative room", true, true, 36, INT_MIN, -1, -1},
      {"15 characters", true, true, 15, 200, 48, -1},
      {"16 characters, which are 12 bytes", true, true, 16, 200, 68, -1},
      {"negative length", true, true, INT_MIN, 200, -1, -1},
      {"too long", true, true, 2147483615, 200, -1, -2},  // nobody holds a text to decrypt of it
  };
  const std::string in(36, 'i');
  for (const Pair& pair : kPairs) {
    if (pair.row >= 0) files_.provision(pair.row, kFactor, "key");
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << pair.name << " " << row.why);
      const HostErrors errors;
      std::string out(200, '.');
      char* to = row.out ? &out[0] : nullptr;
      EXPECT_EQ(row.encrypted,
                pair.encrypt(row.in ? bytes_of(in) : nullptr, row.in_len, to, row.out_size));
      EXPECT_EQ(row.encrypted < 0, out == std::string(200, '.'));
      if (row.decrypted == -2) continue;
      out.assign(200, '.');
      EXPECT_EQ(row.decrypted, pair.decrypt(row.in ? text : nullptr, row.in_len, to, row.out_size));
      EXPECT_EQ(row.decrypted < 0, out == std::string(200, '.'));
    }
  }
  char out[200];
  EXPECT_EQ(-1, PLX_aesCbcEncryptByKey(bytes_of(kKey), 4, out, 200, nullptr, AES_CBC_128));
  EXPECT_EQ(-1, PLX_aesCbcDecryptByKey(text, 36, out, 200, nullptr, AES_CBC_128));
}

TEST_F(AesCbc, WhatIsNotNoticed) {
  const std::string plain = std::string("ab\0cd", 5) + std::string(35, 'p'), wrong(16, 'w');
  const std::string lines = base64(sealed(plain, kKey));
  const char* text = lines.c_str();
  std::string out(64, '.');
  EXPECT_EQ(40, decrypt_by_key<AES_CBC_128>(text, 90, &out[0], 64));
  EXPECT_EQ(std::string("ab\0...", 6), out.substr(0, 6));  // the result counts what is not copied
  EXPECT_EQ(32, PLX_aesCbcDecryptByKey(text, 90, &out[0], 64, bytes_of(wrong), AES_CBC_128));
  EXPECT_EQ(0, decrypt_by_key<static_cast<AES_CBC_TYPE>(2)>(text, 90, &out[0], 64));
  for (const std::string& malformed : {std::string(30, '!'), std::string(64, 'Q') + "QUJD!"}) {
    Guarded<char> in(malformed.data(), malformed.size());
    EXPECT_EQ(malformed[0] == '!' ? -1 : 32,
              decrypt_by_key<AES_CBC_128>(in.data(), length(malformed), &out[0], 64));
  }
}

TEST_F(AesCbc, TheKeyOfTheBoxIsLoadedAtEveryCall) {
  char out[100];
  std::string text(100, '.');
  for (std::string key : {"one key", "another"}) {
    files_.provision(4, kFactor, key);
    ASSERT_EQ(48, PLX_aesCbcEncryptByRandomKey(bytes_of(kKey), 8, &text[0], 100));
    EXPECT_EQ(8, PLX_aesCbcDecryptByRandomKey(text.c_str(), 45, out, 100));
    std::replace(text.begin(), text.end(), '_', '\n');
    key.resize(16);
    EXPECT_EQ(8, PLX_aesCbcDecryptByKey(text.c_str(), 45, out, 100, bytes_of(key), AES_CBC_128));
  }
  files_.write_work_key(4, "gone");
  EXPECT_EQ(-1, PLX_aesCbcEncryptByRandomKey(bytes_of(kKey), 8, &text[0], 100));
  EXPECT_EQ(-1, PLX_aesCbcDecryptByRandomKey(text.c_str(), 45, out, 100));
}

TEST_F(AesCbc, CacheIsFilledOnce) {
  char text[100], out[100];
  EXPECT_EQ(-1, PLX_aesCbcEncrypt(bytes_of(kKey), 8, text, 100));  // no files yet
  files_.provision(0, kFactor, "");                                // an empty key is never cached
  EXPECT_EQ(48, PLX_aesCbcEncrypt(bytes_of(kKey), 8, text, 100));
  EXPECT_EQ(0, g_WorkKey[0]);
  files_.provision(0, kFactor, std::string(511, 'k'));
  ASSERT_EQ(48, PLX_aesCbcEncrypt(bytes_of(kKey), 8, text, 100));
  EXPECT_EQ(std::string(511, 'k') + '\0', std::string(g_WorkKey, 512));
  files_.write_work_key(0, "gone");
  EXPECT_EQ(8, PLX_aesCbcDecrypt(text, 45, out, 100));
  strcpy(g_WorkKey, "a key that the host has put here");
  const std::string host = base64(sealed("12345678", std::string(g_WorkKey, 16)));
  EXPECT_EQ(8, PLX_aesCbcDecrypt(host.c_str(), length(host), out, 100));
  g_WorkKey[0] = 0;
  EXPECT_EQ(-1, PLX_aesCbcDecrypt(text, 45, out, 100));
}

}  // namespace
