// Owning handles for what is freed by a C function.
#ifndef PLX_SRC_INTERNAL_OWNED_H
#define PLX_SRC_INTERNAL_OWNED_H

#include <stdio.h>
#include <stdlib.h>

#include <memory>

namespace plx {

// A stateless deleter that calls one function, so that a handle is as large as a pointer.
template <auto kFree>
struct FreeWith {
  template <typename T>
  void operator()(T* object) const {
    kFree(object);
  }
};

template <typename T, auto kFree>
using Owned = std::unique_ptr<T, FreeWith<kFree>>;

struct CloseFile {
  void operator()(FILE* file) const { (void)fclose(file); }
};
using OwnedFile = std::unique_ptr<FILE, CloseFile>;

struct FreeBlock {
  void operator()(void* block) const { free(block); }
};
// Heap memory of the C allocator.
template <typename T>
using OwnedBlock = std::unique_ptr<T, FreeBlock>;

}  // namespace plx

#endif
