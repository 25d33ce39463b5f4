// The vectors that key files are made with: one function for each key, computed at every call.
#include "cipher/key_vectors.h"

#include <plx/key_store.h>
#include <string.h>

#include "internal/wipe.h"
#include "securec/memory.h"

char g_szStbId[64] = {};

namespace plx::cipher {
namespace {

using Vector = SecretBytes<kVectorSize>;

// Adds the box identifier back to front: the terminator comes to byte 0, the last character to
// byte 1. An identifier that fills its array counts as terminated behind it.
void add_box_identifier(Vector& vector) {
  const size_t length = strnlen(g_szStbId, sizeof g_szStbId);
  for (size_t i = 0; i < kVectorSize && i <= length; ++i) {
    const size_t from = length - i;
    if (from < sizeof g_szStbId) vector.data()[i] += static_cast<unsigned char>(g_szStbId[from]);
  }
}

unsigned char* write_vector(VectorId id, unsigned char* dst, unsigned int dst_size) {
  if (!takes_vector(dst, dst_size)) return nullptr;
  Vector vector;
  compute_vector(id, vector.data());
  if (id == VectorId::kEpgProfile) add_box_identifier(vector);
  securec::copy_memory(dst, dst_size, vector.data(), kVectorSize);
  return dst;
}

}  // namespace

bool takes_vector(const unsigned char* dst, unsigned int dst_size) {
  return dst != nullptr && static_cast<int>(dst_size) >= kVectorSize;
}

unsigned char* instance_vector(unsigned char* dst, unsigned int dst_size) {
  return write_vector(VectorId::kInstance, dst, dst_size);
}

}  // namespace plx::cipher

using namespace plx::cipher;

extern "C" {

unsigned char* getVectorForSTBEncyptInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kStbKey, dst, dstSize);
}

unsigned char* getVectorForCipherPrefixInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kCipherPrefix, dst, dstSize);
}

unsigned char* getVectorForWhiteListInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kWhitelist, dst, dstSize);
}

unsigned char* getVectorForPVRFileInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kPvrFile, dst, dstSize);
}

unsigned char* getVectorForEPGProfileEncyptInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kEpgProfile, dst, dstSize);
}

unsigned char* getVectorForUpdateSTBInitKey(unsigned char* dst, unsigned int dstSize) {
  return write_vector(VectorId::kStbUpdate, dst, dstSize);
}

unsigned char* getInitVector(unsigned char* dst, unsigned int dstSize) {
  return instance_vector(dst, dstSize);
}

}  // extern "C"
