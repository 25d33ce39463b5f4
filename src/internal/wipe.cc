#include "internal/wipe.h"

#include <string.h>

namespace plx {

void wipe(void* data, size_t size) {
  if (size == 0) return;
  memset(data, 0, size);
  // The barrier makes the compiler believe that the zeroes are read.
  __asm__ __volatile__("" : : "r"(data) : "memory");
}

__attribute__((noinline)) void wipe_stack() {
  constexpr size_t kDepth = 512;  // the frames that this is for are smaller
  unsigned char left[kDepth];
  wipe(left, sizeof left);
}

}  // namespace plx
