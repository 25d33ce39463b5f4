#include "digest/compute.h"

#include <plx/digest.h>

#include <vector>

#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"
#include "support/stream.h"

namespace plx::tool {
namespace {

std::string hex_of(const unsigned char* digest, size_t size) {
  return to_hex({reinterpret_cast<const char*>(digest), size});
}

}  // namespace

std::string sha256_of(const std::string& source) {
  InputStream input(source);
  std::vector<unsigned char> piece(kPiece);
  Sha256Context sha;
  Sha256_Init(&sha);
  while (const size_t size = input.read(piece.data(), piece.size())) {
    Sha256_Update(&sha, piece.data(), static_cast<unsigned>(size));
  }
  unsigned char digest[32];
  Sha256_Final(&sha, digest);
  return hex_of(digest, sizeof digest);
}

std::string hmac_sha256_of(const std::string& source, const Secret& key) {
  InputStream input(source);
  std::vector<unsigned char> piece(kPiece);
  HmacSha256Ctx hmac;
  hmac_sha256_initialize(&hmac, key.data(), static_cast<int>(key.size()));
  while (const size_t size = input.read(piece.data(), piece.size())) {
    hmac_sha256_update(&hmac, piece.data(), static_cast<unsigned>(size));
  }
  hmac_sha256_finalize(&hmac, nullptr, 0);
  const std::string text = hex_of(hmac.digest, sizeof hmac.digest);
  wipe(&hmac, sizeof hmac);
  return text;
}

std::string stun_hmac_of(const std::string& source, const Secret& key) {
  const std::string message = read_whole(source, kLargestInput);
  unsigned char digest[20];
  if (stunHMAC(digest, reinterpret_cast<const unsigned char*>(message.data()), message.size(),
               key.data(), static_cast<int>(key.size())) == nullptr) {
    refuse("the library computes no STUN digest");
  }
  return hex_of(digest, sizeof digest);
}

std::string sha256_of_bytes(const std::string& bytes) {
  unsigned char digest[32];
  sha256_get(digest, reinterpret_cast<const unsigned char*>(bytes.data()),
             static_cast<unsigned>(bytes.size()));
  return hex_of(digest, sizeof digest);
}

}  // namespace plx::tool
