#include <gtest/gtest.h>
#include <limits.h>
#include <plx/digest.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "digest/des.h"
#include "support/allocation.h"
#include "support/judge.h"

namespace {

using plx::digest::des::crypt_buffer;
using plx::digest::des::Mode;
using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::judge_3des;
using plx_test::random_bytes;
using plx_test::unhex;

// A schedule of each kind for the same keys.
struct Keys {
  explicit Keys(const std::string& key) {
    const uint8_t* k = bytes_of(key);
    EXPECT_EQ(0u, PLX_des_setKey(&single, k));
    EXPECT_EQ(0u, PLX_3des_set3keys(&triple, k, k + 8, k + 16));
  }
  DesContext single;
  Des3Context triple;
};

std::string padded(std::string bytes) {
  const size_t missing = 8 - bytes.size() % 8;
  bytes.append(missing, missing == 8 ? '\0' : static_cast<char>(missing));
  return bytes;
}

// One run of the driver from and to exactly as many bytes as are its business.
std::string run(const void* context, const std::string& bytes, Mode mode) {
  static plx_test::PageEnd in, out;
  const size_t out_size = (bytes.size() / 8 + 1) * 8;
  crypt_buffer(context, in.copy(bytes), out.bytes(out_size), static_cast<int>(bytes.size()), mode);
  return as_bytes(out.bytes(out_size), out_size);
}

TEST(Des, PublishedVectors) {
  struct Row {
    const char* key;
    const char* plain;
    const char* cipher;
  };
  const Row rows[] = {
      {"0123456789abcdef", "4e6f772069732074", "3fa40e8a984d4815"},  // FIPS 81, ECB
      {"0123456789abcdef", "68652074696d6520", "6a271787ab8883f9"},
      {"0123456789abcdef", "666f7220616c6c20", "893d51ec4b563b53"},
      {"0101010101010101", "8000000000000000", "95f8a5e5dd31d900"},  // SP 800-20: A.1, A.2
      {"0101010101010101", "0000000000000001", "166b40b44aba4bd6"},
      {"8001010101010101", "0000000000000000", "95a8d72813daa94d"},
      {"1046913489980131", "0000000000000000", "88d55e54f54c97b4"},  // A.3
      {"7ca110454a1a6e57", "01a1d6d039776742", "690f5b0d9a26939b"},  // A.4
      {"0131d9619dc1376e", "5cd54ca83def57da", "7a389d10354bd271"},
      {"37d06bb516cb7546", "164d5e404f275232", "0a2aeeae3ff4ab77"},
      {"0113b970fd34f2ce", "059b5e0851cf143a", "86a560f10ec6d85b"},
  };
  for (const Row& row : rows) {
    const std::string key = unhex(row.key), plain = unhex(row.plain), cipher = unhex(row.cipher);
    const Keys keys(key + key + key);
    EXPECT_EQ(row.cipher, hex(run(&keys.single, plain, Mode::kDesEncrypt).substr(0, 8)));
    EXPECT_EQ(row.cipher, hex(run(&keys.triple, plain, Mode::kTripleEncrypt).substr(0, 8)));
    EXPECT_EQ(row.plain, hex(run(&keys.single, cipher, Mode::kDesDecrypt).substr(0, 8)));
    EXPECT_EQ(row.plain, hex(run(&keys.triple, cipher, Mode::kTripleDecrypt).substr(0, 8)));
  }
}

// The modes of a single key, and the exported calls in place: the copy is made first.
// fuzz/fuzz_des.cc has the others.
TEST(Des, EveryLengthAgreesWithLibcrypto) {
  for (int size = 0; size <= 300; ++size) {
    const std::string key = random_bytes(8), bytes = random_bytes(static_cast<size_t>(size));
    const Keys keys(key + key + key);
    const std::string blocks = padded(bytes);
    const std::string cipher = hex(judge_3des(true, key + key + key, blocks));
    const std::string plain = hex(judge_3des(false, key + key + key, blocks));
    ASSERT_EQ(cipher, hex(run(&keys.single, bytes, Mode::kDesEncrypt)));
    ASSERT_EQ(plain, hex(run(&keys.single, bytes, Mode::kDesDecrypt)));
    std::string image = bytes + std::string(9, '.');
    PLX_3des_encrypt(&keys.triple, bytes_of(image), bytes_of(image), size);
    ASSERT_EQ(cipher, hex(image.substr(0, blocks.size())));
    ASSERT_EQ('.', image[blocks.size()]);
    image = bytes + std::string(17, '.');
    PLX_3des_decrypt(&keys.triple, bytes_of(image), bytes_of(image) + 3, size);
    ASSERT_EQ(plain, hex(image.substr(3, blocks.size())));
  }
}

TEST(Des, ContextsHoldTheSchedulesEndToEnd) {
  const std::string key = random_bytes(24);
  const uint8_t* k = bytes_of(key);
  DesContext part[3];
  for (int i = 0; i < 3; ++i) PLX_des_setKey(&part[i], k + 8 * i);
  for (int i = 0; i < 32; ++i) {
    EXPECT_EQ(part[0].encSubkeys[i], part[0].decSubkeys[30 - i + i % 2 * 2]);
  }
  const auto joined = [](const uint32_t* a, const uint32_t* b, const uint32_t* c) {
    return hex(as_bytes(a, 128) + as_bytes(b, 128) + as_bytes(c, 128));
  };
  Des3Context three, two, again;
  PLX_3des_set3keys(&three, k, k + 8, k + 16);
  EXPECT_EQ(joined(part[0].encSubkeys, part[1].decSubkeys, part[2].encSubkeys),
            hex(as_bytes(three.encSubkeys, 384)));
  EXPECT_EQ(joined(part[2].decSubkeys, part[1].encSubkeys, part[0].decSubkeys),
            hex(as_bytes(three.decSubkeys, 384)));
  PLX_3des_set2keys(&two, k, k + 8);
  PLX_3des_set3keys(&again, k, k + 8, k);
  EXPECT_EQ(0, memcmp(&two, &again, sizeof two));
  std::string other_parity = key;
  for (char& byte : other_parity) byte = static_cast<char>(byte ^ 1);
  PLX_3des_set2keys(&again, bytes_of(other_parity), k + 8);
  EXPECT_EQ(0, memcmp(&two, &again, sizeof two));
}

TEST(Des, RefusalsTouchNothing) {
  const Keys keys(random_bytes(24));
  std::string out(64, '.');
  uint8_t* at = reinterpret_cast<uint8_t*>(&out[0]);
  for (int len : {-1, -7, -8, INT_MIN, INT_MAX, INT_MAX - 7}) {  // the last two cannot be copied
    PLX_3des_encrypt(&keys.triple, at, at, len);
    PLX_3des_decrypt(&keys.triple, at, at, len);
  }
  PLX_3des_encrypt(nullptr, at, at, 8);
  PLX_3des_encrypt(&keys.triple, nullptr, at, 8);
  PLX_3des_decrypt(&keys.triple, at, nullptr, 8);
  for (int mode : {-1, 4}) crypt_buffer(&keys.triple, at, at, 8, static_cast<Mode>(mode));
  {
    plx_test::AllocationFault fail(1);
    PLX_3des_encrypt(&keys.triple, at, at, 8);
    EXPECT_TRUE(fail.hit());
  }
  EXPECT_EQ(std::string(64, '.'), out);
  Des3Context ctx;
  memset(&ctx, '.', sizeof ctx);
  EXPECT_EQ(0u, PLX_3des_set2keys(&ctx, at, nullptr));
  EXPECT_EQ(0u, PLX_3des_set3keys(nullptr, at, at, at));
  EXPECT_EQ(0u, PLX_des_setKey(nullptr, at));
  EXPECT_EQ(std::string(sizeof ctx, '.'), as_bytes(&ctx, sizeof ctx));
  // A length of 0 reads nothing and is no refusal; nothing leaks.
  plx_test::AllocationFault count;
  PLX_3des_encrypt(&keys.triple, nullptr, at, 0);
  EXPECT_EQ(hex(run(&keys.triple, "", Mode::kTripleEncrypt)), hex(out.substr(0, 8)));
  EXPECT_EQ(0, count.live_blocks());
}

}  // namespace
