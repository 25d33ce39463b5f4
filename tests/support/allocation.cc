#include "support/allocation.h"

#include <stdlib.h>
#include <string.h>

#include <new>

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
}

namespace {

// Plain data: it is used before and after every constructor.
struct State {
  bool active;
  size_t fail_at;
  bool all_later;
  size_t seen;
  bool hit;
  long live;
  void** frees;
  size_t frees_room;
};
thread_local State state;

void ignore(const void*) {}
void (*look_at_allocated)(const void* block) = ignore;
void (*look_at_freed)(const void* block) = ignore;

bool must_fail() {
  if (!state.active) return false;
  ++state.seen;
  const bool fail = state.fail_at != 0 && (state.seen == state.fail_at ||
                                           (state.all_later && state.seen > state.fail_at));
  state.hit = state.hit || fail;
  return fail;
}

void* counted(void* block) {
  if (block == nullptr) return nullptr;
  look_at_allocated(block);
  if (state.active) ++state.live;
  return block;
}

}  // namespace

extern "C" {

void* __wrap_malloc(size_t size) { return must_fail() ? nullptr : counted(__real_malloc(size)); }

void* __wrap_calloc(size_t count, size_t size) {
  return must_fail() ? nullptr : counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, size_t size) {
  if (must_fail()) return nullptr;
  if (block == nullptr) return counted(__real_malloc(size));
  look_at_freed(block);
  void* moved = __real_realloc(block, size);
  look_at_allocated(moved);
  return moved;
}

void __wrap_free(void* block) {
  if (block == nullptr) return;
  look_at_freed(block);
  if (state.active) {
    --state.live;
    if (state.frees_room > 0) {
      --state.frees_room;
      *state.frees++ = block;
    }
  }
  __real_free(block);
}

char* __wrap_strdup(const char* text) {
  const size_t size = strlen(text) + 1;
  void* copy = __wrap_malloc(size);
  return copy != nullptr ? static_cast<char*>(memcpy(copy, text, size)) : nullptr;
}

}  // extern "C"

// Array-new of the library goes the same way.
void* operator new(size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size); }
void* operator new(size_t size) {
  void* block = __wrap_malloc(size);
  if (block == nullptr) abort();
  return block;
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block, size_t) noexcept { __wrap_free(block); }

namespace plx_test {

AllocationFault::AllocationFault(size_t fail_at, bool all_later) {
  state = {true, fail_at, all_later, 0, false, 0, nullptr, 0};
}
AllocationFault::~AllocationFault() { state.active = false; }
size_t AllocationFault::allocations() const { return state.seen; }
bool AllocationFault::hit() const { return state.hit; }
long AllocationFault::live_blocks() const { return state.live; }
void AllocationFault::record_frees(void** out, size_t room) {
  state.frees = out;
  state.frees_room = room;
}

void look_at_blocks(void (*allocated)(const void*), void (*freed)(const void*)) {
  look_at_allocated = allocated;
  look_at_freed = freed;
}

}  // namespace plx_test
