#include <gtest/gtest.h>
#include <plx/digest.h>
#include <string.h>

#include <string>

#include "digest/sha256_packed.h"
#include "digest/sha256_staged.h"
#include "support/judge.h"

namespace {

using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::judge_digest;
using plx_test::judge_hmac;
using plx_test::random_bytes;
using plx_test::unhex;

// Every way to hash one message, all of it or cut in two at `cut`. fuzz/fuzz_sha256.cc cuts others
// anywhere.
struct Entry {
  const char* name;
  void (*hash)(uint8_t* digest, const uint8_t* data, unsigned size, unsigned cut);
};
const Entry kEntries[] = {
    {"Sha256_",
     [](uint8_t* digest, const uint8_t* data, unsigned size, unsigned cut) {
       Sha256Context ctx;
       Sha256_Init(&ctx);
       Sha256_Update(&ctx, data, cut);
       Sha256Context copy = ctx;
       Sha256_Update(&ctx, data + cut, size - cut);
       Sha256_Final(&ctx, digest);
       Sha256_Update(&copy, data + cut, size - cut);
       Sha256_Final(&copy, digest);
       EXPECT_EQ(0, memcmp(&ctx, &copy, sizeof ctx));
       // No second Init: the context is ready for the next message.
       Sha256_Update(&ctx, data, size);
       Sha256_Final(&ctx, digest);
     }},
    {"SHA256", [](uint8_t* digest, const uint8_t* data, unsigned size,
                  unsigned) { EXPECT_EQ(digest, SHA256(data, size, digest)); }},
    {"SHA256 into the static buffer",
     [](uint8_t* digest, const uint8_t* data, unsigned size, unsigned) {
       memcpy(digest, SHA256(data, size, nullptr), 32);
     }},
    {"sha256_",
     [](uint8_t* digest, const uint8_t* data, unsigned size, unsigned cut) {
       Sha256Ctx ctx;
       sha256_initialize(&ctx);
       sha256_update(&ctx, data, cut);
       Sha256Ctx copy = ctx;
       sha256_update(&ctx, data + cut, size - cut);
       sha256_finalize(&ctx, nullptr, 0);
       sha256_finalize(&copy, data + cut, size - cut);
       EXPECT_EQ(hex(as_bytes(ctx.hash, 32)), hex(as_bytes(copy.hash, 32)));
       memcpy(digest, copy.hash, 32);
     }},
    {"sha256_get", [](uint8_t* digest, const uint8_t* data, unsigned size,
                      unsigned) { sha256_get(digest, data, size); }},
};

TEST(Sha256, PublishedVectors) {
  struct Row {
    std::string message;
    const char* digest;
  };
  const Row rows[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmn"
       "o"
       "pqrsmnopqrstnopqrstu",
       "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
      {std::string(1000000, 'a'),
       "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
  for (const Row& row : rows) {
    const auto size = static_cast<unsigned>(row.message.size());
    for (const Entry& entry : kEntries) {
      uint8_t digest[32];
      entry.hash(digest, bytes_of(row.message), size, size / 2);
      EXPECT_EQ(row.digest, hex(as_bytes(digest, 32))) << entry.name << " " << size;
    }
  }
}

// Naive models of both records: every byte passes through the block, one at a time.
struct NaiveStaged : Sha256Context {
  void put(uint8_t byte) {
    buffer[count++ % 64] = byte;
    if (count % 64 == 0) plx::digest::staged::blocks_portable(state, buffer, 1);
  }
  void pad() {
    const uint64_t bits = count * 8;
    put(0x80);
    while (count % 64 != 56) put(0);
    for (int shift = 56; shift >= 0; shift -= 8) put(static_cast<uint8_t>(bits >> shift));
  }
};

struct NaivePacked : Sha256Ctx {
  void put(uint8_t byte) {
    const unsigned at = (bitCount[6] * 256u + bitCount[7]) / 8 % 64;
    block[at / 4] |= uint32_t{byte} << (24 - 8 * (at % 4));
    for (int i = 7, carry = 8; i >= 0; --i, carry >>= 8) {
      carry += bitCount[i];
      bitCount[i] = static_cast<uint8_t>(carry);
    }
    if (at != 63) return;
    uint8_t bytes[64];
    for (int i = 0; i < 64; ++i)
      bytes[i] = static_cast<uint8_t>(block[i / 4] >> (24 - 8 * (i % 4)));
    plx::digest::packed::blocks_portable(state, bytes, 1);
    memset(block, 0, sizeof block);
  }
  void pad() {
    const std::string length = as_bytes(bitCount, 8);
    put(0x80);
    while ((bitCount[6] * 256u + bitCount[7]) / 8 % 64 != 56) put(0);
    for (char byte : length) put(static_cast<uint8_t>(byte));
  }
};

template <typename Record>
std::string image(const Record& record) {
  return hex(as_bytes(&record, sizeof record));
}

TEST(Sha256, RecordsBetweenCallsAreThoseOfByteWiseHashing) {
  const std::string bytes = random_bytes(600);
  const unsigned pieces[] = {0, 1, 3, 60, 63, 64, 65, 127, 128, 190};
  for (unsigned first : pieces) {
    for (unsigned second : pieces) {
      NaiveStaged naive_staged;
      memset(static_cast<Sha256Context*>(&naive_staged), 0xA5, sizeof(Sha256Context));
      Sha256Context staged = naive_staged;
      Sha256_Init(&staged);
      Sha256_Init(&naive_staged);
      NaivePacked naive_packed;
      memset(static_cast<Sha256Ctx*>(&naive_packed), 0xA5, sizeof(Sha256Ctx));
      Sha256Ctx packed = naive_packed;
      sha256_initialize(&packed);
      sha256_initialize(&naive_packed);
      // A count about to carry into its upper half, and one about to wrap.
      staged.count = naive_staged.count = first % 2 ? 0xFFFFFFC0u : 0xFFFFFFFFFFFFFFC0u;
      packed.bitCount[5] = naive_packed.bitCount[5] = 0xFF;
      packed.bitCount[6] = naive_packed.bitCount[6] = 0xFE;

      const uint8_t* data = bytes_of(bytes);
      for (unsigned size : {first, second}) {
        Sha256_Update(&staged, data, size);
        sha256_update(&packed, data, size);
        for (unsigned i = 0; i < size; ++i) naive_staged.put(*data), naive_packed.put(*data++);
        ASSERT_EQ(image<Sha256Context>(naive_staged), image(staged)) << first << " " << second;
        ASSERT_EQ(image<Sha256Ctx>(naive_packed), image(packed)) << first << " " << second;
      }
      uint8_t digest[32];
      Sha256_Final(&staged, digest);
      naive_staged.pad();
      EXPECT_EQ(image(naive_staged.buffer), image(staged.buffer));
      sha256_finalize(&packed, nullptr, 0);
      naive_packed.pad();
      EXPECT_EQ(image(naive_packed.state), image(packed.state));
      EXPECT_EQ(image(naive_packed.bitCount), image(packed.bitCount));
      EXPECT_EQ(image(naive_packed.block), image(packed.block));
    }
  }
}

TEST(HmacSha256, PublishedVectors) {  // RFC 4231
  const std::string block_key(131, '\xaa');
  struct Row {
    std::string key, data;
    const char* hmac;  // case 5 is truncated
  };
  const Row rows[] = {
      {std::string(20, '\x0b'), "Hi There",
       "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7"},
      {"Jefe", "what do ya want for nothing?",
       "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
      {std::string(20, '\xaa'), std::string(50, '\xdd'),
       "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
      {unhex("0102030405060708090a0b0c0d0e0f10111213141516171819"), std::string(50, '\xcd'),
       "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b"},
      {std::string(20, '\x0c'), "Test With Truncation", "a3b6167473100ee06e0c796c2955552b"},
      {block_key, "Test Using Larger Than Block-Size Key - Hash Key First",
       "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"},
      {block_key,
       "This is a test using a larger than block-size key and a larger than block-size data. The "
       "key needs to be hashed before being used by the HMAC algorithm.",
       "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2"},
  };
  for (const Row& row : rows) {
    uint8_t out[32];
    EXPECT_EQ(32, hmac_sha256_get(out, bytes_of(row.data), static_cast<unsigned>(row.data.size()),
                                  bytes_of(row.key), static_cast<int>(row.key.size())));
    EXPECT_EQ(row.hmac, hex(as_bytes(out, strlen(row.hmac) / 2)));
  }
}

TEST(HmacSha256, EveryKeyLengthAndState) {
  const std::string data = random_bytes(150);
  const unsigned size = static_cast<unsigned>(data.size());
  for (int key_size = -2; key_size <= 140; ++key_size) {
    const std::string key = random_bytes(key_size > 0 ? static_cast<size_t>(key_size) : 0);
    std::string block = key_size > 64 ? judge_digest("SHA256", key) : key;
    block.resize(64);
    const auto masked = [&](int mask) {
      std::string bytes = block;
      for (char& byte : bytes) byte = static_cast<char>(byte ^ mask);
      return hex(bytes);
    };
    HmacSha256Ctx ctx;
    hmac_sha256_initialize(&ctx, key_size > 0 ? bytes_of(key) : nullptr, key_size);
    EXPECT_EQ(masked(0x36), image(ctx.keyBlock)) << key_size;
    const std::string expected = hex(judge_hmac("SHA256", key, data));
    hmac_sha256_update(&ctx, bytes_of(data), 25);
    hmac_sha256_finalize(&ctx, bytes_of(data) + 25, size - 25);
    EXPECT_EQ(expected, image(ctx.digest)) << key_size;
    EXPECT_EQ(masked(0x5C), image(ctx.keyBlock)) << key_size;
    uint8_t out[32];
    hmac_sha256_get(out, bytes_of(data), size, bytes_of(key), key_size);
    EXPECT_EQ(expected, image(out)) << key_size;
  }
}

}  // namespace
