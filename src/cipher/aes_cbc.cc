// Texts that carry their own IV: sealed blobs as Base64, under a key of the caller's or one of two
// stored keys.
#include <limits.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <stdint.h>
#include <string.h>

#include "cipher/evp_base64.h"
#include "cipher/key_store.h"
#include "cipher/line_marks.h"
#include "cipher/sealed.h"
#include "cipher/secret_array.h"
#include "securec/memory.h"
#include "securec/string.h"

char g_WorkKey[512] = {};

namespace plx::cipher {
namespace {

constexpr int kRoomBesideText = 33;  // IV, the last block, and one byte
constexpr int kShortestBlob = 16;
constexpr int kWorkKeySize = 512;

using WorkKey = SecretBytes<kWorkKeySize>;

const unsigned char* key_of(const char* work_key) {
  return reinterpret_cast<const unsigned char*>(work_key);
}

int encrypt_by_key(const unsigned char* in, int in_len, char* out, int out_size,
                   const unsigned char* key, int type) {
  if (in == nullptr || out == nullptr || key == nullptr) return -1;
  if (out_size < 16 || in_len < 0 || in_len > INT_MAX - kRoomBesideText) return -1;
  int blob_len = in_len + kRoomBesideText;
  const SecretArray blob = make_secret_array(static_cast<size_t>(blob_len));
  if (blob == nullptr) return -1;
  if (!seal(in, in_len, blob.get(), &blob_len, key, type)) return -1;
  const std::unique_ptr<char[]> text(encode_base64(blob.get(), blob_len));
  if (text == nullptr) return -1;
  // Callers depend on the result being this figure and not the text's length.
  const size_t rounded = (strlen(text.get()) & ~size_t{3}) + 4;
  if (static_cast<size_t>(out_size) <= rounded) return -1;
  securec::copy_string(out, static_cast<size_t>(out_size), text.get(), rounded);
  return static_cast<int>(rounded);
}

// `in` may be scratched where it is malformed.
int decrypt_by_key(char* in, int in_len, char* out, int out_size, const unsigned char* key,
                   int type) {
  if (in == nullptr || out == nullptr) return -1;
  if (in_len < 16 || out_size <= 0 || key == nullptr) return -1;
  int blob_len = 0;
  const SecretArray blob = decode_secret(in, in_len, &blob_len);
  if (blob == nullptr || blob_len < kShortestBlob) return -1;
  int plain_len = blob_len + 1;
  const SecretArray plain = make_secret_array(static_cast<size_t>(plain_len));
  if (plain == nullptr) return -1;
  if (open_sealed(blob.get(), blob_len, plain.get(), &plain_len, key, type) == Opening::kRefused) {
    return -1;
  }
  if (out_size <= plain_len) return -1;
  // Callers depend on the copy ending at the first zero byte while the result counts what follows.
  securec::copy_string(out, static_cast<size_t>(out_size), text_of(plain),
                       static_cast<size_t>(plain_len));
  return plain_len;
}

// The argument tests of the calls with a stored key.
bool can_encrypt(const unsigned char* in, int in_len, const char* out, int out_size) {
  return in != nullptr && out != nullptr && out_size >= 16 && in_len >= 0;
}

bool can_decrypt(const char* in, int in_len, const char* out, int out_size) {
  return in != nullptr && out != nullptr && in_len >= 16 && out_size > 0;
}

int encrypt_by_stored_key(const unsigned char* in, int in_len, char* out, int out_size,
                          const char* work_key) {
  const int result = encrypt_by_key(in, in_len, out, out_size, key_of(work_key), kSealedWithAes128);
  if (result > 0) mark_line_feeds(out, static_cast<int>(strlen(out)));
  return result;
}

int decrypt_by_stored_key(const char* in, int in_len, char* out, int out_size,
                          const char* work_key) {
  const SecretArray copy = make_secret_array(static_cast<size_t>(in_len) + 1);
  if (copy == nullptr) return -1;
  securec::copy_memory(copy.get(), static_cast<size_t>(in_len) + 1, in,
                       static_cast<size_t>(in_len));
  restore_line_feeds(text_of(copy), in_len);
  return decrypt_by_key(text_of(copy), in_len, out, out_size, key_of(work_key), kSealedWithAes128);
}

bool load_key(const char* name, WorkKey* out) {
  return load_work_key(name, out->text(), kWorkKeySize) == KeyFault::kNone;
}

// Fills g_WorkKey at the first use. Two first uses at once write the same bytes, and the first
// byte, which says that the key is there, is written last, so that nobody takes half a key.
bool load_cached_key() {
  if (__atomic_load_n(&g_WorkKey[0], __ATOMIC_ACQUIRE) != 0) return true;
  WorkKey work_key;
  if (!load_key("encrypt_stb_key", &work_key)) return false;
  securec::copy_memory(g_WorkKey + 1, sizeof g_WorkKey - 1, work_key.text() + 1,
                       sizeof g_WorkKey - 2);
  __atomic_store_n(&g_WorkKey[0], work_key.text()[0], __ATOMIC_RELEASE);
  return true;
}

}  // namespace
}  // namespace plx::cipher

using namespace plx::cipher;

extern "C" {

int PLX_aesCbcEncryptByKey(const unsigned char* in, int inLen, char* out, int outSize,
                           const unsigned char* key, AES_CBC_TYPE type) {
  return encrypt_by_key(in, inLen, out, outSize, key, static_cast<int>(type));
}

int PLX_aesCbcDecryptByKey(const char* in, int inLen, char* out, int outSize,
                           const unsigned char* key, AES_CBC_TYPE type) {
  return decrypt_by_key(const_cast<char*>(in), inLen, out, outSize, key, static_cast<int>(type));
}

int PLX_aesCbcEncryptByRandomKey(const unsigned char* in, int inLen, char* out, int outSize) {
  if (!can_encrypt(in, inLen, out, outSize)) return -1;
  WorkKey work_key;
  if (!load_key("epg_profile_key", &work_key)) return -1;
  return encrypt_by_stored_key(in, inLen, out, outSize, work_key.text());
}

int PLX_aesCbcDecryptByRandomKey(const char* in, int inLen, char* out, int outSize) {
  if (!can_decrypt(in, inLen, out, outSize)) return -1;
  WorkKey work_key;
  if (!load_key("epg_profile_key", &work_key)) return -1;
  return decrypt_by_stored_key(in, inLen, out, outSize, work_key.text());
}

int PLX_aesCbcEncrypt(const unsigned char* in, int inLen, char* out, int outSize) {
  if (!can_encrypt(in, inLen, out, outSize)) return -1;
  if (!load_cached_key()) return -1;
  return encrypt_by_stored_key(in, inLen, out, outSize, g_WorkKey);
}

int PLX_aesCbcDecrypt(const char* in, int inLen, char* out, int outSize) {
  if (!can_decrypt(in, inLen, out, outSize)) return -1;
  if (!load_cached_key()) return -1;
  return decrypt_by_stored_key(in, inLen, out, outSize, g_WorkKey);
}

}  // extern "C"
