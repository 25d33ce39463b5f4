// What CCipher offers, as the rest of the family calls it. Base64 stands in evp_base64.h, sealed
// blobs in sealed.h.
#ifndef PLX_SRC_CIPHER_CCIPHER_H
#define PLX_SRC_CIPHER_CCIPHER_H

namespace plx::cipher {

enum class Derivation {
  kRefused,  // a bad argument
  kFailed,   // libcrypto failed, and the output is zero
  kDone,
};

// Contract of CCipher::deriveKey in plx/cipher.h, save that a failure shows.
Derivation derive_key(const unsigned char* pass, int pass_len, const unsigned char* salt,
                      int salt_len, int iterations, int key_len, unsigned char* out);

}  // namespace plx::cipher

#endif
