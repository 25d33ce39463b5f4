// Clearing memory that held a secret.
#ifndef PLX_SRC_INTERNAL_WIPE_H
#define PLX_SRC_INTERNAL_WIPE_H

#include <stddef.h>

namespace plx {

// Zeroes `size` bytes at `data`, which may be null when `size` is 0. The optimiser cannot remove
// the stores, although nobody reads the bytes afterwards.
void wipe(void* data, size_t size);

// Zeroes the `kDepth` bytes of the stack below the caller's frame, where finished calls have left
// what the compiler had no register for. Call it where the calls were made from.
template <size_t kDepth>
__attribute__((noinline)) void wipe_stack() {
  unsigned char left[kDepth];
  wipe(left, kDepth);
}

// Wipes what a digest has left of its message, or a key schedule of its key, on the stack, where
// compilers have too few registers for it or save code. gcc for speed on x86-64 has enough, and
// short messages would feel the time.
inline void wipe_spilled_words() {
#if defined(__clang__) || !defined(__x86_64__) || defined(__OPTIMIZE_SIZE__)
  wipe_stack<1024>();
#endif
}

// A buffer on the stack that wipes itself when it leaves scope. Starts zeroed.
template <size_t kSize>
class SecretBytes {
 public:
  SecretBytes() = default;
  ~SecretBytes() { wipe(bytes_, kSize); }
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;

  unsigned char* data() { return bytes_; }
  const unsigned char* data() const { return bytes_; }
  char* text() { return reinterpret_cast<char*>(bytes_); }
  static constexpr size_t size() { return kSize; }

 private:
  unsigned char bytes_[kSize] = {};
};

}  // namespace plx

#endif
