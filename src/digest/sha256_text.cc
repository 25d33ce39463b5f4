// SHA-256 digests as text.
#include <plx/digest.h>

#include "digest/file_pieces.h"
#include "digest/hex.h"
#include "digest/sha256_constants.h"
#include "digest/sha256_staged.h"
#include "internal/wipe.h"

using namespace plx::digest;

extern "C" {

int PLX_sha256_encoder_buf(const unsigned char* data, int len, char* out, int outSize) {
  if (data == nullptr || len <= 0) return -1;
  if (out == nullptr || outSize <= 0) return -1;
  uint8_t digest[kSha256DigestSize];
  staged::hash(digest, data, static_cast<size_t>(len));
  write_hex(out, outSize, digest, sizeof digest);
  return 0;
}

int PLX_sha256_encoder_file(const char* path, char* out, int outSize) {
  if (path == nullptr || out == nullptr) return -1;
  plx::OwnedFile file = open_or_report(path);
  if (file == nullptr) return -1;
  Sha256Context ctx;
  staged::start(&ctx);
  for_each_piece(file.get(),
                 [&](const uint8_t* piece, size_t size) { staged::append(&ctx, piece, size); });
  file.reset();
  uint8_t digest[kSha256DigestSize];
  staged::finish(&ctx, digest);
  plx::wipe(&ctx, sizeof ctx);
  plx::wipe_spilled_words();
  write_hex(out, outSize, digest, sizeof digest);
  return 0;
}

}  // extern "C"
