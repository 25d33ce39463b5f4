// Heap blocks as the rest of the library takes and gives them: hidden twins of the PLX_ wrappers,
// with the contracts of plx/container.h.
#ifndef PLX_SRC_CONTAINER_ALLOC_H
#define PLX_SRC_CONTAINER_ALLOC_H

#include <stddef.h>
#include <stdlib.h>

#include "securec/limits.h"

namespace plx {

// A block that its owner fills at once: as allocate_zeroed, but with indeterminate bytes.
inline void* allocate_block(size_t size) {
  return securec::is_valid_size(size) ? malloc(size) : nullptr;
}

// A zero-filled block; null for a size of 0, above 0x7FFFFFFF, or when memory is short.
void* allocate_zeroed(size_t size);

// Always consumes `old_block`: returns a larger block that starts with its `old_size` bytes, or
// null, with `old_block` freed, when `new_size` is not larger or memory is short.
void* grow_block(void* old_block, size_t new_size, size_t old_size);

inline void release_block(void* block) { free(block); }

template <typename T>
T* allocate_zeroed_record() {
  return static_cast<T*>(allocate_zeroed(sizeof(T)));
}

}  // namespace plx

#endif
