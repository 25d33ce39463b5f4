#include <plx/digest.h>
#include <string.h>

#include "digest/base64_text.h"

extern "C" {

int PLX_base64UrlEncoder(char* out, unsigned int outSize, const unsigned char* in,
                         unsigned int inLen) {
  if (in == nullptr || inLen == 0) return -1;
  if (out == nullptr || outSize == 0) return -1;
  if (outSize <= plx::digest::digits_for(inLen)) return -1;
  out[plx::digest::encode_text(plx::digest::kUrlAlphabet, out, in, inLen)] = '\0';
  return 0;
}

unsigned int PLX_base64UrlDecode(unsigned char* out, unsigned int outSize, const char* in,
                                 int inLen) {
  if (in == nullptr || inLen <= 0) return 0;
  if (out == nullptr || outSize == 0) return 0;
  auto limit = static_cast<size_t>(inLen);
  if (outSize < static_cast<uint64_t>(limit) * 3 / 4) {
    // Perhaps a shorter text, by its NUL, has room.
    limit = strnlen(in, limit);
    if (outSize < static_cast<uint64_t>(limit) * 3 / 4) return 0;
  }
  return static_cast<unsigned int>(
      plx::digest::decode_terminated(plx::digest::kUrlAlphabet, out, in, limit));
}

}  // extern "C"
