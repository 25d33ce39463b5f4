// Base64 by libcrypto, as CCipher offers it: into fresh blocks of array-new.
#ifndef PLX_SRC_CIPHER_EVP_BASE64_H
#define PLX_SRC_CIPHER_EVP_BASE64_H

#include <stddef.h>

#include "cipher/secret_array.h"

namespace plx::cipher {

// Contracts of CCipher::Base64 and CCipher::UnBase64 in plx/cipher.h.
char* encode_base64(const unsigned char* data, int len);
unsigned char* decode_base64(char* text, int len, int* out_len);

// decode_base64 into a block that wipes itself.
SecretArray decode_secret(char* text, int len, int* out_len);

}  // namespace plx::cipher

#endif
