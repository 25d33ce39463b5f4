// An allocator under the tests' control: it counts what lives and fails on demand. It stands
// between the library's objects and the C allocator by the linker's --wrap.
#ifndef PLX_TESTS_SUPPORT_ALLOCATION_H
#define PLX_TESTS_SUPPORT_ALLOCATION_H

#include <stddef.h>

namespace plx_test {

// While one of these lives, the n-th allocation from its creation on (1 is the next) fails, and
// with `all_later` every one after it too. Allocations of libcrypto are not seen. `fail_at` 0
// fails nothing.
class AllocationFault {
 public:
  explicit AllocationFault(size_t fail_at = 0, bool all_later = false);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  size_t allocations() const;  // asked for so far, failed ones included
  bool hit() const;            // something was made to fail
  long live_blocks() const;    // allocated minus freed since creation

  // Notes the next `room` blocks that are freed, in their order; the rest of `out` stays.
  void record_frees(void** out, size_t room);
};

// From now on these see each block of the library's when it has been allocated, and before it is
// freed; a block that moves is freed and allocated.
void look_at_blocks(void (*allocated)(const void* block), void (*freed)(const void* block));

}  // namespace plx_test

#endif
