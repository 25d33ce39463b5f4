// The two objects that are filled by their first use, when that comes on several threads at once:
// every thread compares what it gets with what one thread alone got.
#include <gtest/gtest.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/key_files.h"

namespace {

using TRUX::CIPHER::CCipher;

const char kRequest[] =
    "{\"encryptMode\":\"CBC\",\"cipherSize\":128,\"paddingMode\":\"PKCS5Padding\","
    "\"IVPrefix\":\"\",\"plainText\":\"twice the same text\"}";

std::string run_everything(const std::string& sealed) {
  std::string seen;
  char text[256] = "";
  unsigned char bytes[64] = "";
  if (PLX_AesEncry(kRequest, text) == 1) seen += text;
  if (PLX_aesCbcDecrypt(sealed.c_str(), static_cast<int>(sealed.size()), text, 256) > 0)
    seen += text;
  if (getPlainWorkKeyByName("aes_prefix_key", text, 256) == 0) seen += text;
  CCipher* instance = CCipher::getInstance();
  instance->getCCipherInitVector(bytes, 16);
  seen.append(reinterpret_cast<char*>(bytes), 16);
  return seen;
}

TEST(FirstUse, OnSeveralThreadsAtOnce) {
  plx_test::KeyFiles files;
  for (int i : {0, 1}) files.provision(i, "a 16-byte factor", "sixteen byte key");
  char sealed[200] = "";
  memset(g_WorkKey, 0, sizeof g_WorkKey);
  ASSERT_LT(0, PLX_aesCbcEncrypt(reinterpret_cast<const unsigned char*>("sealed"), 6, sealed, 200));
  const std::string expected = run_everything(sealed);
  std::atomic<int> disagree{0};
  for (int round = 0; round < 10; ++round) {
    memset(g_WorkKey, 0, sizeof g_WorkKey);  // every round begins with a first use
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] { disagree += run_everything(sealed) != expected; });
    }
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(0, disagree);
  memset(g_WorkKey, 0, sizeof g_WorkKey);
}

}  // namespace
