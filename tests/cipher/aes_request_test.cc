// Requests against libcrypto, with key and IV composed here from the rules.
#include <gtest/gtest.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>

#include <string>

#include "cipher/secrets.h"
#include "cipher/support.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;

const std::string kPrefix = "twenty-eight characters here";

struct Cipher {
  std::string mode, bits, padding;  // as in the request
  std::string key_prefix, iv_prefix;
};

std::string request_of(const Cipher& cipher, const std::string& member, const std::string& text) {
  return "{\"encryptMode\":\"" + cipher.mode + "\",\"cipherSize\":" + cipher.bits +
         ",\"paddingMode\":\"" + cipher.padding + "\",\"cipherPrefix\":\"" + cipher.key_prefix +
         "\",\"IVPrefix\":\"" + cipher.iv_prefix + "\",\"" + member + "\":\"" + text + "\"}";
}

// The key field of 32 bytes: prefix and suffix, and with no room for a terminator a zero at its
// start, which callers depend on.
std::string key_of(const std::string& prefix) {
  if (prefix.size() >= 32) return std::string(plx::cipher::key_suffix()) + std::string(28, '\0');
  std::string key = (prefix + plx::cipher::key_suffix()).substr(0, 32);
  if (prefix.size() >= 28) key[0] = 0;
  key.resize(32);
  return key;
}

std::string iv_of(const std::string& prefix) {
  std::string iv = prefix.empty() ? plx::cipher::default_iv_prefix() : prefix.substr(0, 30);
  iv += plx::cipher::iv_suffix();
  iv = iv.substr(0, 31);
  iv.resize(32);
  return iv.substr(0, 16);
}

std::string judge_request(const Cipher& cipher, const std::string& stored, bool encrypting,
                          const std::string& in) {
  const std::string name = "AES-" + cipher.bits + "-" + (cipher.mode == "CBC" ? "CBC" : "ECB");
  return judge_cipher(name, encrypting, !cipher.padding.empty(),
                      key_of(cipher.key_prefix.empty() ? stored : cipher.key_prefix),
                      iv_of(cipher.iv_prefix), in);
}

// `out` between dots.
struct Outcome {
  int result;
  std::string image;  // one byte before out, then 2100 from out on
};

Outcome encrypt(const std::string& request) {
  Outcome outcome{0, std::string(2101, '.')};
  outcome.result = PLX_AesEncry(request.c_str(), &outcome.image[1]);
  return outcome;
}

Outcome decrypt(const std::string& request, int out_size) {
  Outcome outcome{0, std::string(2101, '.')};
  outcome.result = PLX_AesDecry(request.c_str(), &outcome.image[1], out_size);
  return outcome;
}

std::string framed(const std::string& text) {
  return "." + text + std::string(2100 - text.size(), '.');
}

const Cipher kCiphers[] = {
    {"ECB", "128", "PKCS5Padding", kPrefix.substr(0, 12), ""},
    {"", "192", "", kPrefix.substr(0, 20), "ignored"},
    {"ECB", "256", "PKCS5Padding", kPrefix, ""},
    {"CBC", "128", "", kPrefix.substr(0, 12), "twelve chars"},
    {"CBC", "128", "", kPrefix.substr(0, 12), "fourteen chars"},  // and two of the product's
    {"CBC", "192", "PKCS5Padding", kPrefix.substr(0, 20), ""},
    {"CBC", "256", "", kPrefix, "short"},
    {"CBC", "256", "PKCS5Padding", kPrefix, "an IV prefix of more than thirty letters"},
};

TEST(AesRequest, AgreesWithLibcryptoAtEveryLength) {
  for (const Cipher& cipher : kCiphers) {
    for (size_t length = 0; length <= 1030; length += length < 130 || length >= 1008 ? 1 : 29) {
      SCOPED_TRACE(testing::Message() << cipher.mode << cipher.bits << cipher.padding << length);
      const std::string text = std::string(1030, 'a').substr(0, length);
      const std::string plain = text.substr(0, 1022);  // longer ones are cut
      // 192-bit keys: the library's own buffer is too small at these lengths, and callers depend
      // on the 1.
      const bool mismatch =
          cipher.bits == "192" && plain.size() % 48 >= 16 && plain.size() % 48 < 24;
      const std::string expected = judge_request(cipher, "", true, plain);
      const bool written = expected != "refused" && !mismatch;
      const Outcome outcome = encrypt(request_of(cipher, "plainText", text));
      EXPECT_EQ(expected.empty() ? 0 : 1, outcome.result);  // no padding, no text: nothing written
      ASSERT_EQ(framed(written ? to_hex(expected) : ""), outcome.image);
      if (expected == "refused" || expected.size() > 511) continue;

      const std::string request = request_of(cipher, "cipherText", to_hex(expected));
      const int need = static_cast<int>(2 * expected.size() / 16 * 16 + 16);
      const Outcome opened = decrypt(request, need);
      EXPECT_EQ(plain.empty() ? 0 : 1, opened.result);
      EXPECT_EQ(framed(plain.empty() ? "" : plain + '\0'), opened.image);
      // Too small an output: callers depend on the 1 and on the zero before it.
      const Outcome small = decrypt(request, need - 1);
      EXPECT_EQ(1, small.result);
      EXPECT_EQ('\0' + framed("").substr(1), small.image);
    }
  }
}

TEST(AesRequest, Documents) {
  const std::string good =
      "{\"encryptMode\":\"ECB\",\"cipherSize\":128,\"paddingMode\":\"PKCS5Padding\","
      "\"cipherPrefix\":\"twenty-eight\",\"IVPrefix\":\"\",\"plainText\":\"abc\"}";
  struct Row {
    const char* why;
    std::string old_text, new_text;
    int result;
  };
  const std::string mode = "\"encryptMode\":\"ECB\",", size = "\"cipherSize\":128,",
                    padding = "\"paddingMode\":\"PKCS5Padding\",", iv = "\"IVPrefix\":\"\",",
                    prefix = "\"cipherPrefix\":\"twenty-eight\"";
  const Row rows[] = {
      {"as it is", "", "", 1},
      {"text around the object", "{\"enc", "request={\"enc", 1},
      {"and behind it", "abc\"}", "abc\"}\r\n \"", 1},
      {"no opening brace", "{", "", 0},
      {"no closing brace", "}", "", 0},
      {"the closing brace first", good, "} {", 0},
      {"nothing", good, "", 0},
      {"no JSON", "128,", "128,,", 0},
      {"two equal names", iv, "\"cipherSize\":128,", 0},
      {"no mode is ECB", mode, "", 1},
      {"an empty one too", mode, "\"encryptMode\":\"\",", 1},
      {"a container has an empty text", mode, "\"encryptMode\":[\"CBC\"],", 1},
      {"case matters", mode, "\"encryptMode\":\"ecb\",", 0},
      {"", mode, "\"encryptMode\":\"cbc\",", 0},
      {"", mode, "\"encryptMode\":\"ECB \",", 0},
      {"", mode, "\"encryptMode\":\"CBCx\",", 0},
      {"CBC has an empty IV prefix here", mode, "\"encryptMode\":\"CBC\",", 2},
      {"no key size has no default", size, "", 0},
      {"an empty one neither", size, "\"cipherSize\":\"\",", 0},
      {"a size as text", size, "\"cipherSize\":\"128\",", 1},
      {"with letters behind it", size, "\"cipherSize\":\"128bit\",", 1},
      {"with white space before it", size, "\"cipherSize\":\" 128\",", 1},
      {"cut to 6 characters", size, "\"cipherSize\":\"0001280\",", 1},
      {"", size, "\"cipherSize\":\"0000128\",", 0},
      {"other sizes", size, "\"cipherSize\":64,", 0},
      {"", size, "\"cipherSize\":-128,", 0},
      {"a size that the prefix does not fit", size, "\"cipherSize\":192,", 0},
      {"", size, "\"cipherSize\":256,", 0},
      {"no padding mode", padding, "", 0},
      {"another one", padding, "\"paddingMode\":\"PKCS7Padding\",", 0},
      {"", padding, "\"paddingMode\":\"PKCS5Padding \",", 0},
      {"a container means no padding, which 3 letters need", padding, "\"paddingMode\":{},", 3},
      {"a prefix of 11", prefix, "\"cipherPrefix\":\"twenty-eigh\"", 0},
      {"of 13", prefix, "\"cipherPrefix\":\"twenty-eight \"", 0},
      {"no IV prefix in ECB", iv, "", 1},
      {"members anywhere in the tree", prefix, "\"deep\":[[{\"cipherPrefix\":\"twenty-eight\"}]]",
       1},
      {"the first of them counts", prefix, "\"deep\":{\"cipherPrefix\":\"short\"}," + prefix, 0},
      {"no prefix and no key store", prefix, "\"cipherPrefix\":\"\"", 0},
  };
  KeyFiles no_keys;
  const Cipher ecb = {"ECB", "128", "PKCS5Padding", "twenty-eight", ""};
  const Cipher cbc = {"CBC", "128", "PKCS5Padding", "twenty-eight", ""};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.why << " " << row.new_text);
    const HostErrors errors;
    std::string request = good;
    request.replace(request.find(row.old_text), row.old_text.size(), row.new_text);
    // 2: encrypts as CBC, 3: gives 1 and writes nothing.
    const std::string expected =
        row.result == 1 || row.result == 2
            ? to_hex(judge_request(row.result == 1 ? ecb : cbc, "", true, "abc"))
            : "";
    const Outcome outcome = encrypt(request);
    EXPECT_EQ(row.result == 0 ? 0 : 1, outcome.result);
    EXPECT_EQ(framed(expected), outcome.image);
  }
  std::string no_iv = good;
  no_iv.replace(no_iv.find(mode), mode.size(), "\"encryptMode\":\"CBC\",");
  no_iv.replace(no_iv.find(iv), iv.size(), "");
  EXPECT_EQ(0, encrypt(no_iv).result);  // CBC needs the member
  char out[8];
  EXPECT_EQ(0, PLX_AesEncry(nullptr, out));
  EXPECT_EQ(0, PLX_AesDecry(nullptr, out, 8));
  EXPECT_EQ(0, PLX_AesDecry(good.c_str(), nullptr, 8));
}

// fuzz/fuzz_request.cc decrypts digits of every kind, and what does not decrypt.
TEST(AesRequest, DecryptionFailsInTheByteBefore) {
  const Cipher cipher = {"CBC", "128", "PKCS5Padding", kPrefix.substr(0, 12), ""};
  Cipher wrong = cipher;
  wrong.key_prefix = "another pref";
  const std::string sealed = judge_request(cipher, "", true, "sixteen letters.");
  ASSERT_EQ("refused", judge_request(wrong, "", false, sealed));
  const std::string request = request_of(wrong, "cipherText", to_hex(sealed));
  // Digits behind the 1022nd are cut, which leaves an unfinished block.
  const std::string zeros = std::string(1024, '0');
  for (const std::string& failing : {request, request_of(cipher, "cipherText", zeros)}) {
    const HostErrors errors;
    const Outcome outcome = decrypt(failing, 2000);
    EXPECT_EQ(1, outcome.result);
    EXPECT_EQ('\0', outcome.image[0]);
  }
  const NoProviders none;
  EXPECT_EQ(0, decrypt(request, 200).result);
}

TEST(AesRequest, StoredPrefixOfAnyLength) {
  KeyFiles files;
  for (const char* bits : {"128", "256"}) {
    for (size_t length : {0, 1, 12, 27, 28, 29, 31, 32, 40, 255}) {
      SCOPED_TRACE(testing::Message() << bits << " " << length);
      std::string stored;
      while (stored.size() < length) stored += static_cast<char>('A' + stored.size() % 26);
      files.provision(1, "a 16-byte factor", stored);
      const Cipher cipher = {"ECB", bits, "PKCS5Padding", "", ""};
      const Outcome outcome = encrypt(request_of(cipher, "plainText", "abc"));
      EXPECT_EQ(1, outcome.result);
      EXPECT_EQ(framed(to_hex(judge_request(cipher, stored, true, "abc"))), outcome.image);
    }
  }
  files.provision(1, "a 16-byte factor", std::string(256, 'k'));  // does not fit
  EXPECT_EQ(0, encrypt(request_of({"ECB", "128", "", "", ""}, "plainText", "abc")).result);
}

}  // namespace
