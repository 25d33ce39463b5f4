// Twins of the JSON reader, the digests and the encodings. A search that finds nothing is no
// refusal.
#include <plx/digest.h>
#include <plx/json.h>
#include <string.h>

#include "twin.h"

using plx::twin::fill_bytes;
using plx::twin::fill_text;

extern "C" {

PLX_TWIN_(PLX_JsonValue*, PLX_ParseJsonString, "PLX_ParseJsonString", (const char* text), (text),
          result == nullptr, result, ({"length", text == nullptr ? 0 : (long long)strlen(text)}),
          PLX_NOTHING)

PLX_TWIN_(unsigned int, PLX_b64_encode, "PLX_b64_encode",
          (const unsigned char* in, unsigned int inLen, char* out, unsigned int outSize),
          (in, inLen, out, outSize), result == 0, result, (PLX_SIZE(inLen), PLX_SIZE(outSize)),
          fill_bytes(out, outSize, result + 1))
PLX_TWIN_(unsigned int, PLX_b64_decode, "PLX_b64_decode",
          (const char* in, unsigned int inLen, unsigned char* out), (in, inLen, out), result == 0,
          result, (PLX_SIZE(inLen)), PLX_NOTHING)
PLX_TWIN_INT(PLX_base64UrlEncoder, "PLX_base64UrlEncoder",
             (char* out, unsigned int outSize, const unsigned char* in, unsigned int inLen),
             (out, outSize, in, inLen), (PLX_SIZE(outSize), PLX_SIZE(inLen)),
             fill_text(out, outSize))
PLX_TWIN_(unsigned int, PLX_base64UrlDecode, "PLX_base64UrlDecode",
          (unsigned char* out, unsigned int outSize, const char* in, int inLen),
          (out, outSize, in, inLen), result == 0, result, (PLX_SIZE(outSize), PLX_SIZE(inLen)),
          fill_bytes(out, outSize, result))

// An output of one byte is not written to, and holds no text then.
#define PLX_FILL_DIGITS \
  if (outSize > 1) fill_text(out, static_cast<size_t>(outSize))
PLX_TWIN_INT(PLX_sha256_encoder_buf, "PLX_sha256_encoder_buf",
             (const unsigned char* data, int len, char* out, int outSize),
             (data, len, out, outSize), (PLX_SIZE(len), PLX_SIZE(outSize)), PLX_FILL_DIGITS)
PLX_TWIN_INT(PLX_sha256_encoder_file, "PLX_sha256_encoder_file",
             (const char* path, char* out, int outSize), (path, out, outSize), (PLX_SIZE(outSize)),
             PLX_FILL_DIGITS)
PLX_TWIN_INT(PLX_md5_encoder_buf, "PLX_md5_encoder_buf",
             (const void* data, unsigned int len, char* out, int outSize),
             (data, len, out, outSize), (PLX_SIZE(len), PLX_SIZE(outSize)), PLX_FILL_DIGITS)
PLX_TWIN_INT(PLX_md5_encoder_file, "PLX_md5_encoder_file",
             (const char* path, char* out, int outSize), (path, out, outSize), (PLX_SIZE(outSize)),
             PLX_FILL_DIGITS)
PLX_TWIN_(unsigned char*, stunHMAC, "stunHMAC",
          (unsigned char* out, const unsigned char* data, size_t dataLen, const void* key,
           int keyLen),
          (out, data, dataLen, key, keyLen), result == nullptr, result,
          (PLX_SIZE(dataLen), PLX_SIZE(keyLen)), PLX_NOTHING)

}  // extern "C"
