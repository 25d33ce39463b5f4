#include "securec/memory.h"

namespace plx::securec {

errno_t refuse_fill(void* dst, size_t dst_size, int c) {
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  // Callers depend on the refused fill using their value rather than zero.
  memset(dst, c, dst_size);
  return ERANGE_CLEARED;
}

errno_t refuse_copy(void* dst, size_t dst_size, const void* src, size_t count) {
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_bytes(dst, dst_size, EINVAL_CLEARED);
  if (count > dst_size) return clear_bytes(dst, dst_size, ERANGE_CLEARED);
  if (dst == src) return EOK;
  if (ranges_overlap(dst, src, count)) return clear_bytes(dst, dst_size, EOVERLAP_CLEARED);
  return EOK;  // a count of 0
}

namespace {

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
  return fill_memory(dest, destMax, c, count);
}

errno_t memcpy_s(void* dest, size_t destMax, const void* src, size_t count) {
  return copy_memory(dest, destMax, src, count);
}

errno_t memmove_s(void* dest, size_t destMax, const void* src, size_t count) {
  return move_memory(dest, destMax, src, count);
}

errno_t wmemcpy_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return wide_operation<copy_memory<>>(dest, destMax, src, count);
}

errno_t wmemmove_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return wide_operation<move_memory>(dest, destMax, src, count);
}

void util_memmove(void* dest, const void* src, size_t count) {
  // The C library's move gives the same bytes in either direction.
  if (count != 0) memmove(dest, src, count);
}

}  // extern "C"
