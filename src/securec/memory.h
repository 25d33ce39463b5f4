// The memory functions as the rest of the library calls them. They are inline, so that the hot
// path is a handful of compares before the platform's copy, and hidden, so that no call leaves
// through an exported name.
#ifndef PLX_SRC_SECUREC_MEMORY_H
#define PLX_SRC_SECUREC_MEMORY_H

#include <plx/securec.h>
#include <stdint.h>
#include <string.h>

#include "securec/limits.h"

namespace plx::securec {

// Distance from `from` up to `to`, modulo the address space: below `count` exactly when `to` lies
// within the `count` bytes that start at `from`.
inline size_t distance(const void* from, const void* to) {
  return static_cast<size_t>(reinterpret_cast<uintptr_t>(to) - reinterpret_cast<uintptr_t>(from));
}

inline bool ranges_overlap(const void* a, const void* b, size_t size) {
  return distance(a, b) < size || distance(b, a) < size;
}

// How a block is filled or copied once the call is accepted; all return EOK.
struct PlatformBlocks {
  static constexpr bool kTestsSignOnSuccess = true;
  static errno_t fill(void* dst, int c, size_t count) {
    memset(dst, c, count);
    return EOK;
  }
  static errno_t copy(void* dst, const void* src, size_t count) {
    memcpy(dst, src, count);
    return EOK;
  }
  static errno_t move(void* dst, const void* src, size_t count) {
    memmove(dst, src, count);
    return EOK;
  }
};

// What an accepted call cannot be: these find out which refusal it is, or that there is nothing to
// do. Never inlined, so that the accepting calls are leaf functions without a frame.
[[gnu::noinline, gnu::cold]] errno_t refuse_fill(void* dst, size_t dst_size, int c);
[[gnu::noinline, gnu::cold]] errno_t refuse_copy(void* dst, size_t dst_size, const void* src,
                                                 size_t count);
[[gnu::noinline, gnu::cold]] errno_t refuse_move(void* dst, size_t dst_size, const void* src,
                                                 size_t count);

template <typename Blocks = PlatformBlocks>
inline errno_t fill_memory(void* dst, size_t dst_size, int c, size_t count) {
  // The size is tested on the refusing path only, save for its sign: a capacity of 0 with a count
  // of 0 succeeds, and callers depend on it.
  if (dst != nullptr && count <= dst_size) {
    if (Blocks::kTestsSignOnSuccess && dst_size > SECURE_MEM_LIMIT) return ERANGE;
    return Blocks::fill(dst, c, count);
  }
  return refuse_fill(dst, dst_size, c);
}

template <typename Blocks = PlatformBlocks>
inline errno_t copy_memory(void* dst, size_t dst_size, const void* src, size_t count) {
  // One comparison for 0 < count <= dst_size.
  if (count - 1 < dst_size && dst != nullptr && src != nullptr &&
      (!Blocks::kTestsSignOnSuccess || dst_size <= SECURE_MEM_LIMIT) &&
      !ranges_overlap(dst, src, count)) {
    return Blocks::copy(dst, src, count);
  }
  return refuse_copy(dst, dst_size, src, count);
}

template <typename Blocks = PlatformBlocks>
inline errno_t move_memory(void* dst, size_t dst_size, const void* src, size_t count) {
  if (count - 1 < dst_size && dst != nullptr && src != nullptr && dst_size <= SECURE_MEM_LIMIT &&
      dst != src) {
    return Blocks::move(dst, src, count);
  }
  return refuse_move(dst, dst_size, src, count);
}

// A refused call leaves nothing of the old contents behind: the whole destination is zeroed.
inline errno_t clear_bytes(void* dst, size_t dst_size, errno_t code) {
  memset(dst, 0, dst_size);
  return code;
}

}  // namespace plx::securec

#endif
