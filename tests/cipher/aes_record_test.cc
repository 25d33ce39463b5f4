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

// A record with a text; the text must outlive it.
tagAes make_record(uint32_t mode, int bits, int padding, const std::string& key,
                   const std::string& iv, std::string& text) {
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

const char* cipher_name(uint32_t mode, int bits) {
  static char name[16];
  snprintf(name, sizeof name, "AES-%d-%s", bits, mode == kEcb ? "ECB" : "CBC");
  return name;
}

// FIPS 197, appendix C (block), and SP 800-38A, appendix F.1 and F.2 (four blocks).
TEST(AesRecord, PublishedVectors) {
  const std::string block = "00112233445566778899AABBCCDDEEFF";
  const std::string blocks =
      "6BC1BEE22E409F96E93D7E117393172AAE2D8A571E03AC9C9EB76FAC45AF8E51"
      "30C81C46A35CE411E5FBC1191A0A52EFF69F2445DF4F9B17AD2B417BE66C3710";
  const std::string fips = "000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F";
  const std::string key128 = "2B7E151628AED2A6ABF7158809CF4F3C";
  const std::string key192 = "8E73B0F7DA0E6452C810F32B809079E562F8EAD2522C6B7B";
  const std::string key256 = "603DEB1015CA71BE2B73AEF0857D77811F352C073B6108D72D9810A30914DFF4";
  struct Row {
    uint32_t mode;
    int bits;
    std::string key, plain, cipher;
  };
  const Row rows[] = {
      {kEcb, 128, fips, block, "69C4E0D86A7B0430D8CDB78070B4C55A"},
      {kEcb, 192, fips, block, "DDA97CA4864CDFE06EAF70A0EC0D7191"},
      {kEcb, 256, fips, block, "8EA2B7CA516745BFEAFC49904B496089"},
      {kEcb, 128, key128, blocks,
       "3AD77BB40D7A3660A89ECAF32466EF97F5D3D58503B9699DE785895A96FDBAAF"
       "43B1CD7F598ECE23881B00E3ED0306887B0C785E27E8AD3F8223207104725DD4"},
      {kEcb, 192, key192, blocks,
       "BD334F1D6E45F25FF712A214571FA5CC974104846D0AD3AD7734ECB3ECEE4EEF"
       "EF7AFD2270E2E60ADCE0BA2FACE6444E9A4B41BA738D6C72FB16691603C18E0E"},
      {kEcb, 256, key256, blocks,
       "F3EED1BDB5D2A03C064B5A7E3DB181F8591CCB10D410ED26DC5BA74A31362870"
       "B6ED21B99CA6F4F9F153E7B1BEAFED1D23304B7A39F9F3FF067D8D8F9E24ECC7"},
      {kCbc, 128, key128, blocks,
       "7649ABAC8119B246CEE98E9B12E9197D5086CB9B507219EE95DB113A917678B2"
       "73BED6B8E3C1743B7116E69E222295163FF1CAA1681FAC09120ECA307586E1A7"},
      {kCbc, 192, key192, blocks,
       "4F021DB243BC633D7178183A9FA071E8B4D9ADA9AD7DEDF4E5E738763F69145A"
       "571B242012FB7AE07FA9BAAC3DF102E008B0E27988598881D920A9E64F5615CD"},
      {kCbc, 256, key256, blocks,
       "F58C4C04D6E5F1BA779EABFB5F7BFBD69CFC4E967EDB808D679F777BC6702C7D"
       "39F23369A9D9BACFA530E26304231461B2EB05E2C39BE9FCDA6C19078C6A9D1B"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << cipher_name(row.mode, row.bits) << " " << row.plain);
    std::string plain = from_hex(row.plain), cipher = from_hex(row.cipher);
    tagAes aes =
        make_record(row.mode, row.bits, 2, from_hex(row.key), from_hex(fips).substr(0, 16), plain);
    char out[96];
    if (strlen(plain.c_str()) == plain.size()) {  // as a text it ends at its first zero byte
      ASSERT_EQ(static_cast<int>(plain.size()), PLX_AesEncryByMode(&aes, out, sizeof out));
      EXPECT_EQ(row.cipher, to_hex(out, plain.size()));
    }
    ASSERT_EQ(static_cast<int>(plain.size()),
              PLX_AesDecryByMode(&aes, &cipher[0], static_cast<int>(cipher.size()), out, 96));
    EXPECT_EQ(row.plain, to_hex(out, plain.size()));
  }
}

// Every mode, key size, padding switch and length, with an output that ends where it must end.
TEST(AesRecord, AgreesWithLibcryptoAtEveryLength) {
  const std::string key = "0123456789abcdefghijklmnopqrstuv", iv = "an IV of 16 byte";
  for (uint32_t mode : {kEcb, kCbc}) {
    for (int bits : {128, 192, 256}) {
      for (int padding : {-1, 0, 1, 2, 3}) {
        for (size_t length = 0; length <= 49; ++length) {
          SCOPED_TRACE(testing::Message()
                       << mode << " " << bits << " " << padding << " " << length);
          std::string text;
          for (size_t i = 0; i < length; ++i) text += static_cast<char>(255 - 5 * i);
          tagAes aes = make_record(mode, bits, padding, key, iv, text);
          const std::string expected =
              judge(cipher_name(mode, bits), true, padding != 2, key, iv, text);
          const int need = static_cast<int>(length / 16 * 16 + 16);
          Guarded<char> out(static_cast<size_t>(need));
          EXPECT_EQ(-1, PLX_AesEncryByMode(&aes, out.data(), need - 1));
          const int n = PLX_AesEncryByMode(&aes, out.data(), need);
          if (expected == "refused") {
            EXPECT_EQ(-1, n);
            continue;
          }
          ASSERT_EQ(static_cast<int>(expected.size()), n);
          EXPECT_EQ(to_hex(expected), to_hex(out.data(), expected.size()));

          Guarded<char> back(static_cast<size_t>(need));
          EXPECT_EQ(-1, PLX_AesDecryByMode(&aes, out.data(), n, back.data(), need - 1));
          ASSERT_EQ(static_cast<int>(length),
                    PLX_AesDecryByMode(&aes, out.data(), n, back.data(), need));
          EXPECT_EQ(to_hex(text), to_hex(back.data(), length));
        }
      }
    }
  }
}

TEST(AesRecord, Refusals) {
  enum : unsigned { kNoRecord = 1, kNoOut = 2, kNoText = 4, kNoIn = 8 };
  struct Row {
    const char* why;
    unsigned nulls;
    uint32_t mode;
    int bits, out_size, in_len;
    int encrypted, decrypted;
  };
  const Row rows[] = {
      {"all is well", 0, kCbc, 128, 48, 32, 32, 16},
      {"no record", kNoRecord, kCbc, 128, 48, 32, -1, -1},
      {"no output", kNoOut, kCbc, 128, 48, 32, -1, -1},
      {"no text, on decryption too", kNoText, kCbc, 128, 48, 32, -1, -1},
      {"output too small for the text", 0, kCbc, 128, 31, 32, -1, -1},
      {"no output size", 0, kCbc, 128, 0, 32, -1, -1},
      {"negative output size", 0, kCbc, 128, INT_MIN, 32, -1, -1},
      {"mode 2 encrypts nothing but decrypts as CBC", 0, 2, 128, 48, 32, -1, 16},
      {"so does the largest mode", 0, UINT32_MAX, 128, 48, 32, -1, 16},
      {"key sizes that AES does not have", 0, kCbc, 64, 48, 32, -1, -1},
      {"", 0, kCbc, 512, 48, 32, -1, -1},
      {"", 0, kCbc, 0, 48, 32, -1, -1},
      {"", 0, kCbc, -128, 48, 32, -1, -1},
      {"no input", kNoIn, kCbc, 128, 48, 32, 32, -1},
      {"negative input", 0, kCbc, 128, 48, -1, 32, -1},
      {"most negative input", kNoIn, kCbc, 128, 48, INT_MIN, 32, -1},
      {"nothing to decrypt", kNoIn, kCbc, 128, 48, 0, 32, -1},
      {"a cut cipher text", 0, kCbc, 128, 48, 31, 32, -1},
      {"one block of two: its end is no padding", 0, kCbc, 128, 48, 16, 32, -1},
  };
  const std::string key = "0123456789abcdef", iv = "an IV of 16 byte";
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    std::string text = "sixteen letters.";
    std::string cipher = judge("AES-128-CBC", true, true, key, iv, text);
    tagAes aes = make_record(row.mode, row.bits, 1, key, iv, text);
    if (row.nulls & kNoText) aes.pszText = nullptr;
    const tagAes before = aes;
    const tagAes* record = row.nulls & kNoRecord ? nullptr : &aes;
    std::string out(48, '.');
    char* to = row.nulls & kNoOut ? nullptr : &out[0];
    EXPECT_EQ(row.encrypted, PLX_AesEncryByMode(record, to, row.out_size));
    const std::string untouched(48, '.');
    EXPECT_EQ(row.encrypted < 0, out == untouched);
    EXPECT_EQ(row.decrypted, PLX_AesDecryByMode(record, row.nulls & kNoIn ? nullptr : &cipher[0],
                                                row.in_len, to, row.out_size));
    EXPECT_EQ(0, memcmp(&before, &aes, sizeof aes));  // the record is only read
  }
}

TEST(AesRecord, WrongKeyIsNoticedByThePadding) {
  std::string text = "abc", right = "0123456789abcdef", wrong = "0123456789abcdeF";
  const std::string cipher = judge("AES-128-ECB", true, true, right, right, text);
  ASSERT_EQ("refused", judge("AES-128-ECB", false, true, wrong, right, cipher));
  tagAes aes = make_record(kEcb, 128, 1, wrong, "", text);
  std::string in = cipher;
  char out[16];
  EXPECT_EQ(-1, PLX_AesDecryByMode(&aes, &in[0], 16, out, 16));
}

TEST(AesRecord, InitLeavesTheRestToTheHost) {
  std::string text;
  const std::string key = "0123456789abcdef", iv = "an IV of 16 byte";
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  tagAes aes = make_record(7, 100, 2, key, iv, text);
  for (auto init : {PLX_AesEncryInit_ex, PLX_AesDecryInit_ex}) {
    const HostErrors errors;
    EXPECT_EQ(-1, init(nullptr, ctx));
    EXPECT_EQ(-1, init(&aes, nullptr));
    EXPECT_EQ(-1, init(&aes, ctx));  // 100 bits
    EXPECT_EQ(nullptr, EVP_CIPHER_CTX_get0_cipher(ctx));
  }
  aes.iKeyBits = 128;
  for (bool encrypting : {true, false}) {
    ASSERT_EQ(1, (encrypting ? PLX_AesEncryInit_ex : PLX_AesDecryInit_ex)(&aes, ctx));
    EXPECT_STREQ("AES-128-CBC", EVP_CIPHER_get0_name(EVP_CIPHER_CTX_get0_cipher(ctx)));
    EXPECT_EQ(encrypting, EVP_CIPHER_CTX_is_encrypting(ctx) != 0);
    unsigned char out[32];
    int n = 0;
    EXPECT_EQ(1, EVP_CipherUpdate(ctx, out, &n, bytes(key), 16));
    // The padding of the record is not applied, so decryption holds its only block back.
    EXPECT_EQ(encrypting ? 16 : 0, n);
  }
  EVP_CIPHER_CTX_free(ctx);
}

TEST(AesRecord, RefusalOfLibcryptoIsZero) {
  std::string text = "abc";
  tagAes aes = make_record(kEcb, 128, 1, "0123456789abcdef", "", text);
  char out[16];
  const HostErrors errors;
  const NoProviders none;
  EXPECT_EQ(0, PLX_AesEncryByMode(&aes, out, 16));
  EXPECT_EQ(0, PLX_AesDecryByMode(&aes, out, 16, out, 16));
}

}  // namespace
