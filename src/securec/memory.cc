#include "securec/memory.h"

#include "securec/small_blocks.h"

namespace plx::securec {

errno_t refuse_fill(void* dst, size_t dst_size, int c) {
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  // Callers depend on the refused fill using their value rather than zero.
  memset(dst, c, dst_size);
  return ERANGE_CLEARED;
}

errno_t refuse_move(void* dst, size_t dst_size, const void* src, size_t count) {
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_bytes(dst, dst_size, EINVAL_CLEARED);
  if (count > dst_size) return clear_bytes(dst, dst_size, ERANGE_CLEARED);
  return EOK;  // the same block, or a count of 0
}

errno_t refuse_copy(void* dst, size_t dst_size, const void* src, size_t count) {
  const errno_t code = refuse_move(dst, dst_size, src, count);
  if (code != EOK || dst == src) return code;
  if (ranges_overlap(dst, src, count)) return clear_bytes(dst, dst_size, EOVERLAP_CLEARED);
  return EOK;  // a count of 0
}

namespace {

[[gnu::noinline]] errno_t fill_large_block(void* dst, int c, size_t count) {
  return PlatformBlocks::fill(dst, c, count);
}

[[gnu::noinline]] errno_t copy_large_block(void* dst, const void* src, size_t count) {
  return PlatformBlocks::copy(dst, src, count);
}

[[gnu::noinline]] errno_t move_large_block(void* dst, const void* src, size_t count) {
  return PlatformBlocks::move(dst, src, count);
}

// The exported functions are entered for single fields more often than for anything else.
struct SmallBlocksInline {
  static constexpr bool kTestsSignOnSuccess = true;
  static errno_t fill(void* dst, int c, size_t count) {
    if (count > kMaxSmallBlock) return fill_large_block(dst, c, count);
    fill_small_block(dst, c, count);
    return EOK;
  }
  static errno_t copy(void* dst, const void* src, size_t count) {
    if (count > kMaxSmallBlock) return copy_large_block(dst, src, count);
    copy_small_block(dst, src, count);
    return EOK;
  }
  static errno_t move(void* dst, const void* src, size_t count) {
    if (count > kMaxSmallBlock) return move_large_block(dst, src, count);
    copy_small_block(dst, src, count);
    return EOK;
  }
};

using ByteOperation = errno_t (*)(void*, size_t, const void*, size_t);

// Both wide functions: their own capacity tests, then the byte function on sizes in bytes.
template <ByteOperation kOperation>
errno_t wide_operation(wchar_t* dst, size_t dst_count, const wchar_t* src, size_t count) {
  if (!is_valid_capacity<wchar_t>(dst_count)) return ERANGE;
  const size_t dst_size = dst_count * sizeof(wchar_t);
  if (count <= dst_count) return kOperation(dst, dst_size, src, count * sizeof(wchar_t));
  // Callers depend on ERANGE here for a null destination, where the byte functions say EINVAL.
  if (dst == nullptr) return ERANGE;
  return clear_bytes(dst, dst_size, ERANGE_CLEARED);
}

}  // namespace
}  // namespace plx::securec

using namespace plx::securec;

extern "C" {

errno_t memset_s(void* dest, size_t destMax, int c, size_t count) {
  return fill_memory<SmallBlocksInline>(dest, destMax, c, count);
}

errno_t memcpy_s(void* dest, size_t destMax, const void* src, size_t count) {
  return copy_memory<SmallBlocksInline>(dest, destMax, src, count);
}

errno_t memmove_s(void* dest, size_t destMax, const void* src, size_t count) {
  return move_memory<SmallBlocksInline>(dest, destMax, src, count);
}

errno_t wmemcpy_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return wide_operation<copy_memory<>>(dest, destMax, src, count);
}

errno_t wmemmove_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return wide_operation<move_memory<>>(dest, destMax, src, count);
}

void util_memmove(void* dest, const void* src, size_t count) {
  // The C library's move gives the same bytes in either direction.
  if (count != 0) memmove(dest, src, count);
}

}  // extern "C"
