#include "keys/fingerprint.h"

#include <plx/cipher.h>
#include <plx/digest.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <string.h>

#include "internal/wipe.h"
#include "keys/key_table.h"
#include "support/failure.h"
#include "support/output.h"

namespace plx::tool {
namespace {

using VectorFunction = unsigned char* (*)(unsigned char*, unsigned int);

constexpr VectorFunction kVectors[] = {getVectorForSTBEncyptInitKey,
                                       getVectorForCipherPrefixInitKey,
                                       getVectorForWhiteListInitKey,
                                       getVectorForPVRFileInitKey,
                                       getVectorForEPGProfileEncyptInitKey,
                                       getVectorForUpdateSTBInitKey,
                                       getInitVector};

// The key suffix alone; with the IV suffix; with the default IV prefix as well.
constexpr const char* kRequests[] = {
    R"({"encryptMode":"ECB","cipherSize":128,"paddingMode":"PKCS5Padding",)"
    R"("cipherPrefix":"fingerprint.","plainText":"fingerprint" })",
    R"({"encryptMode":"CBC","cipherSize":128,"paddingMode":"PKCS5Padding",)"
    R"("cipherPrefix":"fingerprint.","IVPrefix":"fingerprint.","plainText":"fingerprint" })",
    R"({"encryptMode":"CBC","cipherSize":128,"paddingMode":"PKCS5Padding",)"
    R"("cipherPrefix":"fingerprint.","IVPrefix":"","plainText":"fingerprint" })"};

// Leaves the host's identifier out for as long as it lives.
class NoBox {
 public:
  NoBox() {
    memcpy_s(before_, sizeof before_, g_szStbId, kBoxIdLimit);
    memset_s(g_szStbId, kBoxIdLimit, 0, kBoxIdLimit);
  }
  ~NoBox() { memcpy_s(g_szStbId, kBoxIdLimit, before_, kBoxIdLimit); }
  NoBox(const NoBox&) = delete;
  NoBox& operator=(const NoBox&) = delete;

 private:
  char before_[kBoxIdLimit];
};

}  // namespace

std::string secrets_fingerprint() {
  const NoBox no_box;
  Sha256Ctx sha;
  sha256_initialize(&sha);
  for (const VectorFunction vector : kVectors) {
    SecretBytes<16> bytes;
    if (vector(bytes.data(), 16) == nullptr) refuse("the library builds no vector");
    sha256_update(&sha, bytes.data(), 16);
  }
  for (const char* request : kRequests) {
    char text[256] = {};
    if (PLX_AesEncry(request, text) != 1 || strlen(text) != 32) {
      refuse("the library does not answer a plain request");
    }
    sha256_update(&sha, reinterpret_cast<const unsigned char*>(text), 32);
  }
  sha256_finalize(&sha, nullptr, 0);
  return to_hex({reinterpret_cast<const char*>(sha.hash), sizeof sha.hash});
}

}  // namespace plx::tool
