/* The key store: five named keys, kept encrypted in files.
 *
 * Each key has a factor file and a work-key file. The factor file holds up to 16 random bytes as
 * Base64 text. They and the key's vector, 16 bytes that are a secret of the product, give the init
 * key: PBKDF2 with HMAC-SHA-256, the factor as password, the vector as salt, 10000 iterations. The
 * work-key file holds, as Base64 text, a sealed blob (CCipher::EncryptData in plx/cipher.h, with
 * AES_CBC_128) of the work key, which the init key opens. The work key is text.
 *
 * Shared rules:
 *  - Results are 0 or an index for success and -1 for failure, or a pointer and null. Causes are
 *    not told apart: a missing, unreadable or damaged file, a wrong key or short memory all give
 *    -1.
 *  - Nothing is cached: loading a key reads both files and costs 10000 iterations, some
 *    milliseconds. A caller that needs a key often keeps it.
 *  - Temporary key material is wiped before it is released.
 *  - All functions may run on several threads at once, as long as nobody changes g_stKeyMap or
 *    g_szStbId meanwhile.
 */
#ifndef PLX_KEY_STORE_H
#define PLX_KEY_STORE_H

#include <plx/export.h>

#ifdef __cplusplus
#include <string>
#endif

PLX_BEGIN_DECLS

/* ---- The table of keys ---------------------------------------------------------------------- */

/* A vector function: see "Vectors" below. */
typedef unsigned char* (*tagKeyVectorFunction)(unsigned char* dst, unsigned int dstSize);

/* One row of the table. */
typedef struct tagKeyMap {
  const char* pszKeyName;            /* the name that callers give */
  const char* pszFactorPath;         /* the factor file */
  const char* pszWorkKeyPath;        /* the work-key file */
  tagKeyVectorFunction pfnGetVector; /* gives the vector of the init key */
} tagKeyMap;

/* g_stKeyMap is the table of keys; a key's row is its index.
 *
 *   0  encrypt_stb_key  /system/etc/security/i/c/f and w   getVectorForSTBEncyptInitKey
 *   1  aes_prefix_key   /system/etc/security/i/p/f and w   getVectorForCipherPrefixInitKey
 *   2  whitelist_key    /system/etc/security/i/w/f and w   getVectorForWhiteListInitKey
 *   3  pvr_file_key     /system/etc/security/i/v/f and w   getVectorForPVRFileInitKey
 *   4  epg_profile_key  /data/security/i/u/f and w         getVectorForEPGProfileEncyptInitKey
 *
 * The library reads it at every call and never writes it: a simulator or a test may point rows
 * elsewhere. */
PLX_API extern tagKeyMap g_stKeyMap[5];

/* g_szStbId is the box identifier, a text. The host writes it before anything is done with
 * "epg_profile_key", whose vector it enters; the library never writes it. A host that defines this
 * name itself is read in its place. */
PLX_API extern char g_szStbId[64];

/* g_WorkKey caches the work key "encrypt_stb_key" for PLX_aesCbcEncrypt and PLX_aesCbcDecrypt
 * (plx/cipher.h); a first byte of 0 means that it is not loaded. It is never cleared. */
PLX_API extern char g_WorkKey[512];

/* ---- Vectors -------------------------------------------------------------------------------- */

/* Each of these computes its vector and writes the 16 bytes to `dst`, which holds `dstSize` bytes.
 * Returns `dst`, or null, with nothing written, when `dst` is null or `dstSize` is below 16 or
 * above 0x7FFFFFFF. The vectors are the same on every box, save for that of "epg_profile_key",
 * which g_szStbId enters. getVectorForUpdateSTBInitKey belongs to no row of the table;
 * getInitVector gives the vector of the CCipher instance. */
PLX_API unsigned char* getVectorForSTBEncyptInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getVectorForCipherPrefixInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getVectorForWhiteListInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getVectorForPVRFileInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getVectorForEPGProfileEncyptInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getVectorForUpdateSTBInitKey(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);
PLX_API unsigned char* getInitVector(unsigned char* dst, unsigned int dstSize)
    PLX_CHECK_WRITES(1, 2, dst, dstSize);

/* getVectorForInitKeyByIndex calls the vector function of row `index` of g_stKeyMap. Null also
 * when `index` is above 4. */
PLX_API unsigned char* getVectorForInitKeyByIndex(unsigned int index, unsigned char* dst,
                                                  unsigned int dstSize)
    PLX_CHECK_WRITES(2, 3, dst, dstSize);

/* ---- Keys ----------------------------------------------------------------------------------- */

/* DeriveInitKeyByIndex derives `outLen` bytes of the init key of row `index` into `out`. Returns
 * 0, or -1, with `out` untouched, when `out` is null, `outLen` is below 1, `index` is none of 0 to
 * 4, or the factor cannot be read. The result is 0 even if libcrypto runs out of memory: `out` is
 * then zero. A factor of fewer than 16 bytes is filled with zeros; one of more counts as 16 zeros.
 */
PLX_API int DeriveInitKeyByIndex(int index, unsigned char* out, int outLen) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(2, 3, out, outLen);

#ifdef __cplusplus
/* These two take a std::string although their symbols are plain: caller and library must use one
 * C++ library. For C++ alone. */

/* getIndexValueSetByName returns the index of the key called exactly `name`, or -1. */
PLX_API int getIndexValueSetByName(const std::string& name) PLX_CHECK_RESULT;

/* getPlainWorkKeyByName loads the work key called `name` and copies it as text to `out`, which
 * holds `outSize` bytes. Returns 0, or -1, with `out` untouched, when there is no such key, it does
 * not load, or it does not fit with its terminator. A work-key file whose padding is wrong, as
 * after a change of factor or vector, does not load. A zero byte in the work key ends the copy, but
 * the whole key must fit. */
PLX_API int getPlainWorkKeyByName(const std::string& name, char* out, int outSize) PLX_CHECK_RESULT
    PLX_CHECK_WRITES(2, 3, out, outSize);
#endif

/* ---- Helpers -------------------------------------------------------------------------------- */

/* printUnsignedCharArray formats `title` and the `len` bytes at `data` as a dump, "title[0A FF]",
 * and prints nothing: its output is switched off. */
PLX_API void printUnsignedCharArray(const char* title, const unsigned char* data, int len);

/* deleteArrayPoint_s releases what CCipher::Base64 and CCipher::UnBase64 return. Null is ignored.
 * It array-deletes, so it is right for any array of bytes that came from array-new. */
PLX_API void deleteArrayPoint_s(void* p);

PLX_END_DECLS

/* getFactorByIndex reads the factor of row `index` into `dst`, which holds `dstSize` bytes. No more
 * than 2 * `dstSize` bytes of the file are read. A factor of more than `dstSize` bytes is not
 * copied, yet the result is 0: clear `dst` first, for nothing tells the two apart.
 * Returns 0, or -1 when `dst` is null, `dstSize` is below 16, `index` is none of 0 to 4, the file
 * cannot be read or is empty, or memory is short. */
PLX_API int getFactorByIndex(int index, unsigned char* dst, int dstSize)
    PLX_TYPED("_Z16getFactorByIndexiPhi") PLX_CHECK_RESULT
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_WRITES(2, 3, dst, dstSize));

/* convertEOLToUnderscode replaces every line feed in the first `len` bytes of `s` by "_", and
 * convertUnderscodeToEOL every "_" by a line feed. Null, or a `len` below 1, does nothing. */
PLX_API void convertEOLToUnderscode(char* s, int len) PLX_TYPED("_Z22convertEOLToUnderscodePci")
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_UPDATES(1, 2, s, len));
PLX_API void convertUnderscodeToEOL(char* s, int len) PLX_TYPED("_Z22convertUnderscodeToEOLPci")
    PLX_CHECK_BEHIND_LABEL(PLX_CHECK_UPDATES(1, 2, s, len));

#endif
