// Clearing memory that held a secret.
#ifndef PLX_SRC_INTERNAL_WIPE_H
#define PLX_SRC_INTERNAL_WIPE_H

#include <stddef.h>

namespace plx {

// Zeroes `size` bytes at `data`, which may be null when `size` is 0. The optimiser cannot remove
// the stores, although nobody reads the bytes afterwards.
void wipe(void* data, size_t size);

// Zeroes what finished calls have left on the stack below the caller's frame: the registers that the
// compiler has put there. Call it where the calls were made from.
void wipe_stack();

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
