// Twins of the cipher services and of the key store.
#include <plx/cipher.h>
#include <plx/key_store.h>

#include <string>

#include "twin.h"

using plx::twin::fill_bytes;
using plx::twin::fill_text;

extern "C++" {

#define PLX_TWIN_BELOW_1(function, symbol, parameters, arguments, sizes, used) \
  PLX_TWIN_(int, function, symbol, parameters, arguments, result < 1, result, sizes, used)

PLX_TWIN_BELOW_1(PLX_AesEncryInit_ex, "_Z19PLX_AesEncryInit_exPK6tagAesP17evp_cipher_ctx_st",
                 (const tagAes* aes, evp_cipher_ctx_st* ctx), (aes, ctx), (), PLX_NOTHING)
PLX_TWIN_BELOW_1(PLX_AesDecryInit_ex, "_Z19PLX_AesDecryInit_exPK6tagAesP17evp_cipher_ctx_st",
                 (const tagAes* aes, evp_cipher_ctx_st* ctx), (aes, ctx), (), PLX_NOTHING)
PLX_TWIN_BELOW_1(PLX_AesEncryByMode, "_Z18PLX_AesEncryByModePK6tagAesPci",
                 (const tagAes* aes, char* out, int outSize), (aes, out, outSize),
                 (PLX_SIZE(outSize)),
                 fill_bytes(out, static_cast<size_t>(outSize), static_cast<size_t>(result)))
PLX_TWIN_BELOW_1(PLX_AesDecryByMode, "_Z18PLX_AesDecryByModePK6tagAesPciS2_i",
                 (const tagAes* aes, char* in, int inLen, char* out, int outSize),
                 (aes, in, inLen, out, outSize), (PLX_SIZE(inLen), PLX_SIZE(outSize)),
                 fill_bytes(out, static_cast<size_t>(outSize), static_cast<size_t>(result)))

// A result of 1 says little here: a request that produced nothing is not told apart by it.
PLX_TWIN_BELOW_1(PLX_AesEncry, "_Z12PLX_AesEncryPKcPc", (const char* request, char* out),
                 (request, out), (), PLX_NOTHING)
PLX_TWIN_BELOW_1(PLX_AesDecry, "_Z12PLX_AesDecryPKcPci",
                 (const char* request, char* out, int outSize), (request, out, outSize),
                 (PLX_SIZE(outSize)), PLX_NOTHING)

}  // extern "C++"

extern "C" {

#define PLX_TWIN_SEAL(function, parameters, arguments)                                           \
  PLX_TWIN_INT(function, #function, parameters, arguments, (PLX_SIZE(inLen), PLX_SIZE(outSize)), \
               fill_text(out, static_cast<size_t>(outSize)))
#define PLX_TWIN_OPEN(function, parameters, arguments)                                           \
  PLX_TWIN_INT(function, #function, parameters, arguments, (PLX_SIZE(inLen), PLX_SIZE(outSize)), \
               fill_text(out, static_cast<size_t>(outSize)))
PLX_TWIN_SEAL(PLX_aesCbcEncryptByKey,
              (const unsigned char* in, int inLen, char* out, int outSize, const unsigned char* key,
               AES_CBC_TYPE type),
              (in, inLen, out, outSize, key, type))
PLX_TWIN_SEAL(PLX_aesCbcEncryptByRandomKey,
              (const unsigned char* in, int inLen, char* out, int outSize),
              (in, inLen, out, outSize))
PLX_TWIN_SEAL(PLX_aesCbcEncrypt, (const unsigned char* in, int inLen, char* out, int outSize),
              (in, inLen, out, outSize))
PLX_TWIN_OPEN(PLX_aesCbcDecryptByKey,
              (const char* in, int inLen, char* out, int outSize, const unsigned char* key,
               AES_CBC_TYPE type),
              (in, inLen, out, outSize, key, type))
PLX_TWIN_OPEN(PLX_aesCbcDecryptByRandomKey, (const char* in, int inLen, char* out, int outSize),
              (in, inLen, out, outSize))
PLX_TWIN_OPEN(PLX_aesCbcDecrypt, (const char* in, int inLen, char* out, int outSize),
              (in, inLen, out, outSize))

#define PLX_TWIN_VECTOR(function)                                                            \
  PLX_TWIN_(unsigned char*, function, #function, (unsigned char* dst, unsigned int dstSize), \
            (dst, dstSize), result == nullptr, result, (PLX_SIZE(dstSize)),                  \
            fill_bytes(dst, dstSize, 16))
PLX_TWIN_VECTOR(getVectorForSTBEncyptInitKey)
PLX_TWIN_VECTOR(getVectorForCipherPrefixInitKey)
PLX_TWIN_VECTOR(getVectorForWhiteListInitKey)
PLX_TWIN_VECTOR(getVectorForPVRFileInitKey)
PLX_TWIN_VECTOR(getVectorForEPGProfileEncyptInitKey)
PLX_TWIN_VECTOR(getVectorForUpdateSTBInitKey)
PLX_TWIN_VECTOR(getInitVector)
PLX_TWIN_(unsigned char*, getVectorForInitKeyByIndex, "getVectorForInitKeyByIndex",
          (unsigned int index, unsigned char* dst, unsigned int dstSize), (index, dst, dstSize),
          result == nullptr, result, (PLX_SIZE(index), PLX_SIZE(dstSize)),
          fill_bytes(dst, dstSize, 16))

PLX_TWIN_INT(DeriveInitKeyByIndex, "DeriveInitKeyByIndex",
             (int index, unsigned char* out, int outLen), (index, out, outLen),
             (PLX_SIZE(index), PLX_SIZE(outLen)), PLX_NOTHING)
PLX_TWIN_INT(getIndexValueSetByName, "getIndexValueSetByName", (const std::string& name), (name),
             ({"length", (long long)name.size()}), PLX_NOTHING)
PLX_TWIN_INT(getPlainWorkKeyByName, "getPlainWorkKeyByName",
             (const std::string& name, char* out, int outSize), (name, out, outSize),
             (PLX_SIZE(outSize)), fill_text(out, static_cast<size_t>(outSize)))

}  // extern "C"

PLX_TWIN_INT(getFactorByIndex, "_Z16getFactorByIndexiPhi",
             (int index, unsigned char* dst, int dstSize), (index, dst, dstSize),
             (PLX_SIZE(index), PLX_SIZE(dstSize)), PLX_NOTHING)

// The static members, which are defined here as the library's own are.
namespace TRUX {
namespace CIPHER {

#define PLX_TWIN_MEMBER(function, symbol, parameters, arguments, sizes, used)                \
  PLX_TWIN_(int, CCipher::function, "_ZN4TRUX6CIPHER7CCipher" symbol, parameters, arguments, \
            result == 0, result, sizes, used)

PLX_TWIN_MEMBER(deriveKey, "9deriveKeyEPKciPKhiiiPh",
                (const char* pass, int passLen, const unsigned char* salt, int saltLen,
                 int iterations, int keyLen, unsigned char* out),
                (pass, passLen, salt, saltLen, iterations, keyLen, out),
                (PLX_SIZE(passLen), PLX_SIZE(saltLen), PLX_SIZE(keyLen)), PLX_NOTHING)
PLX_TWIN_MEMBER(GenerateRand, "12GenerateRandEPhi", (unsigned char* out, int len), (out, len),
                (PLX_SIZE(len)), PLX_NOTHING)
PLX_TWIN_MEMBER(EncryptData, "11EncryptDataEPKhiPhRiS4_12AES_CBC_TYPE",
                (const unsigned char* in, int inLen, unsigned char* out, int& outLen,
                 unsigned char* key, AES_CBC_TYPE type),
                (in, inLen, out, outLen, key, type), (PLX_SIZE(inLen)), PLX_NOTHING)
PLX_TWIN_MEMBER(DecryptData, "11DecryptDataEPKhiPhRiS4_12AES_CBC_TYPE",
                (const unsigned char* in, int inLen, unsigned char* out, int& outLen,
                 unsigned char* key, AES_CBC_TYPE type),
                (in, inLen, out, outLen, key, type), (PLX_SIZE(inLen)), PLX_NOTHING)

#define PLX_TWIN_TEXT_MEMBER(Result, function, symbol, parameters, arguments, sizes)            \
  PLX_TWIN_(Result, CCipher::function, "_ZN4TRUX6CIPHER7CCipher" symbol, parameters, arguments, \
            result == nullptr, result, sizes, PLX_NOTHING)
PLX_TWIN_TEXT_MEMBER(const char*, Base64, "6Base64EPKhi", (const unsigned char* data, int len),
                     (data, len), (PLX_SIZE(len)))
PLX_TWIN_TEXT_MEMBER(unsigned char*, UnBase64, "8UnBase64EPKciPi",
                     (const char* text, int len, int* outLen), (text, len, outLen), (PLX_SIZE(len)))

}  // namespace CIPHER
}  // namespace TRUX
