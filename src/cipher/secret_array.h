// Heap blocks of this family: array-new, never above INT_MAX bytes, wiped when they are released.
#ifndef PLX_SRC_CIPHER_SECRET_ARRAY_H
#define PLX_SRC_CIPHER_SECRET_ARRAY_H

#include <limits.h>
#include <stddef.h>

#include <memory>
#include <new>

#include "internal/wipe.h"

namespace plx::cipher {

// A zeroed block for a caller to array-delete; null when memory is short.
inline unsigned char* new_zeroed_array(size_t size) {
  return size <= INT_MAX ? new (std::nothrow) unsigned char[size]() : nullptr;
}

struct WipeArray {
  size_t size = 0;
  void operator()(unsigned char* block) const {
    wipe(block, size);
    delete[] block;
  }
};
using SecretArray = std::unique_ptr<unsigned char[], WipeArray>;

// Empty when memory is short.
inline SecretArray make_secret_array(size_t size) {
  return SecretArray(new_zeroed_array(size), WipeArray{size});
}

inline char* text_of(const SecretArray& array) { return reinterpret_cast<char*>(array.get()); }

}  // namespace plx::cipher

#endif
