// AES by record as the JSON requests run it. Contracts as in plx/cipher.h.
#ifndef PLX_SRC_CIPHER_AES_RECORD_H
#define PLX_SRC_CIPHER_AES_RECORD_H

#include <plx/cipher.h>

namespace plx::cipher {

int encrypt_record(const tagAes* aes, unsigned char* out, int out_size);
int decrypt_record(const tagAes* aes, const unsigned char* in, int in_len, unsigned char* out,
                   int out_size);

}  // namespace plx::cipher

#endif
