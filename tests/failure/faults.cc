#include "failure/faults.h"

#include <errno.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/types.h>

#include <algorithm>

extern "C" {
void* __real_malloc(size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
void* __real_valloc(size_t size);
int __real_posix_memalign(void** out, size_t alignment, size_t size);
void* __wrap_malloc(size_t size);
int __real_open(const char* path, int flags, ...);
ssize_t __real_read(int file, void* out, size_t size);
FILE* __real_fopen(const char* path, const char* mode);
size_t __real_fread(void* out, size_t size, size_t count, FILE* file);
int __real_fseek(FILE* file, long offset, int origin);
long __real_ftell(FILE* file);
int __real_RAND_bytes(unsigned char* out, int size);
int __real_PKCS5_PBKDF2_HMAC(const char* pass, int pass_size, const unsigned char* salt,
                             int salt_size, int iterations, const EVP_MD* digest, int size,
                             unsigned char* out);
}

namespace plx_test {

const char* const kStepNames[kNumSteps] = {"memory",     "libcrypto's memory", "open",  "read",
                                           "short read", "position",           "random"};

namespace {

struct Plan {
  bool active;
  Step step;
  size_t fail_at;
  bool all_later;
  size_t seen;
  bool hit;
};
Plan plan;
long live_blocks;

bool must_fail(Step step) {
  if (!plan.active || plan.step != step) return false;
  ++plan.seen;
  const bool fails = plan.fail_at != 0 &&
                     (plan.seen == plan.fail_at || (plan.all_later && plan.seen > plan.fail_at));
  plan.hit = plan.hit || fails;
  return fails;
}

void* crypto_malloc(size_t size, const char*, int) {
  void* block = must_fail(Step::kLibcryptoMemory) ? nullptr : __real_malloc(size);
  live_blocks += block != nullptr;
  return block;
}

void crypto_free(void* block, const char*, int) {
  live_blocks -= block != nullptr;
  __real_free(block);
}

void* crypto_realloc(void* block, size_t size, const char* file, int line) {
  if (block == nullptr) return crypto_malloc(size, file, line);
  if (size == 0) {
    crypto_free(block, file, line);
    return nullptr;
  }
  return must_fail(Step::kLibcryptoMemory) ? nullptr : __real_realloc(block, size);
}

}  // namespace

StepFault::StepFault(Step step, size_t fail_at, bool all_later) {
  plan = {true, step, fail_at, all_later, 0, false};
}
StepFault::~StepFault() { plan.active = false; }
bool StepFault::hit() const { return plan.hit; }

void control_libcrypto_memory() {
  if (!CRYPTO_set_mem_functions(crypto_malloc, crypto_realloc, crypto_free)) abort();
}
long live_libcrypto_blocks() { return live_blocks; }

}  // namespace plx_test

using plx_test::must_fail;
using plx_test::Step;

extern "C" {

// These two are allocations like any other.
int __wrap_posix_memalign(void** out, size_t alignment, size_t size) {
  void* probe = __wrap_malloc(1);
  if (probe == nullptr) return ENOMEM;
  __real_free(probe);
  return __real_posix_memalign(out, alignment, size);
}

void* __wrap_valloc(size_t size) {
  void* block = nullptr;
  return __wrap_posix_memalign(&block, 4096, size) == 0 ? block : nullptr;
}

int __wrap_open(const char* path, int flags, ...) {
  return must_fail(Step::kOpen) ? -1 : __real_open(path, flags);
}

ssize_t __wrap_read(int file, void* out, size_t size) {
  if (must_fail(Step::kRead)) return -1;
  return __real_read(file, out, must_fail(Step::kShortRead) ? std::min(size, size_t{1}) : size);
}

FILE* __wrap_fopen(const char* path, const char* mode) {
  return must_fail(Step::kOpen) ? nullptr : __real_fopen(path, mode);
}

size_t __wrap_fread(void* out, size_t size, size_t count, FILE* file) {
  if (must_fail(Step::kRead)) return 0;
  if (must_fail(Step::kShortRead)) return __real_fread(out, 1, 1, file) / size;
  return __real_fread(out, size, count, file);
}

int __wrap_fseek(FILE* file, long offset, int origin) {
  return must_fail(Step::kPosition) ? -1 : __real_fseek(file, offset, origin);
}

long __wrap_ftell(FILE* file) { return must_fail(Step::kPosition) ? -1 : __real_ftell(file); }

int __wrap_RAND_bytes(unsigned char* out, int size) {
  return must_fail(Step::kRandom) ? 0 : __real_RAND_bytes(out, size);
}

// Iterations cost time and change nothing else here.
int __wrap_PKCS5_PBKDF2_HMAC(const char* pass, int pass_size, const unsigned char* salt,
                             int salt_size, int iterations, const EVP_MD* digest, int size,
                             unsigned char* out) {
  return __real_PKCS5_PBKDF2_HMAC(pass, pass_size, salt, salt_size, std::min(iterations, 2), digest,
                                  size, out);
}

}  // extern "C"
