// Both families and libcrypto agree on any message, cut anywhere, with contexts copied between the
// pieces; and so do the HMACs. The input is a key length, a count of pieces, their sizes, the key
// and the message.
#include <plx/digest.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "digest/arch/kernels.h"
#include "support/judge.h"

namespace {

using plx_test::as_bytes;
using plx_test::bytes_of;

void check(bool holds) {
  if (!holds) __builtin_trap();
}

// Takes bytes off the front of the input.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : bytes_(as_bytes(data, size)) {}
  uint8_t byte() { return static_cast<uint8_t>(take(1)[0]); }
  std::string take(size_t size) {
    std::string taken = bytes_.substr(0, size);
    bytes_.erase(0, size);
    taken.resize(size);
    return taken;
  }
  std::string rest() { return take(bytes_.size()); }

 private:
  std::string bytes_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t key_size = input.byte();
  const std::string sizes = input.take(input.byte() % 16), key = input.take(key_size);
  const std::string message = input.rest();

  Sha256Context first;
  Sha256Ctx second;
  HmacSha256Ctx hmac;
  Sha256_Init(&first);
  sha256_initialize(&second);
  hmac_sha256_initialize(&hmac, bytes_of(key), static_cast<int>(key.size()));
  size_t at = 0;
  for (char piece : sizes) {
    const auto length =
        static_cast<unsigned>(std::min<size_t>(static_cast<uint8_t>(piece), message.size() - at));
    Sha256_Update(&first, bytes_of(message) + at, length);
    sha256_update(&second, bytes_of(message) + at, length);
    hmac_sha256_update(&hmac, bytes_of(message) + at, length);
    const Sha256Context first_copy = first;
    const Sha256Ctx second_copy = second;
    const HmacSha256Ctx hmac_copy = hmac;
    memset(&first, 0xA5, sizeof first);
    memset(&second, 0xA5, sizeof second);
    memset(&hmac, 0xA5, sizeof hmac);
    first = first_copy;
    second = second_copy;
    hmac = hmac_copy;
    at += length;
  }
  const auto left = static_cast<unsigned>(message.size() - at);
  const auto all = static_cast<unsigned>(message.size());
  uint8_t digest[32];
  Sha256_Update(&first, bytes_of(message) + at, left);
  Sha256_Final(&first, digest);
  sha256_finalize(&second, bytes_of(message) + at, left);
  hmac_sha256_finalize(&hmac, bytes_of(message) + at, left);

  const std::string expected = plx_test::judge_digest("SHA256", message);
  check(as_bytes(digest, 32) == expected);
  check(as_bytes(second.hash, 32) == expected);
  check(as_bytes(SHA256(bytes_of(message), message.size(), nullptr), 32) == expected);
  sha256_get(digest, bytes_of(message), all);
  check(as_bytes(digest, 32) == expected);
  const std::string expected_hmac = plx_test::judge_hmac("SHA256", key, message);
  check(as_bytes(hmac.digest, 32) == expected_hmac);
  hmac_sha256_get(digest, bytes_of(message), all, bytes_of(key), static_cast<int>(key.size()));
  check(as_bytes(digest, 32) == expected_hmac);

  for (const auto& kernel : plx::digest::kSha256Kernels) {
    uint32_t state[8] = {}, portable[8] = {};
    if (!kernel.supported()) continue;
    kernel.blocks(state, bytes_of(message), message.size() / 64);
    (plx::digest::kSha256Kernels.end() - 1)
        ->blocks(portable, bytes_of(message), message.size() / 64);
    check(memcmp(state, portable, sizeof state) == 0);
  }
  return 0;
}
