#include "container/alloc.h"

#include <plx/container.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "securec/limits.h"

namespace plx {

void* allocate_zeroed(size_t size) {
  // A block above the limit could not be cleared through the bounds-checked functions.
  if (!securec::is_valid_size(size)) return nullptr;
  return calloc(1, size);
}

void* grow_block(void* old_block, size_t new_size, size_t old_size) {
  if (new_size > old_size && securec::is_valid_size(new_size)) {
    if (void* grown = realloc(old_block, new_size)) return grown;
  }
  free(old_block);
  return nullptr;
}

}  // namespace plx

extern "C" {

void* PLX_malloc(size_t size) { return plx::allocate_zeroed(size); }

void* PLX_realloc(void* block, size_t size) {
  // Callers depend on the block staying valid here, where the C realloc may free it.
  if (size == 0) return nullptr;
  return realloc(block, size);
}

void* PLX_reallocMem(void* oldBlock, size_t newSize, size_t oldLen) {
  return plx::grow_block(oldBlock, newSize, oldLen);
}

void PLX_free(void* block) { plx::release_block(block); }

char* PLX_strdup(const char* str) { return str != nullptr ? strdup(str) : nullptr; }

int PLX_posix_memalign(void** out, size_t alignment, size_t size) {
  return posix_memalign(out, alignment, size);
}

void* PLX_valloc(size_t size) {
#ifdef __ANDROID__  // has no valloc in its headers, and on 64-bit boxes none in its library
  void* block = nullptr;
  return posix_memalign(&block, static_cast<size_t>(sysconf(_SC_PAGESIZE)), size) == 0 ? block
                                                                                       : nullptr;
#else
  return valloc(size);
#endif
}

}  // extern "C"
