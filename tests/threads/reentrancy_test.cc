// What may run on several threads at once does, from its very first use on: each thread makes the
// same calls with objects of its own and must get what one thread alone gets. Built with the thread
// sanitizer (scripts/verify) it shows races that happen to do no harm as well.
#include <gtest/gtest.h>
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/securec.h>
#include <string.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using Bytes = const unsigned char*;

std::string formatted() {
  char text[64], word[16];
  wchar_t wide[64];
  int number = 0;
  double fraction = 0;
  if (sprintf_s(text, sizeof text, "%s %5d %.3f", "box", 42, 2.5) < 0) return "refused";
  if (swprintf_s(wide, 64, L"%ls %08x", L"wide", 48879) < 0) return "refused";
  if (sscanf_s(text, "%s %d %lf", word, unsigned{sizeof word}, &number, &fraction) != 3) {
    return "not read";
  }
  char* rest = nullptr;
  char* first = strtok_s(text, " ", &rest);
  return std::string(first) + word + std::to_string(number + static_cast<int>(fraction)) +
         std::string(wide, wide + wcslen(wide));
}

std::string digested() {
  const std::string data(1000, 'd');
  char hex[65], encoded[64];
  unsigned char mac[32], blocks[56] = {}, key[3][8] = {{1}, {2}, {3}};
  if (PLX_sha256_encoder_buf(reinterpret_cast<Bytes>(data.data()), 1000, hex, sizeof hex) != 0)
    return "refused";
  if (hmac_sha256_get(mac, reinterpret_cast<Bytes>(data.data()), 1000,
                      reinterpret_cast<Bytes>("key"), 3) != 32) {
    return "refused";
  }
  if (PLX_base64UrlEncoder(encoded, sizeof encoded, mac, sizeof mac) != 0) return "refused";
  Des3Context des;
  PLX_3des_set3keys(&des, key[0], key[1], key[2]);
  PLX_3des_encrypt(&des, blocks, blocks, 48);
  return hex + std::string(encoded) + std::string(blocks, blocks + sizeof blocks);
}

std::string parsed() {
  PLX_JsonValue* tree = PLX_ParseJsonString("{\"a\":[1,2,{\"b\":\"text\"}],\"c\":\"last\"}");
  const char* found = PLX_FindStringFromJsonValue(tree, "c");
  const std::string text = found != nullptr ? found : "none";
  PLX_FreeJsonValue(tree);
  return text;
}

std::string encrypted() {
  char text[] = "a text of the caller", out[64], hex[128] = {};
  tagAes aes = {1, 256, 1, {}, {}, text};
  memset(aes.szKey, 'k', sizeof aes.szKey);
  const int size = PLX_AesEncryByMode(&aes, out, sizeof out);
  const char request[] =
      "{\"encryptMode\":\"CBC\",\"cipherSize\":128,\"paddingMode\":\"PKCS5Padding\","
      "\"cipherPrefix\":\"0123456789ab\",\"IVPrefix\":\"abcdefghijkl\",\"plainText\":\"hello\"}";
  const int answer = PLX_AesEncry(request, hex);
  if (answer != 1 || hex[0] == 0) return "refused";

  char sealed[128], opened[64] = {};
  const Bytes key = reinterpret_cast<Bytes>("0123456789abcdef");
  if (PLX_aesCbcEncryptByKey(reinterpret_cast<Bytes>(text), sizeof text, sealed, sizeof sealed, key,
                             AES_CBC_128) <= 0 ||
      PLX_aesCbcDecryptByKey(sealed, static_cast<int>(strlen(sealed)), opened, sizeof opened, key,
                             AES_CBC_128) <= 0) {
    return "refused";
  }
  const bool same = TRUX::CIPHER::CCipher::getInstance() != nullptr;
  return std::string(out, out + size) + hex + opened + (same ? "1" : "0");
}

std::string one_round() { return formatted() + digested() + parsed() + encrypted(); }

TEST(Threads, GetWhatOneThreadGets) {
  constexpr int kThreads = 4, kRounds = 20;
  std::vector<std::vector<std::string>> results(kThreads);
  std::atomic<int> waiting{kThreads};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      // All at once, so that first uses meet each other.
      for (--waiting; waiting > 0;) std::this_thread::yield();
      for (int round = 0; round < kRounds; ++round) results[i].push_back(one_round());
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::string expected = one_round();
  EXPECT_EQ(std::string::npos, expected.find("refused"));
  for (const std::vector<std::string>& rounds : results) {
    EXPECT_EQ(std::vector<std::string>(kRounds, expected), rounds);
  }
}

// One tree may be read by many.
TEST(Threads, QueryOneTree) {
  const std::unique_ptr<PLX_JsonValue, void (*)(PLX_JsonValue*)> tree(
      PLX_ParseJsonString("{\"x\":{\"y\":\"7\"},\"z\":[true,\"q\"]}"), PLX_FreeJsonValue);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 200; ++round) {
        double number = 0;
        if (PLX_FindNumberFromJsonValue(tree.get(), "y", &number) != 0 || number != 7) ++wrong;
        const PLX_JsonArray* array = PLX_FindArrayFromJsonValue(tree.get(), "z");
        if (PLX_JsonGetArrayCount(array) != 2) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong.load());
}

}  // namespace
