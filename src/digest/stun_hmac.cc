#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <plx/digest.h>

extern "C" unsigned char* stunHMAC(unsigned char* out, const unsigned char* data, size_t dataLen,
                                   const void* key, int keyLen) {
  // libcrypto crashes on a negative key length, and has a static buffer for a null output.
  if (out == nullptr || keyLen < 0) return nullptr;
  if ((data == nullptr && dataLen != 0) || (key == nullptr && keyLen != 0)) return nullptr;
  unsigned int length = 0;
  ERR_set_mark();
  // An empty key is a key: libcrypto takes a null one for a missing one.
  unsigned char* result =
      HMAC(EVP_sha1(), key != nullptr ? key : "", keyLen, data, dataLen, out, &length);
  ERR_pop_to_mark();
  return result;
}
