// MD5 as text. libcrypto's one-call interface to MD5 is deprecated, but it needs no heap and no
// provider, and so cannot fail.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <openssl/md5.h>
#include <plx/digest.h>
#include <string.h>

#include "digest/file_pieces.h"
#include "digest/hex.h"

namespace {

using plx::digest::kLowerDigits;
using plx::digest::kUpperDigits;
using plx::digest::write_hex;

constexpr size_t kDigestSize = MD5_DIGEST_LENGTH;
constexpr size_t kTextSize = 2 * kDigestSize + 1;

class Md5 {
 public:
  Md5() { MD5_Init(&ctx_); }
  Md5& add(const void* data, size_t size) {
    MD5_Update(&ctx_, data, size);
    return *this;
  }
  const uint8_t* finish() {
    MD5_Final(digest_, &ctx_);
    return digest_;
  }

 private:
  MD5_CTX ctx_;
  uint8_t digest_[kDigestSize];
};

// Callers depend on a byte below 0x10 being one digit.
void write_unpadded_hex(char* out, const uint8_t* digest) {
  for (size_t i = 0; i < kDigestSize; ++i) {
    if (digest[i] >= 0x10) *out++ = kLowerDigits[digest[i] >> 4];
    *out++ = kLowerDigits[digest[i] & 15];
  }
}

}  // namespace

extern "C" {

char* PLX_md5_encode(const char* first, const char* second) {
  static char text[kTextSize];
  Md5 md5;
  md5.add(first, strlen(first));
  if (second != nullptr) md5.add(second, strlen(second));
  memset(text, 0, sizeof text);
  write_unpadded_hex(text, md5.finish());
  return text;
}

char* PLX_md5_163encode(const char* text) {
  static char upper_text[kTextSize];
  write_hex(upper_text, kTextSize, Md5().add(text, strlen(text)).finish(), kDigestSize,
            kUpperDigits);
  return upper_text;
}

int PLX_md5_encoder_buf(const void* data, unsigned int len, char* out, int outSize) {
  if (data == nullptr || out == nullptr) return -1;
  write_hex(out, outSize, Md5().add(data, len).finish(), kDigestSize);
  return 0;
}

int PLX_md5_encoder_file(const char* path, char* out, int outSize) {
  if (path == nullptr || out == nullptr) return -1;
  plx::OwnedFile file = plx::digest::open_or_report(path);
  if (file == nullptr) return -1;
  Md5 md5;
  plx::digest::for_each_piece(file.get(),
                              [&](const uint8_t* piece, size_t size) { md5.add(piece, size); });
  file.reset();
  write_hex(out, outSize, md5.finish(), kDigestSize);
  return 0;
}

}  // extern "C"
