// OpenSSL's EVP interface as this family uses it. The ciphers are named anew in each call, as
// nothing is kept between calls.
#ifndef PLX_SRC_CIPHER_EVP_H
#define PLX_SRC_CIPHER_EVP_H

#include <openssl/err.h>
#include <openssl/evp.h>

#include "internal/owned.h"

namespace plx::cipher {

// Steps that fail while one of these lives leave no entry on the thread's error queue; what the
// host has there stays.
class ErrorMark {
 public:
  ErrorMark() { ERR_set_mark(); }
  ~ErrorMark() { ERR_pop_to_mark(); }
  ErrorMark(const ErrorMark&) = delete;
  ErrorMark& operator=(const ErrorMark&) = delete;
};

using CipherContext = Owned<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free>;

constexpr int kBlockSize = 16;
constexpr int kIvSize = 16;

struct Encryption {
  static constexpr auto init = EVP_EncryptInit_ex;
  static constexpr auto update = EVP_EncryptUpdate;
  static constexpr auto final = EVP_EncryptFinal_ex;
};

struct Decryption {
  static constexpr auto init = EVP_DecryptInit_ex;
  static constexpr auto update = EVP_DecryptUpdate;
  static constexpr auto final = EVP_DecryptFinal_ex;
};

// EVP's update over `in_len` bytes. A negative length, which EVP may crash on, and bytes behind a
// null pointer are an update that fails with nothing written. `*out_len` is set in every case.
template <typename Direction>
int update(EVP_CIPHER_CTX* ctx, unsigned char* out, int* out_len, const unsigned char* in,
           int in_len) {
  *out_len = 0;
  if (in_len < 0 || (in == nullptr && in_len != 0)) return 0;
  return Direction::update(ctx, out, out_len, in, in_len);
}

// EVP's final step. `*out_len` is set in every case.
template <typename Direction>
int finish(EVP_CIPHER_CTX* ctx, unsigned char* out, int* out_len) {
  *out_len = 0;
  return Direction::final(ctx, out, out_len);
}

}  // namespace plx::cipher

#endif
