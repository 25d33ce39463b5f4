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
int blob_size;
char requests[8][400];
tagAes record;
alignas(CCipher) unsigned char room_for_cipher[sizeof(CCipher)];

unsigned char* key() { return reinterpret_cast<unsigned char*>(const_cast<char*>(kKeyText)); }
const unsigned char* plain() { return reinterpret_cast<const unsigned char*>(kPlain); }
char* text_output() { return reinterpret_cast<char*>(output + 1); }

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

void write_request(int i, const char* members) {
  snprintf(requests[i], sizeof requests[i], "{%s}", members);
}

void prepare(KeyFiles* files) {
  for (int i : {0, 1, 4}) files->provision(i, kFactor, kWorkKey);
  for (size_t i = 0; i < sizeof long_key; ++i)
    long_key[i] = static_cast<unsigned char>(i * i + 7 * i);
  for (size_t i = 0; i < sizeof data; ++i) data[i] = static_cast<unsigned char>(i * 31 >> 3);
  PLX_des_setKey(&single, key());
  PLX_3des_set3keys(&triple, key(), key() + 8, key() + 16);
  const int size = static_cast<int>(strlen(kPlain));
  PLX_aesCbcEncryptByKey(plain(), size, sealed_by_key, 200, key(), AES_CBC_128);
  PLX_aesCbcEncrypt(plain(), size, sealed_by_stb_key, 200);
  PLX_aesCbcEncryptByRandomKey(plain(), size, sealed_by_box_key, 200);
  blob_size = 80;
  CCipher::EncryptData(plain(), size, blob, blob_size, key(), AES_CBC_128);
  record.iMode = 1, record.iKeyBits = 128;
  memcpy(record.szKey, kKeyText, 16);
  record.pszText = const_cast<char*>(kPlain);
  PLX_AesEncryByMode(&record, reinterpret_cast<char*>(cipher_text), 32);

  const std::string rest = "\"paddingMode\":\"PKCS5Padding\",\"IVPrefix\":\"\"";
  const std::string prefix12 = "\"cipherPrefix\":\"" + std::string(kKeyText, 12) + "\",";
  const std::string text = std::string(",\"plainText\":\"") + kPlain + "\"";
  write_request(0, ("\"cipherSize\":128," + prefix12 + rest + text).c_str());
  write_request(1, ("\"cipherSize\":128," + rest + text).c_str());  // the stored key
  // Refused: the size, the padding, the prefix's length, the document, a second prefix.
  write_request(2, (prefix12 + "\"cipherSize\":129," + rest + text).c_str());
  write_request(3, (prefix12 + "\"cipherSize\":128" + text).c_str());
  write_request(4, ("\"cipherSize\":192," + prefix12 + rest + text).c_str());
  write_request(5, (prefix12 + "\"cipherSize\":128" + text + ",\"x\":,").c_str());
  write_request(6,
                ("\"in\":[{" + prefix12 + "\"y\":1},{\"cipherPrefix\":\"" +
                 std::string(kKeyText + 12, 12) + "\\u0041\"}],\"cipherSize\":128," + rest + text)
                    .c_str());
  memset(output, 0, sizeof output);
  PLX_AesEncry(requests[0], text_output());
  write_request(
      7, ("\"cipherSize\":128," + prefix12 + rest + ",\"cipherText\":\"" + text_output() + "\"")
             .c_str());

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

template <size_t kCount>
void run_cases(const Case (&cases)[kCount]) {
  size_t libcrypto = 0;
  for (const Case& row : cases) {
    libcrypto += expect_nothing_left(row.name, row.call);
  }
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
      {"hmac_sha256_get", [] { hmac_sha256_get(output, data, 100, key(), 24); }},
      {"with a long key", [] { hmac_sha256_get(output, data, 100, long_key, 100); }},
      {"hmac_sha256_initialize", [] { hmac_sha256_initialize(&hmac, key(), 24); }},
      {"with a long key", [] { hmac_sha256_initialize(&hmac, long_key, 100); }},
      {"hmac_sha256_update", [] { hmac_sha256_update(&hmac, key(), 24); }},
      {"hmac_sha256_finalize", [] { hmac_sha256_finalize(&hmac, data, 100); }},
      {"SHA256", [] { SHA256(key(), 24, output); }},
      {"of more than a block", [] { SHA256(long_key, 100, output); }},
      {"sha256_get", [] { sha256_get(output, key(), 24); }},
      {"of more than a block", [] { sha256_get(output, long_key, 100); }},
      {"Sha256_Update",
       [] {
         Sha256_Init(&staged_context);
         Sha256_Update(&staged_context, long_key, 100);
         Sha256_Update(&staged_context, key(), 24);
         Sha256_Final(&staged_context, output);
       }},
      {"sha256_update",
       [] {
         sha256_initialize(&packed_context);
         sha256_update(&packed_context, long_key, 100);
         sha256_update(&packed_context, key(), 24);
         sha256_finalize(&packed_context, key(), 24);
       }},
      {"PLX_sha256_encoder_buf", [] { PLX_sha256_encoder_buf(key(), 24, text_output(), 65); }},
      {"PLX_md5_encoder_buf", [] { PLX_md5_encoder_buf(key(), 24, text_output(), 33); }},
      {"PLX_md5_encode", [] { PLX_md5_encode(kKeyText, kWorkKey); }},
      {"PLX_md5_163encode", [] { PLX_md5_163encode(kKeyText); }},
      {"stunHMAC", [] { stunHMAC(output, data, 100, kKeyText, 24); }},
      {"PLX_b64_encode", [] { PLX_b64_encode(key(), 24, text_output(), 100); }},
      {"PLX_b64_decode", [] { PLX_b64_decode("a1Y3I3BRMnchelI5QG1YNHRMczgmY0Qx", 32, output); }},
      {"PLX_base64UrlEncoder",
       [] { static_cast<void>(PLX_base64UrlEncoder(text_output(), 100, key(), 23)); }},
      {"PLX_base64UrlDecode",
       [] { PLX_base64UrlDecode(output, 100, "a1Y3I3BRMnchelI5QG1YNHRMczgmY0Qx", 31); }},
  };
  run_cases(cases);
}

TEST(Secrets, TripleDes) {
  const Case cases[] = {
      {"PLX_des_setKey", [] { PLX_des_setKey(&single, key()); }},
      {"PLX_3des_set2keys", [] { PLX_3des_set2keys(&triple, key(), key() + 8); }},
      {"PLX_3des_set3keys", [] { PLX_3des_set3keys(&triple, key(), key() + 8, key() + 16); }},
      {"PLX_3des_encrypt of text", [] { PLX_3des_encrypt(&triple, plain(), output, 20); }},
      {"PLX_3des_encrypt of much", [] { PLX_3des_encrypt(&triple, data, output, sizeof data); }},
      {"PLX_3des_decrypt of much", [] { PLX_3des_decrypt(&triple, data, output, sizeof data); }},
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
      {"a vector", [] { getVectorForInitKeyByIndex(4, output, 16); }},
      {"getInitVector", [] { getInitVector(output, 16); }},
      {"CCipher", [] { new (room_for_cipher) CCipher; }},
      {"getFactorByIndex", [] { static_cast<void>(getFactorByIndex(0, output, 16)); }},
      {"DeriveInitKeyByIndex", [] { static_cast<void>(DeriveInitKeyByIndex(0, output, 16)); }},
      {"getPlainWorkKeyByName",
       [] { static_cast<void>(getPlainWorkKeyByName("aes_prefix_key", text_output(), 100)); }},
      {"without room",
       [] { static_cast<void>(getPlainWorkKeyByName("aes_prefix_key", text_output(), 16)); }},
      {"without file",
       [] { static_cast<void>(getPlainWorkKeyByName("whitelist_key", text_output(), 100)); }},
      {"CCipher::DeriveInitKey",
       [] {
         static_cast<void>(reinterpret_cast<CCipher*>(room_for_cipher)
                               ->DeriveInitKey("nRfiS4bxPAWqWMcgfpHUbw==", output));
       }},
      {"CCipher::deriveKey",
       [] { static_cast<void>(CCipher::deriveKey(kKeyText, 24, data, 16, 2, 16, output)); }},
      {"CCipher::Base64", [] { static_cast<void>(CCipher::Base64(key(), 24)); }},
      {"CCipher::UnBase64",
       [] {
         static int size;
         static_cast<void>(CCipher::UnBase64("a1Y3I3BRMnchelI5QG1YNHRMczgmY0Qx", 32, &size));
       }},
      {"printUnsignedCharArray", [] { printUnsignedCharArray(kKeyText, key(), 24); }},
  };
  run_cases(cases);
}

#define REQUEST(i) [] { static_cast<void>(PLX_AesEncry(requests[i], text_output())); }

TEST(Secrets, Aes) {
  static const int kSize = static_cast<int>(strlen(kPlain));
  const Case cases[] = {
      {"PLX_AesEncryByMode",
       [] { static_cast<void>(PLX_AesEncryByMode(&record, text_output(), 100)); }},
      {"PLX_AesDecryByMode",
       [] {
         static_cast<void>(PLX_AesDecryByMode(&record, reinterpret_cast<char*>(cipher_text), 32,
                                              text_output(), 100));
       }},
      {"CCipher::EncryptData",
       [] {
         static int size;
         size = 80;
         static_cast<void>(CCipher::EncryptData(plain(), kSize, output, size, key(), AES_CBC_128));
       }},
      {"CCipher::DecryptData",
       [] {
         static int size;
         size = 80;
         static_cast<void>(CCipher::DecryptData(blob, blob_size, output, size, key(), AES_CBC_128));
       }},
      {"PLX_aesCbcEncryptByKey",
       [] {
         static_cast<void>(
             PLX_aesCbcEncryptByKey(plain(), kSize, text_output(), 200, key(), AES_CBC_128));
       }},
      {"PLX_aesCbcDecryptByKey",
       [] {
         static_cast<void>(PLX_aesCbcDecryptByKey(sealed_by_key,
                                                  static_cast<int>(strlen(sealed_by_key)),
                                                  text_output(), 200, key(), AES_CBC_128));
       }},
      {"without room",
       [] {
         static_cast<void>(PLX_aesCbcDecryptByKey(sealed_by_key,
                                                  static_cast<int>(strlen(sealed_by_key)),
                                                  text_output(), 20, key(), AES_CBC_128));
       }},
      {"PLX_aesCbcEncrypt",
       [] {
         g_WorkKey[0] = 0;
         static_cast<void>(PLX_aesCbcEncrypt(plain(), kSize, text_output(), 200));
       }},
      {"PLX_aesCbcDecrypt",
       [] {
         static_cast<void>(PLX_aesCbcDecrypt(
             sealed_by_stb_key, static_cast<int>(strlen(sealed_by_stb_key)), text_output(), 200));
       }},
      {"PLX_aesCbcEncryptByRandomKey",
       [] { static_cast<void>(PLX_aesCbcEncryptByRandomKey(plain(), kSize, text_output(), 200)); }},
      {"PLX_aesCbcDecryptByRandomKey",
       [] {
         static_cast<void>(PLX_aesCbcDecryptByRandomKey(
             sealed_by_box_key, static_cast<int>(strlen(sealed_by_box_key)), text_output(), 200));
       }},
      {"PLX_AesEncry with a prefix", REQUEST(0)},
      {"PLX_AesEncry with the stored key", REQUEST(1)},
      {"PLX_AesEncry with no size", REQUEST(2)},
      {"PLX_AesEncry without padding", REQUEST(3)},
      {"PLX_AesEncry with a prefix of a wrong length", REQUEST(4)},
      {"PLX_AesEncry of what is no document", REQUEST(5)},
      {"PLX_AesEncry with two prefixes", REQUEST(6)},
      {"PLX_AesDecry", [] { static_cast<void>(PLX_AesDecry(requests[7], text_output(), 200)); }},
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
