// The platform's refusals on demand. Memory that the library asks for is failed by
// support/allocation.h; here are libcrypto's memory, files, and random bytes.
#ifndef PLX_TESTS_FAILURE_FAULTS_H
#define PLX_TESTS_FAILURE_FAULTS_H

#include <stddef.h>

namespace plx_test {

enum class Step {
  kMemory,           // malloc, calloc, realloc, strdup, array-new, posix_memalign, valloc
  kLibcryptoMemory,  // CRYPTO_malloc and CRYPTO_realloc
  kOpen,             // open, fopen
  kRead,             // read and fread fail
  kShortRead,        // they give one byte where more were asked for
  kPosition,         // fseek, ftell
  kRandom,           // RAND_bytes
};
constexpr int kNumSteps = 7;
extern const char* const kStepNames[kNumSteps];

// While one lives, the n-th step of its kind fails, and with `all_later` every one after it.
// `fail_at` 0 fails nothing.
class StepFault {
 public:
  StepFault(Step step, size_t fail_at, bool all_later);
  ~StepFault();
  StepFault(const StepFault&) = delete;
  StepFault& operator=(const StepFault&) = delete;

  bool hit() const;
};

// Puts libcrypto on the allocator under control. To be called before anything of it is used.
void control_libcrypto_memory();
long live_libcrypto_blocks();

}  // namespace plx_test

#endif
