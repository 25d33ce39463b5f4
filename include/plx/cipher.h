/* AES: by record, by JSON request, as Base64 texts with an IV of their own, and the class CCipher
 * with the primitives beneath them.
 *
 * The block cipher is OpenSSL's. Shared rules:
 *  - Nothing here authenticates: who can change a cipher text can change the plain text. Where a
 *    wrong key goes unnoticed, the function says so.
 *  - Causes are seldom told apart, nothing is logged, and failed steps leave no entry on OpenSSL's
 *    error queue; entries that the host has there stay.
 *  - Temporary copies of keys and plain texts are wiped before they are released. What the caller
 *    passes in, and g_WorkKey (plx/key_store.h), stays as it is.
 *  - All functions may run on several threads at once; the two objects that are filled by their
 *    first use say what holds for them.
 */
#ifndef PLX_CIPHER_H
#define PLX_CIPHER_H

#include <plx/export.h>
#include <stdint.h>

/* OpenSSL's EVP_CIPHER_CTX, so that this header needs none of OpenSSL's. */
struct evp_cipher_ctx_st;

/* ---- AES by record -------------------------------------------------------------------------- */

/* tagAes says which AES to run, with which key and on which text. Zero the whole record before
 * filling it. It owns nothing. */
typedef struct tagAes {
  uint32_t iMode;   /* 0: ECB. 1: CBC. */
  int32_t iKeyBits; /* 128, 192 or 256 */
  int32_t iPadding; /* 1: PKCS#5 padding. 2: none. Anything else, 0 included: PKCS#5. */
  char szKey[32];   /* the first iKeyBits / 8 bytes are the key */
  char szIV[32];    /* the first 16 bytes are the IV; ECB ignores them */
  char* pszText;    /* the text to encrypt; on decryption the measure of the output, see there */
} tagAes;

/* PLX_AesEncryInit_ex and PLX_AesDecryInit_ex prepare `ctx`, a context of the caller, for one
 * encryption or decryption: cipher, key and IV from `aes`, any `iMode` but 0 being CBC. Padding is
 * left as it is in `ctx`.
 * Return 1; 0 when OpenSSL refuses; -1, with `ctx` untouched, when a pointer is null or `iKeyBits`
 * is none of the three. */
PLX_API int PLX_AesEncryInit_ex(const tagAes* aes, struct evp_cipher_ctx_st* ctx)
    PLX_TYPED("_Z19PLX_AesEncryInit_exPK6tagAesP17evp_cipher_ctx_st");
PLX_API int PLX_AesDecryInit_ex(const tagAes* aes, struct evp_cipher_ctx_st* ctx)
    PLX_TYPED("_Z19PLX_AesDecryInit_exPK6tagAesP17evp_cipher_ctx_st");

/* PLX_AesEncryByMode encrypts the text `aes->pszText`, without its terminator, into `out`, which
 * holds `outSize` bytes. Returns the number of bytes written, binary and not terminated; with
 * padding off an empty text gives 0. Fails, in this order, with
 *   -1  `aes`, `out` or `aes->pszText` is null
 *   -1  `outSize` is below the text's length rounded down to a multiple of 16, plus 16; this holds
 *       with padding off as well
 *   -1  `iMode` is above 1
 *   -1  `iKeyBits` is none of the three, or no context can be had
 *    0  OpenSSL refuses cipher or key
 *   -1  a step of the cipher fails: with padding off, a length that is no multiple of 16
 * Treat any result below 1 as a failure. `out` is written by steps of the cipher alone, which may
 * leave a part of the output behind when a later one fails. */
PLX_API int PLX_AesEncryByMode(const tagAes* aes, char* out, int outSize)
    PLX_TYPED("_Z18PLX_AesEncryByModePK6tagAesPci");

/* PLX_AesDecryByMode decrypts the `inLen` bytes at `in` into `out`, which holds `outSize` bytes.
 * Returns the number of bytes written, not terminated, which is 0 for an empty plain text. Fails as
 * PLX_AesEncryByMode does, with these differences:
 *  - `outSize` is held against the length of `aes->pszText`, as there, and not against `inLen`.
 *    Set that text to one of at least `inLen` characters (the cipher text's hexadecimal form will
 *    do) and the output stays within `outSize`; with a shorter one it does not.
 *  - any `iMode` but 0 runs CBC.
 *  - a negative `inLen`, or bytes behind a null `in`, fail with -1, as does a padding that is not
 *    right: with a wrong key this is likely, but not certain. */
PLX_API int PLX_AesDecryByMode(const tagAes* aes, char* in, int inLen, char* out, int outSize)
    PLX_TYPED("_Z18PLX_AesDecryByModePK6tagAesPciS2_i");

#endif
