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
    PLX_TYPED("_Z19PLX_AesEncryInit_exPK6tagAesP17evp_cipher_ctx_st") PLX_CHECK_RESULT;
PLX_API int PLX_AesDecryInit_ex(const tagAes* aes, struct evp_cipher_ctx_st* ctx)
    PLX_TYPED("_Z19PLX_AesDecryInit_exPK6tagAesP17evp_cipher_ctx_st") PLX_CHECK_RESULT;

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
    PLX_TYPED("_Z18PLX_AesEncryByModePK6tagAesPci") PLX_CHECK_RESULT
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_WRITES(2, 3, out, outSize));

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
    PLX_TYPED("_Z18PLX_AesDecryByModePK6tagAesPciS2_i") PLX_CHECK_RESULT
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_READS(2, 3, in, inLen) PLX_CHECK_WRITES(4, 5, out, outSize));

/* ---- CCipher -------------------------------------------------------------------------------- */

/* AES_CBC_TYPE selects the cipher of a sealed blob. Other values are harmless: sealing takes them
 * for AES_CBC_128, and opening yields nothing. */
#ifdef __cplusplus
enum AES_CBC_TYPE : int {
#else
typedef enum AES_CBC_TYPE {
#endif
  AES_CBC_128 = 0, /* AES-128-CBC, a key of 16 bytes */
  AES_CBC_256 = 1  /* AES-256-CBC, a key of 32 bytes */
#ifdef __cplusplus
};
#else
} AES_CBC_TYPE;
#endif

#ifdef __cplusplus

namespace TRUX {
namespace CIPHER {

/* CCipher gathers the primitives: key derivation, Base64, sealed blobs, random bytes, and an
 * instance with a vector of 16 bytes that is a secret of the product.
 *
 * Results are 1 for success and 0 for failure. The class carries no run-time type information:
 * typeid, dynamic_cast, and deriving from it with type information do not link. The static members
 * may run on several threads at once; the others only read. */
class PLX_API CCipher {
 public:
  /* getInstance returns the one instance, made by the first call and never destroyed, or null when
   * memory is short. First calls on several threads at once all get the same one. */
  static CCipher* getInstance() PLX_CHECK_RESULT;

  /* An instance of the caller's own has the same vector. */
  CCipher();
  virtual ~CCipher();

  /* deriveKey derives `keyLen` bytes into `out`: PBKDF2 (RFC 8018) with HMAC-SHA-256 over the
   * `passLen` bytes at `pass` and the `saltLen` bytes at `salt`. Returns 0, with `out` untouched,
   * when a pointer is null or a number is below 1, and else 1, even if the derivation fails. */
  static int deriveKey(const char* pass, int passLen, const unsigned char* salt, int saltLen,
                       int iterations, int keyLen, unsigned char* out) PLX_CHECK_RESULT;

  /* Base64 returns the `len` bytes at `data` as Base64 text (RFC 4648, section 4), in lines of 64
   * characters: a line feed ends every line, the last one too, and a terminator the text. Release
   * it with deleteArrayPoint_s (plx/key_store.h). Returns null when `data` is null, `len` is below
   * 1, the text would pass 0x7FFFFFFF bytes, or memory is short. */
  static const char* Base64(const unsigned char* data, int len) PLX_CHECK_RESULT;

  /* UnBase64 decodes the `len` characters at `text`, white space between them being skipped, and
   * stores the number of bytes in `*outLen`. Release the result with deleteArrayPoint_s. Returns
   * null, with `*outLen` untouched, when a pointer is null, `len` is below 1, or memory is short.
   *
   * Malformed text is not refused. The result then holds at most the whole groups of 64 characters
   * before the fault; the characters behind them may be decoded into `text` itself, within its
   * `len` characters, and counted in `*outLen` as bytes that are zero in the result. Pass text of
   * unknown origin in memory that can be written, and check what you get. */
  static unsigned char* UnBase64(const char* text, int len, int* outLen) PLX_CHECK_RESULT;

  /* DeriveInitKey derives 16 bytes into `out` from a factor in Base64 and the instance's vector, as
   * deriveKey does with 100000 iterations (the keys of plx/key_store.h take 10000). The factor
   * counts as 16 bytes: longer ones are cut, shorter ones filled with zeros. Malformed text must be
   * writable, as for UnBase64. Returns 0 when a pointer is null, the text is empty, or memory is
   * short. */
  int DeriveInitKey(const char* factorBase64, unsigned char* out) PLX_CHECK_RESULT;

  /* getCCipherInitVector copies the vector to `dst`, which holds `dstSize` bytes; it does nothing
   * when `dst` is null or `dstSize` is below 16. */
  void getCCipherInitVector(unsigned char* dst, int dstSize);

  /* EncryptData seals `inLen` bytes: it writes a random IV of 16 bytes and the AES-CBC cipher text,
   * padded by PKCS#5, to `out`, and the number of bytes to `outLen`, which is the capacity on
   * entry. Give a capacity of `inLen` + 33. Only the whole blocks of `in` and the IV are held
   * against it: they must come to less than the capacity, else all of `out` is zeroed and 0
   * returned. The last block, of 16 bytes, follows untested and may end up to 15 bytes behind the
   * capacity.
   * Returns 0, with nothing written, when a pointer is null, `outLen` is below 1, or no random
   * bytes or no memory can be had. A negative `inLen` seals nothing: IV and padding. */
  static int EncryptData(const unsigned char* in, int inLen, unsigned char* out, int& outLen,
                         unsigned char* key, AES_CBC_TYPE type) PLX_CHECK_RESULT;

  /* DecryptData opens a sealed blob of `inLen` bytes: it writes the plain text to `out` and its
   * length to `outLen`. `outLen` must be above 0 on entry, but the output, of fewer than `inLen`
   * bytes, is not held to it.
   * A wrong key or a damaged blob is not reported: the result is 1, and `outLen` counts the whole
   * blocks before the last. A blob of fewer than 16 bytes, or a `type` that is none, gives 1 with
   * `outLen` 0. Returns 0 when a pointer is null, `outLen` is below 1, or memory is short. */
  static int DecryptData(const unsigned char* in, int inLen, unsigned char* out, int& outLen,
                         unsigned char* key, AES_CBC_TYPE type) PLX_CHECK_RESULT;

  /* GenerateRand fills the `len` bytes at `buf` with random bytes fit for keys. Returns 0 when
   * `buf` is null, `len` is below 1, or the source fails. */
  static int GenerateRand(unsigned char* buf, int len) PLX_CHECK_RESULT;

 private:
  unsigned char m_initVector[16];
};

}  // namespace CIPHER
}  // namespace TRUX

#endif

#endif
