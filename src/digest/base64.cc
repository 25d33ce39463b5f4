#include <plx/digest.h>

#include "digest/base64_text.h"

namespace {

// The largest input whose text has a length that 32 bits hold.
constexpr unsigned int kMaxInput = 0xBD81A98Au;

}  // namespace

extern "C" {

unsigned int PLX_b64_encode(const unsigned char* in, unsigned int inLen, char* out,
                            unsigned int outSize) {
  if (in == nullptr || inLen == 0) return 0;
  if (out == nullptr || outSize == 0) return 0;
  if (inLen > kMaxInput) return 0;
  const unsigned int length = (inLen + 2) / 3 * 4;
  if (outSize <= length) return 0;
  const size_t num_digits =
      plx::digest::encode_text(plx::digest::kStandardAlphabet, out, in, inLen);
  if (num_digits < length) out[length - 1] = '=';
  if (num_digits + 1 < length) out[length - 2] = '=';
  out[length] = '\0';
  return length;
}

unsigned int PLX_b64_decode(const char* in, unsigned int inLen, unsigned char* out) {
  if (inLen <= 3 || inLen % 4 != 0) return 0;
  if (in == nullptr || out == nullptr) return 0;
  // At most two "=" go, so that the rest is never of the form 4k+1.
  unsigned int length = inLen;
  if (in[length - 1] == '=') --length;
  if (length != inLen && in[length - 1] == '=') --length;
  if (length == inLen - 2 && in[length - 1] == '=') return 0;
  const size_t size = plx::digest::decode_text(plx::digest::kStandardAlphabet, out, in, length);
  if (size != 0) out[size] = '\0';
  return static_cast<unsigned int>(size);
}

}  // extern "C"
