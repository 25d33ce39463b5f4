#include "internal/wipe.h"

#include <string.h>

namespace plx {

void wipe(void* data, size_t size) {
  if (size == 0) return;
  memset(data, 0, size);
  // The barrier makes the compiler believe that the zeroes are read.
  __asm__ __volatile__("" : : "r"(data) : "memory");
}

}  // namespace plx
