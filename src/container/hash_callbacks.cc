// Hash and compare callbacks for two kinds of keys. On null keys the two pairs differ, and callers
// depend on both: null numbers are equal, null strings are not.
#include <plx/container.h>
#include <string.h>

#include "internal/ascii.h"

namespace {

// Bytes of a key are weighed by powers of this; the sign bit of the sum is dropped.
constexpr uint32_t kStringHashFactor = 131;
constexpr uint32_t kStringHashMask = 0x7FFFFFFF;

}  // namespace

extern "C" {

uint32_t PLX_intHashValue(const void* key, uint32_t bucketCount) {
  return key != nullptr ? *static_cast<const uint32_t*>(key) % bucketCount : 0;
}

int PLX_intHashCompare(const void* a, const void* b) {
  if (a == nullptr || b == nullptr) return 0;
  return *static_cast<const uint32_t*>(a) == *static_cast<const uint32_t*>(b) ? 0 : 1;
}

uint32_t PLX_stringHashValue(const void* key, uint32_t bucketCount) {
  const char* text = static_cast<const char*>(key);
  if (text == nullptr || *text == 0) return 0;
  uint32_t hash = 0;
  // Two bytes a step, since each multiplication of the sum waits for the one before.
  for (; text[0] != 0 && text[1] != 0; text += 2) {
    const uint32_t pair =
        plx::ascii_to_upper(text[0]) * kStringHashFactor + plx::ascii_to_upper(text[1]);
    hash = hash * (kStringHashFactor * kStringHashFactor) + pair;
  }
  if (*text != 0) hash = hash * kStringHashFactor + plx::ascii_to_upper(*text);
  return (hash & kStringHashMask) % bucketCount;
}

int PLX_stringHashCompare(const void* a, const void* b) {
  if (a == nullptr || b == nullptr) return 1;
  return strcmp(static_cast<const char*>(a), static_cast<const char*>(b)) == 0 ? 0 : 1;
}

}  // extern "C"
