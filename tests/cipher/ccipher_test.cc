#include <gtest/gtest.h>
#include <limits.h>
#include <openssl/rand.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <string>

#include "cipher/support.h"
#include "support/allocation.h"
#include "support/guarded.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;
using TRUX::CIPHER::CCipher;

constexpr auto kNoType = static_cast<AES_CBC_TYPE>(2);

// RFC 7914, section 11.
TEST(CCipher, DerivesPublishedKeys) {
  struct Row {
    std::string pass, salt;
    int iterations;
    const char* key;
  };
  const Row rows[] = {
      {"passwd", "salt", 1,
       "55AC046E56E3089FEC1691C22544B605F94185216DDE0465E68B9D57C20DACBC"
       "49CA9CCCF179B645991664B39D77EF317C71B845B1E30BD509112041D3A19783"},
      {"Password", "NaCl", 80000,
       "4DDCD8F60B98BE21830CEE5EF22701F9641A4418D04C0414AEFF08876B34AB56"
       "A1D425A1225833549ADB841B51C9B3176A272BDEBBA1D078478F62B397F33C8D"},
  };
  for (const Row& row : rows) {
    unsigned char out[64];
    EXPECT_EQ(
        1, CCipher::deriveKey(row.pass.data(), static_cast<int>(row.pass.size()), bytes(row.salt),
                              static_cast<int>(row.salt.size()), row.iterations, 64, out));
    EXPECT_EQ(row.key, to_hex(out, strlen(row.key) / 2));
  }
}

TEST(CCipher, DeriveKeyRefusals) {
  struct Row {
    bool pass;
    int pass_len;
    bool salt;
    int salt_len, iterations, key_len;
    bool out;
    int result;
  };
  const Row rows[] = {
      {true, 4, true, 4, 1, 16, true, 1},  {false, 4, true, 4, 1, 16, true, 0},
      {true, 0, true, 4, 1, 16, true, 0},  {true, -1, true, 4, 1, 16, true, 0},
      {true, 4, false, 4, 1, 16, true, 0}, {true, 4, true, 0, 1, 16, true, 0},
      {true, 4, true, -4, 1, 16, true, 0}, {true, 4, true, 4, 0, 16, true, 0},
      {true, 4, true, 4, -1, 16, true, 0}, {true, 4, true, 4, 1, 0, true, 0},
      {true, 4, true, 4, 1, -1, true, 0},  {true, 4, true, 4, 1, 16, false, 0},
  };
  for (const Row& row : rows) {
    const HostErrors errors;
    const std::string salt = "salt";
    std::string out(16, '.');
    EXPECT_EQ(row.result,
              CCipher::deriveKey(row.pass ? "pass" : nullptr, row.pass_len,
                                 row.salt ? bytes(salt) : nullptr, row.salt_len, row.iterations,
                                 row.key_len, row.out ? bytes(out) : nullptr));
    EXPECT_EQ(row.result == 0, out == std::string(16, '.'));
  }
}

// Base64 in lines, character by character.
std::string model_base64(const std::string& data) {
  const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  size_t line = 0;
  for (size_t i = 0; i < data.size(); i += 3) {
    unsigned group = 0;
    for (size_t j = 0; j < 3; ++j) {
      group = group << 8 | (i + j < data.size() ? static_cast<unsigned char>(data[i + j]) : 0);
    }
    for (size_t j = 0; j < 4; ++j) {
      text += i + j <= data.size() ? digits[group >> (18 - 6 * j) & 63] : '=';
    }
    if ((line += 4) % 64 == 0) text += '\n';
  }
  return line % 64 != 0 ? text + '\n' : text;
}

TEST(CCipher, Base64OfEveryLength) {
  std::string data;
  for (int length = 1; length <= 200; ++length) {
    data += static_cast<char>(length * 37);
    const std::string text = base64(data);
    ASSERT_EQ(model_base64(data), text);
    // Back, as it stands and without its line feeds.
    for (bool one_line : {false, true}) {
      std::string source = text;
      if (one_line) source.erase(std::remove(source.begin(), source.end(), '\n'), source.end());
      Guarded<char> guarded(source.data(), source.size());
      int n = -1;
      unsigned char* back = CCipher::UnBase64(guarded.data(), static_cast<int>(source.size()), &n);
      ASSERT_EQ(length, n);
      EXPECT_EQ(to_hex(data), to_hex(back, static_cast<size_t>(n)));
      deleteArrayPoint_s(back);
    }
  }
  EXPECT_EQ(nullptr, CCipher::Base64(nullptr, 3));
  EXPECT_EQ(nullptr, CCipher::Base64(bytes(data), 0));
  EXPECT_EQ(nullptr, CCipher::Base64(bytes(data), INT_MIN));
  EXPECT_EQ(nullptr, CCipher::Base64(bytes(data), INT_MAX));  // the text would pass INT_MAX
}

// The same calls by hand. The final step writes into the text: callers depend on it.
struct Decoded {
  std::string text, data;
};
Decoded decode_by_hand(std::string text) {
  EVP_ENCODE_CTX* ctx = EVP_ENCODE_CTX_new();
  std::string data(text.size() + 64, '\0');
  int n = 0, m = 0;
  EVP_DecodeInit(ctx);
  EVP_DecodeUpdate(ctx, bytes(data), &n, bytes(text), static_cast<int>(text.size()));
  EVP_DecodeFinal(ctx, bytes(text) + n, &m);
  EVP_ENCODE_CTX_free(ctx);
  data.resize(static_cast<size_t>(n + m));
  return {text, data};
}

TEST(CCipher, MalformedBase64ScratchesItsText) {
  const std::string line(64, 'Q');
  const std::string rows[] = {"A",
                              "AAA",
                              "QUJD!",
                              "QUJDQUJD!QUJD",
                              "QUJDQ!",
                              "QUI=QUJD",
                              "QUJD====",
                              "QQ==",
                              "=QUJ",
                              "  QU JD\n",
                              "QUJDR-QUJD",
                              "QUJD\x01",
                              "QUJD\xFF",
                              "!!!!",
                              line + "QUJDQ!",
                              line + "QUJD!",
                              line + line,
                              line + "QUI=",
                              "\n",
                              std::string(5, '\0')};
  size_t scratched = 0;
  for (const std::string& row : rows) {
    SCOPED_TRACE(row);
    const Decoded expected = decode_by_hand(row);
    Guarded<char> text(row.data(), row.size());
    int n = -1;
    unsigned char* data = CCipher::UnBase64(text.data(), static_cast<int>(row.size()), &n);
    ASSERT_NE(nullptr, data);
    ASSERT_EQ(static_cast<int>(expected.data.size()), n);
    EXPECT_EQ(to_hex(expected.data), to_hex(data, expected.data.size()));
    EXPECT_EQ(expected.text, std::string(text.data(), row.size()));
    scratched += expected.text != row;
    deleteArrayPoint_s(data);
  }
  EXPECT_LT(0u, scratched);

  int n = -1;
  char text[] = "QUJD";
  EXPECT_EQ(nullptr, CCipher::UnBase64(nullptr, 4, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, 0, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, -4, &n));
  EXPECT_EQ(nullptr, CCipher::UnBase64(text, 4, nullptr));
  EXPECT_EQ(-1, n);
}

TEST(CCipher, SealsWhatLibcryptoOpens) {
  std::string key = "0123456789abcdefghijklmnopqrstuv", plain, previous;
  for (AES_CBC_TYPE type : {AES_CBC_128, AES_CBC_256, kNoType}) {  // no type seals as AES_CBC_128
    const char* cipher = type == AES_CBC_256 ? "AES-256-CBC" : "AES-128-CBC";
    plain.clear();
    for (int length = 0; length <= 70; ++length, plain += static_cast<char>(length * 31)) {
      const int padded = length / 16 * 16 + 16;
      Guarded<unsigned char> blob(static_cast<size_t>(16 + padded));
      int size = 16 + padded;
      ASSERT_EQ(1, CCipher::EncryptData(bytes(plain), length, blob.data(), size, bytes(key), type));
      ASSERT_EQ(16 + padded, size);
      const std::string iv(reinterpret_cast<char*>(blob.data()), 16);
      const std::string text(reinterpret_cast<char*>(blob.data()) + 16, blob.size() - 16);
      EXPECT_EQ(to_hex(plain), to_hex(judge(cipher, false, true, key, iv, text)));
      EXPECT_NE(previous, iv);
      previous = iv;

      Guarded<unsigned char> back(blob.size());
      int back_size = 1;  // tested, but no bound
      ASSERT_EQ(1,
                CCipher::DecryptData(blob.data(), size, back.data(), back_size, bytes(key), type));
      EXPECT_EQ(type == kNoType ? 0 : length, back_size);
      if (type == kNoType) continue;
      EXPECT_EQ(to_hex(plain), to_hex(back.data(), plain.size()));
    }
  }
}

TEST(CCipher, SealCapacity) {
  struct Row {
    const char* why;
    int in_len, capacity, result, size;
    size_t zeroed;
  };
  const Row rows[] = {
      {"room for all", 16, 48, 1, 48, 0},
      {"the last block passes the capacity: callers depend on it", 16, 33, 1, 48, 0},
      {"the whole blocks reach the capacity", 16, 32, 0, 32, 32},
      {"", 31, 32, 0, 32, 32},
      {"the IV alone reaches it", 0, 16, 0, 16, 16},
      {"it is smaller than the IV", 16, 5, 0, 5, 5},
      {"no capacity", 16, 0, 0, 0, 0},
      {"negative capacity", 16, INT_MIN, 0, INT_MIN, 0},
      {"a negative length seals nothing", -1, 17, 1, 32, 0},
      {"so does the most negative", INT_MIN, 17, 1, 32, 0},
      {"and it needs room for the IV", INT_MIN, 16, 0, 16, 16},
      {"more than any capacity", INT_MAX, 64, 0, 64, 64},
  };
  std::string key(16, 'k'), in(32, 'i');
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.why << " " << row.in_len << " " << row.capacity);
    const HostErrors errors;
    std::string out(80, '.');
    int size = row.capacity;
    EXPECT_EQ(row.result, CCipher::EncryptData(bytes(in), row.in_len, bytes(out), size, bytes(key),
                                               AES_CBC_128));
    EXPECT_EQ(row.size, size);
    const size_t touched = row.result ? static_cast<size_t>(row.size) : row.zeroed;
    EXPECT_EQ(std::string(80 - touched, '.'), out.substr(touched));
    if (row.result) continue;
    EXPECT_EQ(std::string(touched, '\0'), out.substr(0, touched));
  }
}

TEST(CCipher, OpeningIsLenient) {
  std::string key(16, 'k'), wrong(16, 'w');
  std::string blob = sealed(std::string(40, 'p'), key);  // 16 + 48
  struct Row {
    const char* why;
    std::string key;
    int in_len;
    AES_CBC_TYPE type;
    int size;
  };
  const Row rows[] = {
      {"the right key", key, 64, AES_CBC_128, 40},
      {"callers depend on a wrong key not being noticed", wrong, 64, AES_CBC_128, 32},
      {"nor a cut blob", key, 63, AES_CBC_128, 32},
      {"", key, 48, AES_CBC_128, 16},
      {"no cipher text", key, 16, AES_CBC_128, 0},
      {"no whole IV", key, 15, AES_CBC_128, 0},
      {"nothing", key, 0, AES_CBC_128, 0},
      {"a negative length", key, INT_MIN, AES_CBC_128, 0},
      {"no type", key, 64, kNoType, 0},
      {"", key, 64, static_cast<AES_CBC_TYPE>(-1), 0},
  };
  ASSERT_EQ("refused",
            judge("AES-128-CBC", false, true, wrong, blob.substr(0, 16), blob.substr(16)));
  for (Row row : rows) {
    SCOPED_TRACE(testing::Message() << row.why << " " << row.in_len);
    const HostErrors errors;
    const size_t readable = row.in_len > 0 ? static_cast<size_t>(row.in_len) : 0;
    Guarded<unsigned char> in(bytes(blob), readable);
    std::string out(64, '.');
    int size = 64;
    EXPECT_EQ(
        1, CCipher::DecryptData(in.data(), row.in_len, bytes(out), size, bytes(row.key), row.type));
    EXPECT_EQ(row.size, size);
    EXPECT_EQ(std::string(static_cast<size_t>(64 - row.size), '.'),
              out.substr(static_cast<size_t>(row.size)));
  }
}

TEST(CCipher, NullsAndFailuresBeneath) {
  std::string in(16, 'i'), out(64, '.'), key(16, 'k');
  for (auto run : {CCipher::EncryptData, CCipher::DecryptData}) {
    int size = 64;
    EXPECT_EQ(0, run(nullptr, 16, bytes(out), size, bytes(key), AES_CBC_128));
    EXPECT_EQ(0, run(bytes(in), 16, nullptr, size, bytes(key), AES_CBC_128));
    EXPECT_EQ(0, run(bytes(in), 16, bytes(out), size, nullptr, AES_CBC_128));
    EXPECT_EQ(64, size);
    size = 0;
    EXPECT_EQ(0, run(bytes(in), 16, bytes(out), size, bytes(key), AES_CBC_128));
  }
  EXPECT_EQ(std::string(64, '.'), out);

  // libcrypto has no cipher: what fails is passed over, and has written nothing.
  unsigned char random[1];
  RAND_bytes(random, 1);
  const HostErrors errors;
  const NoProviders none;
  int size = 64;
  EXPECT_EQ(1, CCipher::EncryptData(bytes(in), 16, bytes(out), size, bytes(key), AES_CBC_128));
  EXPECT_EQ(16, size);
  EXPECT_EQ(std::string(48, '.'), out.substr(16));
  size = 64;
  EXPECT_EQ(1, CCipher::DecryptData(bytes(in), 16, bytes(out), size, bytes(key), AES_CBC_128));
  EXPECT_EQ(0, size);
  EXPECT_EQ(1, CCipher::deriveKey("p", 1, bytes(in), 16, 1, 16, bytes(out)));
}

TEST(CCipher, RandomBytes) {
  std::string one(40, '.'), other(40, '.');
  EXPECT_EQ(0, CCipher::GenerateRand(nullptr, 32));
  EXPECT_EQ(0, CCipher::GenerateRand(bytes(one), 0));
  EXPECT_EQ(0, CCipher::GenerateRand(bytes(one), -1));
  EXPECT_EQ(std::string(40, '.'), one);
  EXPECT_EQ(1, CCipher::GenerateRand(bytes(one), 32));
  EXPECT_EQ(1, CCipher::GenerateRand(bytes(other), 32));
  EXPECT_NE(one.substr(0, 32), other.substr(0, 32));
  EXPECT_EQ(std::string(8, '.'), one.substr(32));
}

TEST(CCipher, InstanceDerivesWithItsVector) {
  CCipher* instance = CCipher::getInstance();
  ASSERT_NE(nullptr, instance);
  EXPECT_EQ(instance, CCipher::getInstance());
  unsigned char vector[17] = {};
  instance->getCCipherInitVector(nullptr, 16);
  instance->getCCipherInitVector(vector, 15);
  EXPECT_EQ(0, vector[0] | vector[14]);
  instance->getCCipherInitVector(vector, 17);
  unsigned char expected[16];
  ASSERT_EQ(expected, getInitVector(expected, 16));
  EXPECT_EQ(to_hex(expected, 16), to_hex(vector, 16));
  EXPECT_EQ(0, vector[16]);
  const std::unique_ptr<CCipher> own(new CCipher);

  struct Row {
    const char* text;
    std::string factor;  // as it counts: 16 bytes
  };
  const Row rows[] = {
      {"QUJDREVGR0hJSktMTU5PUFFSU1RV\n", "ABCDEFGHIJKLMNOP"},  // cut
      {"QR==", std::string("A") + std::string(15, '\0')},      // filled
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    unsigned char by_hand[16];
    PKCS5_PBKDF2_HMAC(row.factor.data(), 16, vector, 16, 100000, EVP_sha256(), 16, by_hand);
    Guarded<char> text(row.text, strlen(row.text) + 1);
    unsigned char out[17] = {};
    EXPECT_EQ(1, own->DeriveInitKey(text.data(), out));
    EXPECT_EQ(to_hex(by_hand, 16) + "00", to_hex(out, 17));
  }
  unsigned char out[16];
  EXPECT_EQ(0, instance->DeriveInitKey(nullptr, out));
  EXPECT_EQ(0, instance->DeriveInitKey("", out));
  EXPECT_EQ(0, instance->DeriveInitKey("QUJD", nullptr));
}

TEST(CCipher, EveryAllocationFailing) {
  long leaked = 0;
  const std::string data(100, 'd');
  std::string text = base64(data);
  unsigned char out[16];
  EXPECT_EQ(1u, fail_each_allocation(
                    [&](const AllocationFault& fault) {
                      const char* encoded = CCipher::Base64(bytes(data), 100);
                      EXPECT_EQ(fault.hit(), encoded == nullptr);
                      deleteArrayPoint_s(const_cast<char*>(encoded));
                    },
                    &leaked));
  // The first call makes the instance, in whichever test that is.
  EXPECT_GE(1u, fail_each_allocation(
                    [&](const AllocationFault& fault) {
                      const bool none = CCipher::getInstance() == nullptr;
                      EXPECT_EQ(fault.hit(), none);
                      leaked -= !fault.hit() && fault.allocations() == 1;
                    },
                    &leaked));
  CCipher* instance = CCipher::getInstance();
  EXPECT_EQ(1u, fail_each_allocation(
                    [&](const AllocationFault& fault) {
                      const bool refused = instance->DeriveInitKey("QUJD", out) == 0;
                      EXPECT_EQ(fault.hit(), refused);
                    },
                    &leaked));
  EXPECT_EQ(0, leaked);
}

}  // namespace
