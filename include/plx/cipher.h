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

/* ---- AES by JSON request -------------------------------------------------------------------- */

/* A request is a JSON object (the dialect of plx/json.h); text around it is ignored. Its members,
 * found at any depth, are
 *
 *   "encryptMode"   absent, "" or "ECB": ECB. "CBC": CBC. Anything else is refused.
 *   "cipherSize"    128, 192 or 256, as a number or a text; letters behind it are ignored. There is
 *                   no default.
 *   "paddingMode"   "PKCS5Padding", or "" for none. Must be there.
 *   "cipherPrefix"  the key but for its last 4 characters: 12, 20 or 28. Absent or "": the work key
 *                   "aes_prefix_key" (plx/key_store.h), of whatever length, takes its place.
 *   "IVPrefix"      the IV but for its last 4 characters: 12. Must be there in CBC; "" stands for a
 *                   default of the product. The first 16 characters of it and the product's 4 are
 *                   the IV; a shorter one leaves zeros at the IV's end.
 *   "plainText"     what PLX_AesEncry encrypts, up to 1022 characters
 *   "cipherText"    what PLX_AesDecry decrypts: hexadecimal digits of either case, up to 1022.
 *                   Another character counts as 0; to an odd last digit belongs a 0.
 *
 * Longer texts are cut: mode and padding to 14 characters, size to 6, prefixes to 30. The last 4
 * characters of key and IV are constants of the product.
 *
 * A prefix of 28 to 31 characters makes a key that starts with a zero byte: the key fills its field
 * to the last byte, and its first character is lost. That is so with every prefix of 28 in a
 * request. A shorter one of the key store keeps its first byte, and of one of 32 or more only the
 * product's 4 characters and zeros are left. Data is encrypted under such keys, so this stays; who
 * decrypts it elsewhere needs the key as it is here.
 *
 * Both functions return 0 when an argument is null, the request is refused, the key store does not
 * give a key, memory is short, libcrypto refuses, or there is nothing to write. A failure later on,
 * of the sizes, of a step of the cipher or of memory for its context, gives 1: see there how to
 * tell. */

/* PLX_AesEncry encrypts "plainText" and writes the cipher text to `out` as upper-case hexadecimal
 * digits, without a terminator. There is no size to pass, and `out` is not tested: give it twice
 * the length of the text rounded up to the next multiple of 16 (above it, with padding), at most
 * 2048 characters. Zero `out` before the call: a result of 1 with nothing written is a failure.
 * That is so when padding is off and the length is no multiple of 16, and with 192 bits when the
 * length modulo 48 is one of 16 to 23. */
PLX_API int PLX_AesEncry(const char* request, char* out)
    PLX_TYPED("_Z12PLX_AesEncryPKcPc") PLX_CHECK_RESULT;

/* PLX_AesDecry decrypts "cipherText" into `out`, which holds `outSize` bytes, and ends the plain
 * text with a terminator. `outSize` must be at least the number of hexadecimal digits rounded down
 * to a multiple of 16, plus 16. A result of 1 is a failure when `outSize` is less, the
 * cipher text is not a whole number of blocks (with padding at least one), or the padding is wrong,
 * as with a wrong key: the call then writes a zero to the byte BEFORE `out`. Pass an
 * `out` that starts inside a buffer of yours, set the byte before it to something else, and test it
 * afterwards. */
PLX_API int PLX_AesDecry(const char* request, char* out, int outSize)
    PLX_TYPED("_Z12PLX_AesDecryPKcPci") PLX_CHECK_RESULT
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_WRITES(2, 3, out, outSize));

/* ---- Sealed texts --------------------------------------------------------------------------- */

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

PLX_BEGIN_DECLS

/* A sealed text is Base64 in lines of 64 characters, each ended by a line feed, of a sealed blob: a
 * random IV of 16 bytes and AES-CBC cipher text with PKCS#5 padding. All six functions return -1
 * for every failure.
 *
 * PLX_aesCbcEncryptByKey seals the `inLen` bytes at `in` under the 16 or 32 bytes at `key` into
 * `out`, which holds `outSize` bytes, with a terminator. Returns the length of the text rounded
 * down to a multiple of 4, plus 4, and not the length itself. -1, with `out` untouched, when
 *  - a pointer is null, `outSize` is below 16, or `inLen` is negative or above 2147483614
 *  - `outSize` is not above what would be returned: nothing, for instance, needs 49 bytes
 *  - no random bytes or no memory can be had.
 * When libcrypto cannot start the cipher nothing is sealed but the IV, and the result is 28. */
PLX_API int PLX_aesCbcEncryptByKey(const unsigned char* in, int inLen, char* out, int outSize,
                                   const unsigned char* key, AES_CBC_TYPE type) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen) PLX_CHECK_WRITES(3, 4, out, outSize);

/* PLX_aesCbcDecryptByKey opens the sealed text of `inLen` characters at `in` into `out`, which
 * holds `outSize` bytes, with a terminator. Returns the length of the plain text. When that holds
 * a zero byte, the copy ends there, while the result counts what follows. A wrong key or damage is
 * not noticed: the result is then mostly the length of all whole blocks but the last, and `out`
 * holds garbage. Put something recognisable into the plain text. -1, with `out` untouched, when
 *  - a pointer is null, `inLen` is below 16 or `outSize` below 1
 *  - the text decodes to fewer than 16 bytes (CCipher::UnBase64: malformed text must be writable)
 *  - `outSize` is not above the length of the plain text, or memory is short. */
PLX_API int PLX_aesCbcDecryptByKey(const char* in, int inLen, char* out, int outSize,
                                   const unsigned char* key, AES_CBC_TYPE type) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(3, 4, out, outSize);

/* These four do the same with AES_CBC_128 and the first 16 characters of a stored key
 * (plx/key_store.h), filled with zeros if it is shorter. Line feeds stand as "_" in the sealed
 * text, so that it is one line; texts with either are opened. Also -1 when the key does not load.
 *
 * PLX_aesCbcEncrypt and PLX_aesCbcDecrypt take "encrypt_stb_key", load it at their first use and
 * keep it in g_WorkKey until the process ends. First uses on several threads at once may load it
 * more than once, with the same outcome.
 *
 * PLX_aesCbcEncryptByRandomKey and PLX_aesCbcDecryptByRandomKey take "epg_profile_key", the key of
 * this box, and load it at every call. Only the IV is random, as in all of these. */
PLX_API int PLX_aesCbcEncrypt(const unsigned char* in, int inLen, char* out,
                              int outSize) PLX_CHECK_RESULT PLX_CHECK_READS(1, 2, in, inLen)
    PLX_CHECK_WRITES(3, 4, out, outSize);
PLX_API int PLX_aesCbcDecrypt(const char* in, int inLen, char* out, int outSize) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen) PLX_CHECK_WRITES(3, 4, out, outSize);
PLX_API int PLX_aesCbcEncryptByRandomKey(const unsigned char* in, int inLen, char* out,
                                         int outSize) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen) PLX_CHECK_WRITES(3, 4, out, outSize);
PLX_API int PLX_aesCbcDecryptByRandomKey(const char* in, int inLen, char* out,
                                         int outSize) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen) PLX_CHECK_WRITES(3, 4, out, outSize);

PLX_END_DECLS

/* ---- CCipher -------------------------------------------------------------------------------- */

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
   * when a pointer is null or a number is below 1, and else 1, even if libcrypto runs out of
   * memory: `out` is then zero. */
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
   * Malformed text is not refused. A "-" ends the text: the groups of 4 before it are decoded, what
   * stands behind it is ignored. After any other fault the result holds at most the whole
   * groups of 64 characters before the fault; the characters behind them may be decoded into `text`
   * itself, within its `len` characters, and counted in `*outLen` as bytes that are zero in the
   * result. Pass text of unknown origin in memory that can be written, and check what you get. */
  static unsigned char* UnBase64(const char* text, int len, int* outLen) PLX_CHECK_RESULT;

  /* DeriveInitKey derives 16 bytes into `out` from a factor in Base64 and the instance's vector, as
   * deriveKey does with 100000 iterations (the keys of plx/key_store.h take 10000). The factor
   * counts as 16 bytes: longer ones are cut, shorter ones filled with zeros. Malformed text must be
   * writable, as for UnBase64. Returns 0 when a pointer is null, the text is empty, or memory
   * for the factor is short. When libcrypto cannot derive, the result is 1 and `out` is zero. */
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
   * bytes or no memory can be had. A negative `inLen` seals nothing: IV and padding. When libcrypto
   * cannot start the cipher the result is 1 with an `outLen` of 16, the IV alone: test that. */
  static int EncryptData(const unsigned char* in, int inLen, unsigned char* out, int& outLen,
                         unsigned char* key, AES_CBC_TYPE type) PLX_CHECK_RESULT;

  /* DecryptData opens a sealed blob of `inLen` bytes: it writes the plain text to `out` and its
   * length to `outLen`. `outLen` must be above 0 on entry, but the output, of fewer than `inLen`
   * bytes, is not held to it.
   * A wrong key or a damaged blob is not reported: the result is 1, and `outLen` counts the whole
   * blocks before the last. A blob of fewer than 16 bytes, a `type` that is none, or a cipher that
   * libcrypto cannot start gives 1 with `outLen` 0. Returns 0 when a pointer is null, `outLen` is
   * below 1, or memory is short. */
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
