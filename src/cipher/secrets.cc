#include "cipher/secrets.h"

#include <string.h>

#include "cipher/evp.h"
#include "internal/wipe.h"

namespace plx::cipher {
namespace {

// The vocabulary of the secrets file.
constexpr Step add(int dst, int a, int b) {
  return {Operation::kAdd, uint8_t(dst), uint8_t(a), uint8_t(b)};
}
constexpr Step subtract(int dst, int a, int b) {
  return {Operation::kSubtract, uint8_t(dst), uint8_t(a), uint8_t(b)};
}
constexpr Step bit_and(int dst, int a, int b) {
  return {Operation::kAnd, uint8_t(dst), uint8_t(a), uint8_t(b)};
}
constexpr Step bit_or(int dst, int a, int b) {
  return {Operation::kOr, uint8_t(dst), uint8_t(a), uint8_t(b)};
}
constexpr Step bit_xor(int dst, int a, int b) {
  return {Operation::kXor, uint8_t(dst), uint8_t(a), uint8_t(b)};
}
constexpr Step doubled(int dst, int a, int b) {
  return {Operation::kDouble, uint8_t(dst), uint8_t(a), uint8_t(b)};
}

#include PLX_SECRETS_FILE

constexpr VectorRecipe kRecipes[kVectorCount] = {
    kStbKeyVector,     kCipherPrefixVector, kWhitelistVector, kPvrFileVector,
    kEpgProfileVector, kStbUpdateVector,    kInstanceVector};

constexpr uint8_t apply(Operation operation, unsigned a, unsigned b) {
  switch (operation) {
    case Operation::kAdd:
      return uint8_t(a + b);
    case Operation::kSubtract:
      return uint8_t(a - b);
    case Operation::kAnd:
      return uint8_t(a & b);
    case Operation::kOr:
      return uint8_t(a | b);
    case Operation::kXor:
      return uint8_t(a ^ b);
    case Operation::kDouble:
      return uint8_t(b < 8 ? a << b : 0);
    case Operation::kEnd:
      break;
  }
  return 0;
}

constexpr void follow(const VectorRecipe& recipe, unsigned char* state) {
  for (int i = 0; i < kVectorSize; ++i) {
    state[i] = uint8_t(recipe.seed[i / 4] >> (8 * (i % 4)));
  }
  for (const Step& step : recipe.steps) {
    if (step.operation == Operation::kEnd) break;
    state[step.dst] = apply(step.operation, state[step.a], state[step.b]);
  }
}

// Every byte number is within the state, and every byte is rewritten.
constexpr bool is_complete(const VectorRecipe& recipe) {
  unsigned rewritten = 0;
  for (const Step& step : recipe.steps) {
    if (step.operation == Operation::kEnd) break;
    if (step.dst >= kVectorSize || step.a >= kVectorSize || step.b >= kVectorSize) return false;
    rewritten |= 1u << step.dst;
  }
  return rewritten == (1u << kVectorSize) - 1;
}

constexpr bool all_complete() {
  for (const VectorRecipe& recipe : kRecipes) {
    if (!is_complete(recipe)) return false;
  }
  return true;
}

constexpr bool alike(const VectorRecipe& one, const VectorRecipe& other) {
  unsigned char a[kVectorSize] = {}, b[kVectorSize] = {};
  follow(one, a);
  follow(other, b);
  for (int i = 0; i < kVectorSize; ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

constexpr bool all_different() {
  for (int i = 0; i < kVectorCount; ++i) {
    for (int j = 0; j < i; ++j) {
      if (alike(kRecipes[i], kRecipes[j])) return false;
    }
  }
  return true;
}

static_assert(sizeof(kKeySuffix) == 4 + 1, "the key suffix has 4 characters");
static_assert(sizeof(kIvSuffix) == 4 + 1, "the IV suffix has 4 characters");
static_assert(sizeof(kDefaultIvPrefix) == 12 + 1, "the default IV prefix has 12 characters");
static_assert(all_complete(), "a vector has a byte that no step rewrites, or a byte above 15");
static_assert(all_different(), "two vectors are alike");

// From here on the optimiser does not know what `pointer` points at, so it cannot do at compile
// time what must happen at run time.
template <typename T>
const T* conceal(const T* pointer) {
  __asm__ __volatile__("" : "+r"(pointer));
  return pointer;
}

}  // namespace

void compute_vector(VectorId id, unsigned char* out) {
  follow(*conceal(&kRecipes[static_cast<int>(id)]), out);
}

const char* key_suffix() { return conceal(kKeySuffix); }
const char* iv_suffix() { return conceal(kIvSuffix); }
const char* default_iv_prefix() { return conceal(kDefaultIvPrefix); }

bool fingerprint_secrets(unsigned char* out) {
  constexpr size_t kTexts = sizeof(kKeySuffix) + sizeof(kIvSuffix) + sizeof(kDefaultIvPrefix);
  SecretBytes<kTexts + kVectorCount * kVectorSize> all;
  unsigned char* at = all.data();
  memcpy(at, key_suffix(), sizeof(kKeySuffix));
  memcpy(at += sizeof(kKeySuffix), iv_suffix(), sizeof(kIvSuffix));
  memcpy(at += sizeof(kIvSuffix), default_iv_prefix(), sizeof(kDefaultIvPrefix));
  at += sizeof(kDefaultIvPrefix);
  for (int i = 0; i < kVectorCount; ++i, at += kVectorSize) {
    compute_vector(static_cast<VectorId>(i), at);
  }
  const ErrorMark mark;
  return EVP_Digest(all.data(), all.size(), out, nullptr, EVP_sha256(), nullptr) == 1;
}

bool secrets_are_samples() { return PLX_SAMPLE_SECRETS != 0; }

}  // namespace plx::cipher
