// Triple DES over any buffer: libcrypto agrees, decryption undoes encryption, and every kernel
// agrees with the tables. The input is a choice of keys, how often the rest is repeated, three keys
// and the data.
#include <plx/digest.h>
#include <stdint.h>
#include <string.h>

#include <string>

#include "digest/arch/kernels.h"
#include "digest/des.h"
#include "support/judge.h"

namespace {

using plx_test::as_bytes;
using plx_test::bytes_of;

void check(bool holds) {
  if (!holds) __builtin_trap();
}

std::string crypt(const Des3Context& ctx, bool encrypt, const std::string& bytes) {
  std::string out((bytes.size() / 8 + 1) * 8, '\0');
  (encrypt ? PLX_3des_encrypt : PLX_3des_decrypt)(
      &ctx, bytes_of(bytes), reinterpret_cast<uint8_t*>(&out[0]), static_cast<int>(bytes.size()));
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
  if (size < 26) return 0;
  const bool two_keys = input[0] % 2 != 0;
  std::string key = as_bytes(input + 2, 24), data;
  if (two_keys) key.replace(16, 8, key, 0, 8);
  for (int i = 0; i <= input[1] % 8; ++i) data += as_bytes(input + 26, size - 26);

  const uint8_t* k = bytes_of(key);
  Des3Context ctx;
  if (two_keys) {
    PLX_3des_set2keys(&ctx, k, k + 8);
  } else {
    PLX_3des_set3keys(&ctx, k, k + 8, k + 16);
  }
  std::string padded = data;
  const size_t missing = 8 - data.size() % 8;
  padded.append(missing, missing == 8 ? '\0' : static_cast<char>(missing));
  const std::string cipher = crypt(ctx, true, data);
  check(cipher == plx_test::judge_3des(true, key, padded));
  check(crypt(ctx, false, data) == plx_test::judge_3des(false, key, padded));
  check(crypt(ctx, false, cipher).substr(0, padded.size()) == padded);

  for (const auto& kernel : plx::digest::kDesKernels) {
    if (!kernel.supported()) continue;
    std::string out(padded.size(), '\0');
    kernel.blocks(ctx.encSubkeys, 3, reinterpret_cast<uint8_t*>(&out[0]), bytes_of(padded),
                  padded.size() / 8);
    check(out == cipher);
  }
  return 0;
}
