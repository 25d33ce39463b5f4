// Every call that handles a key leaves no piece of it behind: not on the stack, not in freed
// blocks, whether it succeeds, fails, or runs out of memory at any step.
#include <gtest/gtest.h>
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/key_store.h>
#include <stdio.h>
#include <string.h>

#include <new>

#include "digest/arch/kernels.h"
#include "digest/des.h"
#include "secrets/detector.h"
#include "support/allocation.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;
using TRUX::CIPHER::CCipher;

// Nothing here is on the watched stack: all that calls are given and give lies in these.
const std::string kFactor = "\x9D\x17\xE2\x4B\x86\xF1\x3C\x05\xAA\x58\xC7\x20\x7E\x91\xD4\x6F";
const char kKeyText[] = "kV7#pQ2w!zR9@mX4tLs8&cD1";  // also a prefix of 20 and of 12 characters
const char kWorkKey[] = "Wq5*uN3y)bH6^eJ0";
const char kPlain[] = "Plain:8vG%4xK$2hT(7aZ";
unsigned char long_key[100];
unsigned char data[8 * 1024], output[8 * 1024 + 64];
Des3Context triple;
DesContext single;
HmacSha256Ctx hmac;
Sha256Context staged_context;
Sha256Ctx packed_context;
char sealed_by_key[200], sealed_by_stb_key[200], sealed_by_box_key[200];
unsigned char blob[100], cipher_text[32];
int blob_size, size_in_and_out;
constexpr int kPlainSize = sizeof kPlain - 1;
char requests[10][1600];
tagAes record;
alignas(CCipher) unsigned char room_for_cipher[sizeof(CCipher)];

unsigned char* key() { return reinterpret_cast<unsigned char*>(const_cast<char*>(kKeyText)); }
const unsigned char* plain() { return reinterpret_cast<const unsigned char*>(kPlain); }
char* text_output() { return reinterpret_cast<char*>(output + 1); }
int length(const char* text) { return static_cast<int>(strlen(text)); }

template <typename Context>
void schedule_secret(const char* name, Context& ctx) {
  add_secret(name, ctx.encSubkeys, sizeof ctx.encSubkeys);
  add_secret(name, ctx.decSubkeys, sizeof ctx.decSubkeys);
}

void masked_secret(const char* name, std::string block, char mask) {
  block.resize(64);
  for (char& c : block) c = static_cast<char>(c ^ mask);
  add_secret(name, block.data(), block.size());
}

void write_request(int i, const std::string& members) {
  snprintf(requests[i], sizeof requests[i], "{%s}", members.c_str());
}

void prepare(KeyFiles* files) {
  for (int i : {0, 1, 4}) files->provision(i, kFactor, kWorkKey);
  files->write_factor(2, kKeyText);
  for (size_t i = 0; i < sizeof long_key; ++i)
    long_key[i] = static_cast<unsigned char>(i * i + 7 * i);
  for (size_t i = 0; i < sizeof data; ++i) data[i] = static_cast<unsigned char>(i * 31 >> 3);
  PLX_des_setKey(&single, key());
  PLX_3des_set3keys(&triple, key(), key() + 8, key() + 16);
  PLX_aesCbcEncryptByKey(plain(), kPlainSize, sealed_by_key, 200, key(), AES_CBC_128);
  PLX_aesCbcEncrypt(plain(), kPlainSize, sealed_by_stb_key, 200);
  PLX_aesCbcEncryptByRandomKey(plain(), kPlainSize, sealed_by_box_key, 200);
  blob_size = 80;
  CCipher::EncryptData(plain(), kPlainSize, blob, blob_size, key(), AES_CBC_128);
  record.iMode = 1, record.iKeyBits = 128;
  memcpy(record.szKey, kKeyText, 16);
  record.pszText = const_cast<char*>(kPlain);
  PLX_AesEncryByMode(&record, reinterpret_cast<char*>(cipher_text), 32);

  const std::string rest = "\"paddingMode\":\"PKCS5Padding\",\"IVPrefix\":\"\"";
  const std::string prefix12 = "\"cipherPrefix\":\"" + std::string(kKeyText, 12) + "\",";
  const std::string text = std::string(",\"plainText\":\"") + kPlain + "\"";
  const std::string second =
      ",{\"cipherPrefix\":\"" + std::string(kKeyText + 12, 12) + "\\u0041\"}";
  write_request(0, "\"cipherSize\":128," + prefix12 + rest + text);
  write_request(1, "\"cipherSize\":128," + rest + text);  // the stored key
  // Refused: the size, the padding, the prefix's length, the document, a second prefix.
  write_request(2, prefix12 + "\"cipherSize\":129," + rest + text);
  write_request(3, prefix12 + "\"cipherSize\":128" + text);
  write_request(4, "\"cipherSize\":192," + prefix12 + rest + text);
  write_request(5, prefix12 + "\"cipherSize\":128" + text + ",\"x\":,");
  write_request(
      6, "\"in\":[{" + prefix12 + "\"y\":1}" + second + "],\"cipherSize\":128," + rest + text);
  std::string nested = "\"cipherSize\":128," + prefix12 + rest + text;
  for (int depth = 0; depth < 14; ++depth) nested = "\"in\":{" + nested + "}";
  write_request(8, nested);
  std::string elements;  // the last one is refused
  for (int i = 0; i < 480; ++i) elements += "1,";
  write_request(9, "\"in\":[" + elements + "{\"in\":[{" + prefix12 + "\"x\":1}]}]," + rest + text);
  memset(output, 0, sizeof output);
  PLX_AesEncry(requests[0], text_output());
  const std::string digits = text_output();
  write_request(7, "\"cipherSize\":128," + prefix12 + rest + ",\"cipherText\":\"" + digits + "\"");

  add_secret("factor", kFactor.data(), 16);
  add_secret("key", kKeyText, strlen(kKeyText));
  add_secret("long key", long_key, sizeof long_key);
  add_secret("work key", kWorkKey, strlen(kWorkKey));
  add_secret("plain text", kPlain, strlen(kPlain));
  for (int i : {0, 1, 4}) {
    DeriveInitKeyByIndex(i, output, 16);
    add_secret("init key", output, 16);
    getVectorForInitKeyByIndex(static_cast<unsigned>(i), output, 16);
    add_secret("vector", output, 16);
  }
  getInitVector(output, 16);
  add_secret("instance vector", output, 16);
  CCipher().DeriveInitKey("nRfiS4bxPAWqWMcgfpHUbw==", output);
  add_secret("instance key", output, 16);
  schedule_secret("key schedule", single);
  schedule_secret("key schedule", triple);
  sha256_get(output, long_key, sizeof long_key);
  const std::string hashed(reinterpret_cast<char*>(output), 32);
  add_secret("hash of the long key", hashed.data(), 32);
  for (const std::string& block : {std::string(kKeyText), hashed}) {
    masked_secret("inner key block", block, 0x36);
    masked_secret("outer key block", block, 0x5C);
  }
  g_WorkKey[0] = 0;
  memset(output, 0, sizeof output);
}

void expect_clean(const char* name, const Findings& findings) {
  for (const Finding& finding : findings.ours) {
    ADD_FAILURE() << name << ": " << *finding.secret << finding.where << finding.bytes;
  }
}

// Undisturbed, and with the first, second, ... allocation failing. Returns what libcrypto left.
size_t expect_nothing_left(const char* name, void (*call)()) {
  size_t libcrypto = 0;
  bool hit = true;
  for (size_t n = 0; (n == 0 || hit); ++n) {
    const Findings findings = watch([&] {
      const AllocationFault fault(n);
      call();
      hit = fault.hit();
    });
    SCOPED_TRACE(testing::Message() << "allocation failing: " << n);
    expect_clean(name, findings);
    libcrypto += findings.libcrypto;
    if (!findings.ours.empty()) break;
  }
  return libcrypto;
}

struct Case {
  const char* name;
  void (*call)();
};
#define CALL(...)                                          \
  {                                                        \
#__VA_ARGS__, [] { static_cast<void>((__VA_ARGS__)); } \
  }
const char kBase64OfKey[] = "a1Y3I3BRMnchelI5QG1YNHRMczgmY0Qx";

template <size_t kCount>
void run_cases(const Case (&cases)[kCount]) {
  size_t libcrypto = 0;
  for (const Case& row : cases) libcrypto += expect_nothing_left(row.name, row.call);
  printf("left by libcrypto's own functions: %zu\n", libcrypto);
}

TEST(Secrets, TheDetectorSees) {
  static const auto leave_on_the_stack = [] {
    char copy[600];  // deep enough not to be written over by the return
    memcpy(copy, kKeyText, sizeof kKeyText);
    __asm__ volatile("" : : "r"(copy) : "memory");
  };
  EXPECT_EQ(1u, watch([] { leave_on_the_stack(); }).ours.size());
  static const auto leave_in_a_block = [] {
    char* copy = static_cast<char*>(PLX_malloc(64));
    PLX_b64_encode(key(), 24, copy, 64);
    PLX_free(copy);
  };
  EXPECT_EQ(1u, watch([] { leave_in_a_block(); }).ours.size());
  EXPECT_EQ(0u, watch([] { PLX_free(PLX_malloc(64)); }).ours.size());
}

TEST(Secrets, Digests) {
  const Case cases[] = {
      CALL(hmac_sha256_get(output, data, 100, key(), 24)),
      CALL(hmac_sha256_get(output, data, 100, long_key, 100)),
      CALL(hmac_sha256_initialize(&hmac, key(), 24)),
      CALL(hmac_sha256_initialize(&hmac, long_key, 100)),
      CALL(hmac_sha256_update(&hmac, key(), 24)),
      CALL(hmac_sha256_finalize(&hmac, data, 100)),
      CALL(SHA256(key(), 24, output)),
      CALL(SHA256(long_key, 100, output)),
      CALL(sha256_get(output, key(), 24)),
      CALL(sha256_get(output, long_key, 100)),
      CALL(Sha256_Init(&staged_context), Sha256_Update(&staged_context, long_key, 100),
           Sha256_Update(&staged_context, key(), 24), Sha256_Final(&staged_context, output)),
      CALL(sha256_initialize(&packed_context), sha256_update(&packed_context, long_key, 100),
           sha256_update(&packed_context, key(), 24), sha256_finalize(&packed_context, key(), 24)),
      CALL(PLX_sha256_encoder_buf(key(), 24, text_output(), 65)),
      CALL(PLX_md5_encoder_buf(key(), 24, text_output(), 33)),
      CALL(PLX_sha256_encoder_file(g_stKeyMap[2].pszFactorPath, text_output(), 65)),
      CALL(PLX_md5_encoder_file(g_stKeyMap[2].pszFactorPath, text_output(), 33)),
      CALL(PLX_md5_encode(kKeyText, kWorkKey)),
      CALL(PLX_md5_163encode(kKeyText)),
      CALL(stunHMAC(output, data, 100, kKeyText, 24)),
      CALL(PLX_b64_encode(key(), 24, text_output(), 100)),
      CALL(PLX_b64_decode(kBase64OfKey, 32, output)),
      CALL(PLX_base64UrlEncoder(text_output(), 100, key(), 23)),
      CALL(PLX_base64UrlDecode(output, 100, kBase64OfKey, 31)),
  };
  run_cases(cases);
}

TEST(Secrets, TripleDes) {
  const Case cases[] = {
      CALL(PLX_des_setKey(&single, key())),
      CALL(PLX_3des_set2keys(&triple, key(), key() + 8)),
      CALL(PLX_3des_set3keys(&triple, key(), key() + 8, key() + 16)),
      CALL(PLX_3des_encrypt(&triple, plain(), output, 20)),
      CALL(PLX_3des_encrypt(&triple, data, output, sizeof data)),
      CALL(PLX_3des_decrypt(&triple, data, output, sizeof data)),
  };
  run_cases(cases);
  // The tables' registers are swept away by their caller, see above.
  for (const auto& kernel : plx::digest::kDesKernels) {
    if (!kernel.supported() || kernel.min_blocks == 0) continue;
    for (size_t num_blocks : {1, 64, 1000}) {
      const Findings findings =
          watch([&] { kernel.blocks(triple.encSubkeys, 3, output, data, num_blocks); });
      expect_clean(kernel.name, findings);
    }
  }
}

TEST(Secrets, KeyStore) {
  const Case cases[] = {
      CALL(getVectorForInitKeyByIndex(4, output, 16)),
      CALL(getInitVector(output, 16)),
      CALL(new (room_for_cipher) CCipher),
      CALL(getFactorByIndex(0, output, 16)),
      CALL(DeriveInitKeyByIndex(0, output, 16)),
      CALL(getPlainWorkKeyByName("aes_prefix_key", text_output(), 100)),
      CALL(getPlainWorkKeyByName("aes_prefix_key", text_output(), 16)),  // without room
      CALL(getPlainWorkKeyByName("whitelist_key", text_output(), 100)),  // without file
      CALL(reinterpret_cast<CCipher*>(room_for_cipher)
               ->DeriveInitKey("nRfiS4bxPAWqWMcgfpHUbw==", output)),
      CALL(CCipher::deriveKey(kKeyText, 24, data, 16, 2, 16, output)),
      CALL(hand_out(CCipher::Base64(key(), 24))),
      CALL(hand_out(CCipher::UnBase64(kBase64OfKey, 32, &size_in_and_out))),
      CALL(printUnsignedCharArray(kKeyText, key(), 24)),
  };
  run_cases(cases);
}

TEST(Secrets, Aes) {
  const Case cases[] = {
      CALL(PLX_AesEncryByMode(&record, text_output(), 100)),
      CALL(PLX_AesDecryByMode(&record, reinterpret_cast<char*>(cipher_text), 32, text_output(),
                              100)),
      CALL(size_in_and_out = 80,
           CCipher::EncryptData(plain(), kPlainSize, output, size_in_and_out, key(), AES_CBC_128)),
      CALL(size_in_and_out = 80,
           CCipher::DecryptData(blob, blob_size, output, size_in_and_out, key(), AES_CBC_128)),
      CALL(PLX_aesCbcEncryptByKey(plain(), kPlainSize, text_output(), 200, key(), AES_CBC_128)),
      CALL(PLX_aesCbcDecryptByKey(sealed_by_key, length(sealed_by_key), text_output(), 200, key(),
                                  AES_CBC_128)),
      CALL(PLX_aesCbcDecryptByKey(sealed_by_key, length(sealed_by_key), text_output(), 20, key(),
                                  AES_CBC_128)),  // without room
      CALL(g_WorkKey[0] = 0, PLX_aesCbcEncrypt(plain(), kPlainSize, text_output(), 200)),
      CALL(PLX_aesCbcDecrypt(sealed_by_stb_key, length(sealed_by_stb_key), text_output(), 200)),
      CALL(PLX_aesCbcEncryptByRandomKey(plain(), kPlainSize, text_output(), 200)),
      CALL(PLX_aesCbcDecryptByRandomKey(sealed_by_box_key, length(sealed_by_box_key), text_output(),
                                        200)),
      CALL(PLX_AesEncry(requests[0], text_output())),
      CALL(PLX_AesEncry(requests[1], text_output())),
      CALL(PLX_AesEncry(requests[2], text_output())),
      CALL(PLX_AesEncry(requests[3], text_output())),
      CALL(PLX_AesEncry(requests[4], text_output())),
      CALL(PLX_AesEncry(requests[5], text_output())),
      CALL(PLX_AesEncry(requests[6], text_output())),
      CALL(PLX_AesDecry(requests[7], text_output(), 200)),
      CALL(PLX_AesEncry(requests[8], text_output())),
      CALL(PLX_AesEncry(requests[9], text_output())),
  };
  run_cases(cases);
}

}  // namespace

int main(int argc, char** argv) {
  watch_libcrypto_blocks();
  testing::InitGoogleTest(&argc, argv);
  KeyFiles files;
  prepare(&files);
  return RUN_ALL_TESTS();
}
