/* Digests and encodings: Base64 and Base64url, SHA-256, HMAC-SHA-256, MD5, the STUN HMAC, DES.
 *
 * Shared rules:
 *  - Nothing of ours allocates but the two calls that run triple DES over a buffer. The C library
 *    may for the files that are digested, and libcrypto for stunHMAC.
 *  - Contexts are plain records of the caller, without pointers: copy one in mid-message and both
 *    copies can be finished. A context belongs to one thread at a time; a scheduled DES context is
 *    only read and may serve several.
 *  - A null pointer is refused as a function says. The plain hashing calls (the Sha256_, sha256_
 *    and hmac_sha256_ functions and SHA256) do not test their pointers; where a length is 0 the
 *    data pointer beside it is not read and may be null.
 *  - Digests as text are two lower-case hexadecimal digits a byte unless a function says otherwise.
 *  - Input and output must not overlap unless a function says otherwise.
 *  - MD5, DES and SHA-1 are here for the formats that need them. Do not choose them for new ones.
 */
#ifndef PLX_DIGEST_H
#define PLX_DIGEST_H

#include <plx/export.h>
#include <stddef.h>
#include <stdint.h>

PLX_BEGIN_DECLS

/* ---- Base64 and Base64url (RFC 4648) -------------------------------------------------------- */

/* PLX_b64_encode writes the Base64 text of the `inLen` bytes at `in`, padded with "=" and without
 * line breaks, and a NUL to `out`, which holds `outSize` bytes.
 * Returns the length of the text, (inLen + 2) / 3 * 4, without the NUL; or 0, with nothing written,
 * when `in` is null, `inLen` is 0, `out` is null, `outSize` is 0, `inLen` is above 0xBD81A98A, or
 * `outSize` is not larger than the length. */
PLX_API unsigned int PLX_b64_encode(const unsigned char* in, unsigned int inLen, char* out,
                                    unsigned int outSize) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen) PLX_CHECK_WRITES(3, 4, out, outSize);

/* PLX_b64_decode decodes the `inLen` characters at `in` to `out` and puts a NUL behind the decoded
 * bytes. There is no output size: `out` must hold `inLen` bytes, any of which may be overwritten,
 * by a refused call too. `out` may be `in`.
 * Returns the number of decoded bytes; or 0 when `inLen` is below 4 or no multiple of 4, a pointer
 * is null, the text ends in three "=", or it holds a character that is neither of the standard
 * alphabet nor "=". White space is such a character.
 * An "=" inside the text counts as the value 0 ("Zm=v" gives three bytes), and unused low bits of
 * the last character are ignored; callers depend on both. */
PLX_API unsigned int PLX_b64_decode(const char* in, unsigned int inLen,
                                    unsigned char* out) PLX_CHECK_RESULT
    PLX_CHECK_READS(1, 2, in, inLen);

/* PLX_base64UrlEncoder writes the Base64url text of the `inLen` bytes at `in`, without padding and
 * line breaks, and a NUL to `out`, which holds `outSize` bytes. Mind the order: output first.
 * Returns 0; or -1, with nothing written, when `in` is null, `inLen` is 0, `out` is null, `outSize`
 * is 0, or the text with its NUL does not fit. The length is what strlen says. */
PLX_API int PLX_base64UrlEncoder(char* out, unsigned int outSize, const unsigned char* in,
                                 unsigned int inLen) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(1, 2, out, outSize) PLX_CHECK_READS(3, 4, in, inLen);

/* PLX_base64UrlDecode decodes the text at `in`, which ends at `inLen` characters or at the first
 * NUL, to `out`, which holds `outSize` bytes. Mind the order: output first. No NUL is added and
 * nothing is written behind the decoded bytes. `out` may be `in`.
 * Returns the number of decoded bytes; or 0 when `in` is null, `inLen` is below 1, `out` is null,
 * `outSize` is 0, the text is empty, holds a character outside the Base64url alphabet ("=", "+" and
 * "/" are outside), has a length of the form 4k+1, or decodes to more than `outSize` bytes. A
 * refused call may have written. */
PLX_API unsigned int PLX_base64UrlDecode(unsigned char* out, unsigned int outSize, const char* in,
                                         int inLen) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(1, 2, out, outSize);

/* ---- SHA-256 (FIPS 180-4), first family ----------------------------------------------------- */

/* One message of the first family. It may be copied in mid-message, and both copies finished. */
typedef struct Sha256Context {
  uint32_t state[8];  /* H0 to H7 */
  uint64_t count;     /* bytes of the message so far */
  uint8_t buffer[64]; /* the block being filled; the next byte goes to count mod 64 */
} Sha256Context;

/* Sha256_Init starts a message. `buffer` is left as it is. */
PLX_API void Sha256_Init(Sha256Context* ctx);

/* Sha256_Update appends `len` bytes to the message. */
PLX_API void Sha256_Update(Sha256Context* ctx, const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* Sha256_Final writes the digest of the message and starts the next one: no further Sha256_Init is
 * needed. `buffer` keeps the last block; clear the context yourself if that is a secret. */
PLX_API void Sha256_Final(Sha256Context* ctx, unsigned char digest[32]);

/* SHA256 writes the digest of the `len` bytes at `data` to the 32 bytes at `md` and returns `md`.
 * With `md` null the digest goes to one static buffer that the next such call overwrites, and that
 * is returned; that form is not safe in two threads at once.
 * libcrypto exports a function of the same name, shape and result. A program that links both gets
 * the one of the library that it names first; nothing else in this library depends on which. */
PLX_API unsigned char* SHA256(const unsigned char* data, size_t len, unsigned char* md)
    PLX_CHECK_READS(1, 2, data, len);

/* PLX_sha256_encoder_buf writes the digest of the `len` bytes at `data` as text to `out`, which
 * holds `outSize` bytes; the 64 digits and their NUL need 65. With less room only whole pairs of
 * digits that leave room for a NUL are written, then the NUL; a last pair that has room for two
 * characters but not for its NUL is written as two NULs (so with 64), and an `outSize` of 1 writes
 * nothing. Callers depend on that being no refusal.
 * Returns 0; or -1 when `data` is null, `len` is below 1, `out` is null or `outSize` is below 1. */
PLX_API int PLX_sha256_encoder_buf(const unsigned char* data, int len, char* out,
                                   int outSize) PLX_CHECK_RESULT PLX_CHECK_READS(1, 2, data, len)
    PLX_CHECK_WRITES(3, 4, out, outSize);

/* PLX_sha256_encoder_file writes the digest of the file at `path` as text to `out`, as
 * PLX_sha256_encoder_buf does; an `outSize` below 2 writes nothing and is no refusal.
 * Returns 0; or -1 when a pointer is null or the file cannot be opened. The latter prints one line
 * to standard error: "***NAME can't be opened" with the part of `path` behind the last "/", or,
 * when there is none, "PATH can't be opened" with all of it.
 * A read error ends the file silently; a folder hashes as an empty file. */
PLX_API int PLX_sha256_encoder_file(const char* path, char* out, int outSize) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(2, 3, out, outSize);

/* ---- SHA-256, second family ----------------------------------------------------------------- */

/* One message of the second family. It may be copied in mid-message, and both copies finished. */
typedef struct Sha256Ctx {
  uint8_t hash[32];    /* the digest, once sha256_finalize has run */
  uint32_t block[16];  /* the block being filled, as big-endian words; zero where not yet filled */
  uint32_t state[8];   /* H0 to H7 */
  uint8_t bitCount[8]; /* length of the message in bits, a big-endian number */
} Sha256Ctx;

/* sha256_initialize starts a message. `hash` is left as it is. */
PLX_API void sha256_initialize(Sha256Ctx* ctx);

/* sha256_update appends `len` bytes to the message. */
PLX_API void sha256_update(Sha256Ctx* ctx, const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* sha256_finalize appends `len` bytes, the last piece of the message, and leaves the digest in
 * `hash`. The padding counts as part of the message afterwards; initialize the context before the
 * next one. */
PLX_API void sha256_finalize(Sha256Ctx* ctx, const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* sha256_get writes the digest of the `len` bytes at `data` to `out`. */
PLX_API void sha256_get(unsigned char out[32], const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* ---- HMAC-SHA-256 (RFC 2104) ---------------------------------------------------------------- */

/* One message under a key. It may be copied in mid-message, and both copies finished. */
typedef struct HmacSha256Ctx {
  uint8_t digest[32];   /* the result, once hmac_sha256_finalize has run */
  uint8_t keyBlock[64]; /* the key, masked for the inner hash, after finalizing for the outer */
  Sha256Ctx sha;        /* the inner hash, then the outer */
} HmacSha256Ctx;

/* hmac_sha256_initialize starts a message under `key` of `keyLen` bytes. A key of more than 64
 * bytes is replaced by its digest; with a `keyLen` below 1 the key is empty and `key` is not read.
 * The context holds the key in a form that gives it away: clear it when you are done. */
PLX_API void hmac_sha256_initialize(HmacSha256Ctx* ctx, const unsigned char* key, int keyLen)
    PLX_CHECK_READS(2, 3, key, keyLen);

/* hmac_sha256_update appends `len` bytes to the message. */
PLX_API void hmac_sha256_update(HmacSha256Ctx* ctx, const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* hmac_sha256_finalize appends `len` bytes, the last piece of the message, and leaves the result in
 * `digest`. Initialize the context before the next message. */
PLX_API void hmac_sha256_finalize(HmacSha256Ctx* ctx, const unsigned char* data, unsigned int len)
    PLX_CHECK_READS(2, 3, data, len);

/* hmac_sha256_get writes the HMAC of the `dataLen` bytes at `data` under `key` to `out` and returns
 * 32. Nothing of the key stays behind. */
PLX_API int hmac_sha256_get(unsigned char out[32], const unsigned char* data, unsigned int dataLen,
                            const unsigned char* key, int keyLen)
    PLX_CHECK_READS(2, 3, data, dataLen) PLX_CHECK_READS(4, 5, key, keyLen);

/* ---- MD5 (RFC 1321) ------------------------------------------------------------------------- */

/* PLX_md5_encode returns the digest of the text `first` followed by the text `second`, which may be
 * null, as lower-case hexadecimal WITHOUT leading zeros: a byte below 0x10 is one digit, so that
 * the text has 16 to 32 characters. Callers depend on this form. `first` is not tested for null.
 * The result is a static buffer that the next call overwrites; not safe in two threads at once. */
PLX_API char* PLX_md5_encode(const char* first, const char* second);

/* PLX_md5_163encode returns the digest of `text` as 32 upper-case hexadecimal digits. `text` is not
 * tested for null. The result is a static buffer of its own; not safe in two threads at once. */
PLX_API char* PLX_md5_163encode(const char* text);

/* PLX_md5_encoder_buf writes the digest of the `len` bytes at `data` (`len` may be 0, `data` not
 * null) as text to `out`, which holds `outSize` bytes; the 32 digits and their NUL need 33. Less
 * room is treated as by PLX_sha256_encoder_buf; an `outSize` below 2 writes nothing and is no
 * refusal. Returns 0; or -1 when a pointer is null. */
PLX_API int PLX_md5_encoder_buf(const void* data, unsigned int len, char* out,
                                int outSize) PLX_CHECK_RESULT PLX_CHECK_READS(1, 2, data, len)
    PLX_CHECK_WRITES(3, 4, out, outSize);

/* PLX_md5_encoder_file writes the digest of the file at `path` as text to `out`, as
 * PLX_md5_encoder_buf does. Results, messages and read errors as for PLX_sha256_encoder_file. */
PLX_API int PLX_md5_encoder_file(const char* path, char* out, int outSize) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(2, 3, out, outSize);

/* ---- STUN message integrity (RFC 5389) ------------------------------------------------------ */

/* stunHMAC writes the HMAC-SHA1 (RFC 2104) of the `dataLen` bytes at `data` under `key` of `keyLen`
 * bytes to the 20 bytes at `out`. Returns `out`; or null when `out` is null, `keyLen` is negative,
 * a length above 0 has a null pointer, or libcrypto fails. libcrypto's error queue is left as it
 * was. */
PLX_API unsigned char* stunHMAC(unsigned char* out, const unsigned char* data, size_t dataLen,
                                const void* key, int keyLen) PLX_CHECK_RESULT
    PLX_CHECK_READS(2, 3, data, dataLen) PLX_CHECK_READS(4, 5, key, keyLen);

/* ---- DES and triple DES (FIPS 46-3) --------------------------------------------------------- */

/* On 64-bit machines buffers of 32 blocks and more (fewer with vector instructions) are run many
 * blocks at once, without a branch or an index that depends on the key or the data. Shorter ones
 * go through tables, whose indexes do: other processes on the machine may learn from the time. */

/* Round keys, two words a round, in the order in which a pass uses them. */
typedef struct DesContext {
  uint32_t encSubkeys[32]; /* for encryption */
  uint32_t decSubkeys[32]; /* the same rounds, last first */
} DesContext;

/* Three passes laid end to end, 32 words each. */
typedef struct Des3Context {
  uint32_t encSubkeys[96]; /* key 1 forward, key 2 reversed, key 3 forward */
  uint32_t decSubkeys[96]; /* key 3 reversed, key 2 forward, key 1 reversed */
} Des3Context;

/* The key functions schedule keys of 8 bytes into a context. Parity bits are ignored; weak keys are
 * accepted. With two keys the third is the first. They return 0 always; with a null pointer they do
 * nothing. */
PLX_API unsigned int PLX_des_setKey(DesContext* ctx, const unsigned char key[8]);
PLX_API unsigned int PLX_3des_set2keys(Des3Context* ctx, const unsigned char key1[8],
                                       const unsigned char key2[8]);
PLX_API unsigned int PLX_3des_set3keys(Des3Context* ctx, const unsigned char key1[8],
                                       const unsigned char key2[8], const unsigned char key3[8]);

/* PLX_3des_encrypt pads the `len` bytes at `in` to the next multiple of 8 and encrypts them block
 * by block (ECB) to `out`, which must hold (len / 8 + 1) * 8 bytes. Missing bytes are filled with
 * their number, as PKCS#5 does; but when none is missing a block of eight ZERO bytes is appended,
 * not of 0x08. Callers depend on that. `out` may be `in`, or overlap it in any other way.
 * Nothing is written, and nobody is told, when a pointer is null (`in` may be for a `len` of 0),
 * `len` is negative, or memory for a copy of the input is short. */
PLX_API void PLX_3des_encrypt(const Des3Context* ctx, const unsigned char* in, unsigned char* out,
                              int len) PLX_CHECK_READS(2, 4, in, len);

/* PLX_3des_decrypt decrypts by the same rule, the appended bytes included: 8k bytes of cipher text
 * give 8k + 8 bytes, of which the last 8 are the decryption of a zero block. Padding is neither
 * tested nor removed. */
PLX_API void PLX_3des_decrypt(const Des3Context* ctx, const unsigned char* in, unsigned char* out,
                              int len) PLX_CHECK_READS(2, 4, in, len);

PLX_END_DECLS

#endif
