// The secrets of the product, from the file that PLX_SECRETS_FILE names: the texts that complete a
// JSON request, and the seeds and steps that the key vectors are computed from. No vector, nor the
// joined default IV, stands whole in the binary: what the optimiser could see through is handed
// out through pointers that it cannot.
#ifndef PLX_SRC_CIPHER_SECRETS_H
#define PLX_SRC_CIPHER_SECRETS_H

#include <stdint.h>

namespace plx::cipher {

constexpr int kVectorSize = 16;
constexpr int kMaxSteps = 32;

enum class Operation : uint8_t { kEnd, kAdd, kSubtract, kAnd, kOr, kXor, kDouble };

// Byte `dst` of the state becomes byte `a` `operation` byte `b`.
struct Step {
  Operation operation;
  uint8_t dst, a, b;
};

// Ends at the first step that is not given.
struct VectorRecipe {
  uint32_t seed[kVectorSize / 4];
  Step steps[kMaxSteps];
};

// One for each named key, in the order of the keys, and two that belong to no key.
enum class VectorId {
  kStbKey,
  kCipherPrefix,
  kWhitelist,
  kPvrFile,
  kEpgProfile,
  kStbUpdate,
  kInstance,
};
constexpr int kVectorCount = 7;

// Computes the vector, without what belongs to one box, into the kVectorSize bytes at `out`.
void compute_vector(VectorId id, unsigned char* out);

const char* key_suffix();         // 4 characters
const char* iv_suffix();          // 4 characters
const char* default_iv_prefix();  // 12 characters

constexpr int kFingerprintSize = 32;

// SHA-256 over everything in the secrets file, by which library, tool and key files are seen to
// match.
bool fingerprint_secrets(unsigned char* out);

// The secrets are those of the file that comes with the sources, and so are public.
bool secrets_are_samples();

}  // namespace plx::cipher

#endif
