// What the tests ask of OpenSSL 3 and Android's libcrypto, a fork of an older series, has not.
// Included in front of every source when the tests are built against that one.
#ifndef PLX_TESTS_SUPPORT_ANDROID_LIBCRYPTO_H
#define PLX_TESTS_SUPPORT_ANDROID_LIBCRYPTO_H

#include <openssl/cipher.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#define ERR_raise(library, reason) ERR_put_error(library, 0, reason, __FILE__, __LINE__)

// It has no providers to take away; the tests that do so are among the known differences.
inline int EVP_set_default_properties(void*, const char*) { return 0; }

#define EVP_CIPHER_CTX_get0_cipher EVP_CIPHER_CTX_cipher

#endif
