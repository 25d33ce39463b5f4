#include <gtest/gtest.h>
#include <limits.h>
#include <plx/cipher.h>
#include <string.h>

#include <string>

#include "cipher/support.h"
#include "support/guarded.h"

namespace {

using namespace plx_test;

constexpr uint32_t kEcb = 0, kCbc = 1;
const std::string kKey = "0123456789abcdefghijklmnopqrstuv", kIv = "an IV of 16 byte";

// A record with a text that must outlive it.
tagAes make_record(uint32_t mode, int bits, int padding, std::string& text,
                   const std::string& key = kKey, const std::string& iv = kIv) {
  tagAes aes;
  memset(&aes, 0, sizeof aes);
  aes.iMode = mode;
  aes.iKeyBits = bits;
  aes.iPadding = padding;
  memcpy(aes.szKey, key.data(), key.size());
  memcpy(aes.szIV, iv.data(), iv.size());
  aes.pszText = &text[0];
  return aes;
}

// The first block of SP 800-38A, F.1 and F.2, and FIPS 197, appendix C.
TEST(AesRecord, PublishedVectors) {
  const std::string counting = "000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F";
  const std::string key128 = "2B7E151628AED2A6ABF7158809CF4F3C";
  const std::string key192 = "8E73B0F7DA0E6452C810F32B809079E562F8EAD2522C6B7B";
  const std::string key256 = "603DEB1015CA71BE2B73AEF0857D77811F352C073B6108D72D9810A30914DFF4";
  const std::string fips = "00112233445566778899AABBCCDDEEFF";
  const std::string nist = "6BC1BEE22E409F96E93D7E117393172A";
  struct Row {
    uint32_t mode;
    int bits;
    std::string key, plain, cipher;
  };
  const Row rows[] = {
      {kEcb, 128, key128, nist, "3AD77BB40D7A3660A89ECAF32466EF97"},
      {kEcb, 192, key192, nist, "BD334F1D6E45F25FF712A214571FA5CC"},
      {kEcb, 256, key256, nist, "F3EED1BDB5D2A03C064B5A7E3DB181F8"},
      {kCbc, 128, key128, nist, "7649ABAC8119B246CEE98E9B12E9197D"},
      {kCbc, 192, key192, nist, "4F021DB243BC633D7178183A9FA071E8"},
      {kCbc, 256, key256, nist, "F58C4C04D6E5F1BA779EABFB5F7BFBD6"},
      {kEcb, 128, counting, fips, "69C4E0D86A7B0430D8CDB78070B4C55A"},
      {kEcb, 192, counting, fips, "DDA97CA4864CDFE06EAF70A0EC0D7191"},
      {kEcb, 256, counting, fips, "8EA2B7CA516745BFEAFC49904B496089"},
  };
  for (const Row& row : rows) {
    std::string plain = unhex(row.plain), cipher = unhex(row.cipher), out(16, '.');
    tagAes aes =
        make_record(row.mode, row.bits, 2, plain, unhex(row.key), unhex(counting.substr(0, 32)));
    if (row.plain == nist) {  // the other starts with a zero byte and is no text
      EXPECT_EQ(16, PLX_AesEncryByMode(&aes, &out[0], 32));
      EXPECT_EQ(row.cipher, to_hex(out));
    }
    EXPECT_EQ(16, PLX_AesDecryByMode(&aes, &cipher[0], 16, &out[0], 32));
    EXPECT_EQ(row.plain, to_hex(out));
  }
}

// Every mode, key size, padding switch and length, with an output that ends where it must end.
TEST(AesRecord, AgreesWithLibcryptoAtEveryLength) {
  for (int i = 0; i < 2 * 3 * 5 * 50; ++i) {
    const uint32_t mode = i % 2;
    const int bits = 128 + 64 * (i / 2 % 3), padding = i / 6 % 5 - 1, text_len = i / 30;
    SCOPED_TRACE(testing::Message() << mode << " " << bits << " " << padding << " " << text_len);
    std::string text;
    while (length(text) < text_len) text += static_cast<char>(255 - 5 * text.size());
    tagAes aes = make_record(mode, bits, padding, text);
    const std::string name = "AES-" + std::to_string(bits) + (mode == kEcb ? "-ECB" : "-CBC");
    const std::string expected = judge_cipher(name, true, padding != 2, kKey, kIv, text);
    const bool refused = expected == "refused";
    const int need = text_len / 16 * 16 + 16;
    Guarded<char> out(static_cast<size_t>(need)), back(static_cast<size_t>(need));
    EXPECT_EQ(-1, PLX_AesEncryByMode(&aes, out.data(), need - 1));
    const int n = PLX_AesEncryByMode(&aes, out.data(), need);
    ASSERT_EQ(refused ? -1 : length(expected), n);
    if (refused) continue;
    EXPECT_EQ(to_hex(expected), to_hex(std::string(out.data(), expected.size())));
    EXPECT_EQ(-1, PLX_AesDecryByMode(&aes, out.data(), n, back.data(), need - 1));
    ASSERT_EQ(text_len, PLX_AesDecryByMode(&aes, out.data(), n, back.data(), need));
    EXPECT_EQ(to_hex(text), to_hex(std::string(back.data(), text.size())));
  }
}

TEST(AesRecord, Refusals) {
  enum : unsigned { kNoRecord = 1, kNoOut = 2, kNoText = 4, kNoIn = 8 };
  struct Row {
    const char* why;
    unsigned nulls;
    uint32_t mode;
    int bits, out_size, in_len, encrypted, decrypted;
  };
  const Row rows[] = {
      {"all is well", 0, kCbc, 128, 48, 32, 32, 16},
      {"no record", kNoRecord, kCbc, 128, 48, 32, -1, -1},
      {"no output", kNoOut, kCbc, 128, 48, 32, -1, -1},
      {"no text, on decryption too", kNoText, kCbc, 128, 48, 32, -1, -1},
      {"no output size", 0, kCbc, 128, 0, 32, -1, -1},
      {"negative output size", 0, kCbc, 128, INT_MIN, 32, -1, -1},
      {"mode 2 encrypts nothing but decrypts as CBC", 0, 2, 128, 48, 32, -1, 16},
      {"so does the largest mode", 0, UINT32_MAX, 128, 48, 32, -1, 16},
      {"key sizes that AES does not have", 0, kCbc, 64, 48, 32, -1, -1},
      {"", 0, kCbc, 512, 48, 32, -1, -1},
      {"", 0, kCbc, 0, 48, 32, -1, -1},
      {"no input", kNoIn, kCbc, 128, 48, 32, 32, -1},
      {"negative input", 0, kCbc, 128, 48, -1, 32, -1},
      {"nothing to decrypt", kNoIn, kCbc, 128, 48, 0, 32, -1},
      {"a cut cipher text", 0, kCbc, 128, 48, 31, 32, -1},
      {"one block of two, whose end is no padding", 0, kCbc, 128, 48, 16, 32, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    std::string text = "sixteen letters.", out(48, '.');
    std::string cipher = judge_cipher("AES-128-CBC", true, true, kKey, kIv, text);
    tagAes aes = make_record(row.mode, row.bits, 1, text);
    if (row.nulls & kNoText) aes.pszText = nullptr;
    const tagAes* record = row.nulls & kNoRecord ? nullptr : &aes;
    char* to = row.nulls & kNoOut ? nullptr : &out[0];
    EXPECT_EQ(row.encrypted, PLX_AesEncryByMode(record, to, row.out_size));
    EXPECT_EQ(row.encrypted < 0, out == std::string(48, '.'));
    EXPECT_EQ(row.decrypted, PLX_AesDecryByMode(record, row.nulls & kNoIn ? nullptr : &cipher[0],
                                                row.in_len, to, row.out_size));
  }
}

TEST(AesRecord, InitLeavesTheRestToTheHost) {
  const HostErrors errors;
  std::string text;
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  for (bool encrypting : {true, false}) {
    const auto init = encrypting ? PLX_AesEncryInit_ex : PLX_AesDecryInit_ex;
    tagAes aes = make_record(7, 100, 2, text);
    EVP_CIPHER_CTX_reset(ctx);
    EXPECT_EQ(-1, init(nullptr, ctx));
    EXPECT_EQ(-1, init(&aes, nullptr));
    EXPECT_EQ(-1, init(&aes, ctx));  // 100 bits
    EXPECT_EQ(nullptr, EVP_CIPHER_CTX_get0_cipher(ctx));
    aes.iKeyBits = 128;
    ASSERT_EQ(1, init(&aes, ctx));
    unsigned char out[32];
    int n = 0;
    EXPECT_EQ(1, EVP_CipherUpdate(ctx, out, &n, bytes_of(kKey), 16));
    // The padding switch of the record is not applied: decryption holds its only block back.
    EXPECT_EQ(encrypting ? 16 : 0, n);
  }
  EVP_CIPHER_CTX_free(ctx);
}

TEST(AesRecord, RefusalOfLibcryptoIsZero) {
  std::string text = "abc", out(16, '.');
  tagAes aes = make_record(kEcb, 128, 1, text);
  const HostErrors errors;
  const NoProviders none;
  EXPECT_EQ(0, PLX_AesEncryByMode(&aes, &out[0], 16));
  EXPECT_EQ(0, PLX_AesDecryByMode(&aes, &out[0], 16, &out[0], 16));
}

}  // namespace
