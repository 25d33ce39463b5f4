#include <gtest/gtest.h>
#include <limits.h>
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

const std::string kKey = "0123456789abcdefghijklmnopqrstuv";

// Keys in files for the two stored keys, and an empty cache.
class AesCbc : public testing::Test {
 protected:
  AesCbc() { memset(g_WorkKey, 0, sizeof g_WorkKey); }
  ~AesCbc() override { memset(g_WorkKey, 0, sizeof g_WorkKey); }
  KeyFiles files_;
};

// The three pairs behind one face.
struct Pair {
  const char* name;
  int (*encrypt)(const unsigned char*, int, char*, int);
  int (*decrypt)(const char*, int, char*, int);
  const char* key_name;  // null: the key is the caller's
  AES_CBC_TYPE type;
};
template <AES_CBC_TYPE kType>
int encrypt_by_key(const unsigned char* in, int in_len, char* out, int out_size) {
  return PLX_aesCbcEncryptByKey(in, in_len, out, out_size, bytes(kKey), kType);
}
template <AES_CBC_TYPE kType>
int decrypt_by_key(const char* in, int in_len, char* out, int out_size) {
  return PLX_aesCbcDecryptByKey(in, in_len, out, out_size, bytes(kKey), kType);
}
const Pair kPairs[] = {
    {"128", encrypt_by_key<AES_CBC_128>, decrypt_by_key<AES_CBC_128>, nullptr, AES_CBC_128},
    {"256", encrypt_by_key<AES_CBC_256>, decrypt_by_key<AES_CBC_256>, nullptr, AES_CBC_256},
    {"cached", PLX_aesCbcEncrypt, PLX_aesCbcDecrypt, "encrypt_stb_key", AES_CBC_128},
    {"box", PLX_aesCbcEncryptByRandomKey, PLX_aesCbcDecryptByRandomKey, "epg_profile_key",
     AES_CBC_128},
};

// The blob of a sealed text.
std::string unsealed(std::string text) {
  std::replace(text.begin(), text.end(), '_', '\n');
  std::string blob(text.size(), '\0');
  EVP_ENCODE_CTX* ctx = EVP_ENCODE_CTX_new();
  int n = 0;
  EVP_DecodeInit(ctx);
  EVP_DecodeUpdate(ctx, bytes(blob), &n, bytes(text), static_cast<int>(text.size()));
  EVP_ENCODE_CTX_free(ctx);
  return blob.substr(0, static_cast<size_t>(n));
}

TEST_F(AesCbc, SealsWhatLibcryptoOpens) {
  std::string stored[2] = {"sixteen letters of the first key", "short"};
  files_.provision(0, "a 16-byte factor", stored[0]);
  files_.provision(4, "a 16-byte factor", stored[1]);
  stored[1].resize(16, '\0');
  for (const Pair& pair : kPairs) {
    std::string key =
        pair.key_name == nullptr ? kKey : stored[pair.type == 0 && pair.name[0] == 'b'];
    std::string previous;
    // Loading a key takes its time, so stored keys get fewer lengths.
    for (int length = 0; length <= 100; length += pair.key_name != nullptr ? 25 : 1) {
      SCOPED_TRACE(testing::Message() << pair.name << " " << length);
      std::string plain(static_cast<size_t>(length), 'p');
      const int blob_len = 16 + length / 16 * 16 + 16, groups = (blob_len + 2) / 3 * 4;
      const int text_len = groups + (groups + 63) / 64, result = text_len / 4 * 4 + 4;
      Guarded<char> out(static_cast<size_t>(result) + 1);
      memset(out.data(), '.', out.size());
      EXPECT_EQ(-1, pair.encrypt(bytes(plain), length, out.data(), result));
      EXPECT_EQ('.', out[0]);
      ASSERT_EQ(result, pair.encrypt(bytes(plain), length, out.data(), result + 1));
      const std::string text = out.data();
      ASSERT_EQ(static_cast<size_t>(text_len), text.size());
      EXPECT_EQ(pair.key_name != nullptr ? '_' : '\n', text.back());
      EXPECT_EQ(std::string::npos, text.find(pair.key_name != nullptr ? '\n' : '_'));
      EXPECT_NE(previous, text);
      previous = text;
      const std::string blob = unsealed(text);
      EXPECT_EQ(plain, judge(pair.type == AES_CBC_256 ? "AES-256-CBC" : "AES-128-CBC", false, true,
                             key, blob.substr(0, 16), blob.substr(16)));

      Guarded<char> in(text.data(), text.size());  // no terminator behind it
      Guarded<char> back(static_cast<size_t>(length) + 1);
      back[0] = '.';
      EXPECT_EQ(-1, pair.decrypt(in.data(), text_len, back.data(), std::max(length, 1) - 1));
      EXPECT_EQ('.', back[0]);
      ASSERT_EQ(length, pair.decrypt(in.data(), text_len, back.data(), length + 1));
      EXPECT_EQ(plain, back.data());
      EXPECT_EQ(text, std::string(in.data(), text.size()));
    }
  }
}

TEST_F(AesCbc, Refusals) {
  char text[] = "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVo=";  // 26 bytes
  struct Row {
    const char* why;
    bool in, out;
    int in_len, out_size;
    int encrypted, decrypted;
  };
  const Row rows[] = {
      {"well", true, true, 36, 200, 92, 0},
      {"no input", false, true, 36, 200, -1, -1},
      {"no output", true, false, 36, 200, -1, -1},
      {"15 bytes of output", true, true, 0, 15, -1, -1},
      {"no room", true, true, 36, 0, -1, -1},
      {"negative room", true, true, 36, INT_MIN, -1, -1},
      {"15 characters", true, true, 15, 200, 48, -1},
      {"16 characters are 12 bytes", true, true, 16, 200, 68, -1},
      {"negative length", true, true, -1, 200, -1, -1},
      {"", true, true, INT_MIN, 200, -1, -1},
      {"too long", true, true, 2147483615, 200, -1, -2},
      {"", true, true, INT_MAX, 200, -1, -2},
  };
  files_.provision(0, "a 16-byte factor", "key");
  files_.provision(4, "a 16-byte factor", "key");
  for (const Pair& pair : kPairs) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << pair.name << " " << row.why);
      const HostErrors errors;
      std::string out(200, '.');
      char* to = row.out ? &out[0] : nullptr;
      EXPECT_EQ(row.encrypted, pair.encrypt(row.in ? bytes(std::string(36, 'i')) : nullptr,
                                            row.in_len, to, row.out_size));
      EXPECT_EQ(row.encrypted < 0, out == std::string(200, '.'));
      out.assign(200, '.');
      if (row.decrypted == -2) continue;  // nobody holds a text of such a length
      EXPECT_EQ(row.decrypted, pair.decrypt(row.in ? text : nullptr, row.in_len, to, row.out_size));
      EXPECT_EQ(row.decrypted < 0, out == std::string(200, '.'));
    }
  }
  char out[200];
  EXPECT_EQ(-1, PLX_aesCbcEncryptByKey(bytes(kKey), 4, out, 200, nullptr, AES_CBC_128));
  EXPECT_EQ(-1, PLX_aesCbcDecryptByKey(text, 36, out, 200, nullptr, AES_CBC_128));
}

TEST_F(AesCbc, PlainTextIsText) {
  const std::string plain("ab\0cd", 5);
  char text[100];
  ASSERT_LT(0, encrypt_by_key<AES_CBC_128>(bytes(plain), 5, text, 100));
  std::string out(8, '.');
  EXPECT_EQ(5, decrypt_by_key<AES_CBC_128>(text, static_cast<int>(strlen(text)), &out[0], 8));
  EXPECT_EQ(std::string("ab\0.....", 8), out);  // callers depend on the full length in the result
}

TEST_F(AesCbc, WrongKeyAndMalformedText) {
  const std::string plain(40, 'p');
  char text[200];
  ASSERT_LT(0, PLX_aesCbcEncryptByKey(bytes(plain), 40, text, 200, bytes(kKey), AES_CBC_128));
  const int length = static_cast<int>(strlen(text));
  char out[64];
  const std::string wrong(16, 'w');
  EXPECT_EQ(32, PLX_aesCbcDecryptByKey(text, length, out, 64, bytes(wrong), AES_CBC_128));
  EXPECT_EQ(
      0, PLX_aesCbcDecryptByKey(text, length, out, 64, bytes(kKey), static_cast<AES_CBC_TYPE>(2)));
  const std::string line(64, 'Q');
  const std::string rows[] = {std::string(30, '!'), std::string(100, '\0'), line + "!",
                              "QUJDQUJDQUJDQUJDQUJDQUJD!QUJD", std::string(16, '\n')};
  for (const std::string& row : rows) {
    Guarded<char> in(row.data(), row.size());
    EXPECT_GE(32, PLX_aesCbcDecryptByKey(in.data(), static_cast<int>(row.size()), out, 64,
                                         bytes(kKey), AES_CBC_128));
  }
}

TEST_F(AesCbc, CacheIsFilledOnce) {
  char text[100], out[100];
  EXPECT_EQ(-1, PLX_aesCbcEncrypt(bytes(kKey), 8, text, 100));  // no files yet
  EXPECT_EQ(0, g_WorkKey[0]);
  files_.provision(0, "a 16-byte factor", std::string(511, 'k'));
  ASSERT_LT(0, PLX_aesCbcEncrypt(bytes(kKey), 8, text, 100));
  EXPECT_EQ(std::string(511, 'k'), std::string(g_WorkKey, 511));
  EXPECT_EQ(0, g_WorkKey[511]);
  files_.write_work_key(0, "gone");
  EXPECT_EQ(8, PLX_aesCbcDecrypt(text, static_cast<int>(strlen(text)), out, 100));
  strcpy(g_WorkKey, "a key that the host has put here");
  EXPECT_EQ(0, PLX_aesCbcDecrypt(text, static_cast<int>(strlen(text)), out, 100));
  g_WorkKey[0] = 0;
  EXPECT_EQ(-1, PLX_aesCbcDecrypt(text, static_cast<int>(strlen(text)), out, 100));
  files_.provision(0, "a 16-byte factor", "");  // an empty key is never cached
  EXPECT_LT(0, PLX_aesCbcEncrypt(bytes(kKey), 8, text, 100));
  EXPECT_EQ(0, g_WorkKey[0]);
}

TEST_F(AesCbc, EveryAllocationFailing) {
  files_.provision(4, "a 16-byte factor", "key");
  char text[100] = "", out[100];
  long leaked = 0;
  EXPECT_LE(6u, fail_each_allocation(
                    [&](const AllocationFault& fault) {
                      const int n = PLX_aesCbcEncryptByRandomKey(bytes(kKey), 8, text, 100);
                      EXPECT_EQ(fault.hit() ? -1 : 48, n);
                    },
                    &leaked));
  EXPECT_LE(7u, fail_each_allocation(
                    [&](const AllocationFault& fault) {
                      const int n = PLX_aesCbcDecryptByRandomKey(
                          text, static_cast<int>(strlen(text)), out, 100);
                      EXPECT_EQ(fault.hit() ? -1 : 8, n);
                    },
                    &leaked));
  EXPECT_EQ(0, leaked);
}

}  // namespace
