#include "cipher/sealed.h"

#include <limits.h>
#include <openssl/rand.h>
#include <stdint.h>

#include "cipher/evp.h"
#include "securec/memory.h"

namespace plx::cipher {
namespace {

// What EVP's update writes of `in_len` bytes: whole blocks.
int whole_blocks(int in_len) { return in_len > 0 ? in_len / kBlockSize * kBlockSize : 0; }

}  // namespace

bool seal(const unsigned char* in, int in_len, unsigned char* out, int* out_len,
          const unsigned char* key, int type) {
  if (in == nullptr || out == nullptr || *out_len <= 0 || key == nullptr) return false;
  const ErrorMark mark;
  unsigned char iv[kIvSize];
  if (RAND_bytes(iv, kIvSize) < 1) return false;
  const CipherContext ctx(EVP_CIPHER_CTX_new());
  if (ctx == nullptr) return false;
  // The room for the last block is the caller's duty: it may pass the capacity, and callers size
  // their buffers for it.
  const int64_t updated_size = int64_t{kIvSize} + whole_blocks(in_len);
  if (updated_size >= *out_len || updated_size > INT_MAX - kBlockSize) {
    securec::fill_memory(out, static_cast<size_t>(*out_len), 0, static_cast<size_t>(*out_len));
    return false;
  }
  const EVP_CIPHER* cipher = type == kSealedWithAes256 ? EVP_aes_256_cbc() : EVP_aes_128_cbc();
  const bool started = EVP_EncryptInit_ex(ctx.get(), cipher, nullptr, key, iv) > 0;
  securec::move_memory(out, static_cast<size_t>(*out_len), iv, kIvSize);
  // Callers depend on a step that fails with 0 being passed over: it has written nothing. With a
  // cipher and no key, as a start without memory leaves it, the next steps would crash.
  int updated = 0, finished = 0;
  if (started) {
    if (update<Encryption>(ctx.get(), out + kIvSize, &updated, in, in_len) < 0) return false;
    if (finish<Encryption>(ctx.get(), out + kIvSize + updated, &finished) < 0) return false;
  }
  *out_len = kIvSize + updated + finished;
  return true;
}

Opening open_sealed(const unsigned char* in, int in_len, unsigned char* out, int* out_len,
                    const unsigned char* key, int type) {
  if (in == nullptr || out == nullptr || *out_len < 1 || key == nullptr) return Opening::kRefused;
  const ErrorMark mark;
  const CipherContext ctx(EVP_CIPHER_CTX_new());
  if (ctx == nullptr) return Opening::kRefused;
  *out_len = 0;
  if (in_len < kIvSize) return Opening::kDoubtful;
  if (type != kSealedWithAes128 && type != kSealedWithAes256) return Opening::kDoubtful;
  const EVP_CIPHER* cipher = type == kSealedWithAes256 ? EVP_aes_256_cbc() : EVP_aes_128_cbc();
  if (EVP_DecryptInit_ex(ctx.get(), cipher, nullptr, key, in) <= 0) return Opening::kDoubtful;
  int updated, finished;
  if (update<Decryption>(ctx.get(), out, &updated, in + kIvSize, in_len - kIvSize) < 0) {
    return Opening::kRefused;
  }
  const int final = finish<Decryption>(ctx.get(), out + updated, &finished);
  *out_len = updated + finished;
  if (final < 0) return Opening::kRefused;
  return final > 0 ? Opening::kOpened : Opening::kDoubtful;
}

}  // namespace plx::cipher
