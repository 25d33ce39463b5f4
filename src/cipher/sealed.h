// Sealed blobs: 16 bytes of IV, then AES-CBC cipher text with PKCS#5 padding.
#ifndef PLX_SRC_CIPHER_SEALED_H
#define PLX_SRC_CIPHER_SEALED_H

namespace plx::cipher {

constexpr int kSealedWithAes128 = 0;
constexpr int kSealedWithAes256 = 1;

// Contract of CCipher::EncryptData in plx/cipher.h, `*out_len` being the capacity on entry.
bool seal(const unsigned char* in, int in_len, unsigned char* out, int* out_len,
          const unsigned char* key, int type);

enum class Opening {
  kRefused,
  kDoubtful,  // what could be decrypted was, but its end is no padding: a wrong key, or damage
  kOpened,
};

// Decrypts a blob into `out` and sets `*out_len`, unless refused. `*out_len` must be positive on
// entry, but the output, of fewer than `in_len` bytes, is not held to it.
Opening open_sealed(const unsigned char* in, int in_len, unsigned char* out, int* out_len,
                    const unsigned char* key, int type);

}  // namespace plx::cipher

#endif
