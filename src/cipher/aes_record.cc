// One whole AES run, described by a record.
#include "cipher/aes_record.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "cipher/evp.h"

static_assert(offsetof(tagAes, iMode) == 0 && sizeof(tagAes::iMode) == 4);
static_assert(offsetof(tagAes, iKeyBits) == 4 && offsetof(tagAes, iPadding) == 8);
static_assert(offsetof(tagAes, szKey) == 12 && offsetof(tagAes, szIV) == 44);
static_assert(offsetof(tagAes, pszText) == (sizeof(void*) == 8 ? 80 : 76));
static_assert(sizeof(tagAes) == (sizeof(void*) == 8 ? 88 : 80));

namespace plx::cipher {
namespace {

constexpr uint32_t kEcb = 0;
constexpr uint32_t kCbc = 1;
constexpr int32_t kPaddingOff = 2;

const unsigned char* bytes_of(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

// Null for a key size that AES does not have.
const EVP_CIPHER* select_cipher(const tagAes& aes) {
  const bool ecb = aes.iMode == kEcb;
  switch (aes.iKeyBits) {
    case 192:
      return ecb ? EVP_aes_192_ecb() : EVP_aes_192_cbc();
    case 256:
      return ecb ? EVP_aes_256_ecb() : EVP_aes_256_cbc();
    case 128:
      return ecb ? EVP_aes_128_ecb() : EVP_aes_128_cbc();
    default:
      return nullptr;
  }
}

template <typename Direction>
int init_context(const tagAes* aes, EVP_CIPHER_CTX* ctx) {
  if (aes == nullptr || ctx == nullptr) return -1;
  const EVP_CIPHER* cipher = select_cipher(*aes);
  if (cipher == nullptr) return -1;
  return Direction::init(ctx, cipher, nullptr, bytes_of(aes->szKey), bytes_of(aes->szIV));
}

// The most that padding can make of the text, asked for with padding off as well.
bool fits_output(size_t text_length, int out_size) {
  const uint64_t need = (static_cast<uint64_t>(text_length) & ~uint64_t{15}) + kBlockSize;
  return out_size >= 0 && need <= static_cast<uint64_t>(out_size);
}

template <typename Direction>
int run(const tagAes& aes, const unsigned char* in, int in_len, unsigned char* out) {
  const ErrorMark mark;
  const CipherContext ctx(EVP_CIPHER_CTX_new());
  const int started = init_context<Direction>(&aes, ctx.get());
  if (started <= 0) return started;
  // A new context pads, which is what every other value asks for.
  if (aes.iPadding == kPaddingOff) EVP_CIPHER_CTX_set_padding(ctx.get(), 0);
  int updated, finished;
  if (update<Direction>(ctx.get(), out, &updated, in, in_len) <= 0) return -1;
  if (finish<Direction>(ctx.get(), out + updated, &finished) <= 0) return -1;
  return updated + finished;
}

}  // namespace

int encrypt_record(const tagAes* aes, unsigned char* out, int out_size) {
  if (aes == nullptr || out == nullptr) return -1;
  if (aes->pszText == nullptr) return -1;
  const size_t length = strlen(aes->pszText);
  if (!fits_output(length, out_size)) return -1;
  if (aes->iMode > kCbc) return -1;
  return run<Encryption>(*aes, bytes_of(aes->pszText), static_cast<int>(length), out);
}

int decrypt_record(const tagAes* aes, const unsigned char* in, int in_len, unsigned char* out,
                   int out_size) {
  if (aes == nullptr || out == nullptr) return -1;
  if (aes->pszText == nullptr) return -1;
  // Callers depend on the text being measured here rather than the input, and on modes above 1
  // being CBC.
  if (!fits_output(strlen(aes->pszText), out_size)) return -1;
  return run<Decryption>(*aes, in, in_len, out);
}

}  // namespace plx::cipher

using namespace plx::cipher;

int PLX_AesEncryInit_ex(const tagAes* aes, EVP_CIPHER_CTX* ctx) {
  const ErrorMark mark;
  return init_context<Encryption>(aes, ctx);
}

int PLX_AesDecryInit_ex(const tagAes* aes, EVP_CIPHER_CTX* ctx) {
  const ErrorMark mark;
  return init_context<Decryption>(aes, ctx);
}

int PLX_AesEncryByMode(const tagAes* aes, char* out, int outSize) {
  return encrypt_record(aes, reinterpret_cast<unsigned char*>(out), outSize);
}

int PLX_AesDecryByMode(const tagAes* aes, char* in, int inLen, char* out, int outSize) {
  return decrypt_record(aes, bytes_of(in), inLen, reinterpret_cast<unsigned char*>(out), outSize);
}
