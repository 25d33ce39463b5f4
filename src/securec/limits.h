// Which sizes the bounds-checked functions accept, for each character width.
#ifndef PLX_SRC_SECUREC_LIMITS_H
#define PLX_SRC_SECUREC_LIMITS_H

#include <plx/securec.h>
#include <stddef.h>
#include <wchar.h>

namespace plx::securec {

template <typename Char>
struct SizeLimit;

template <>
struct SizeLimit<char> {
  static constexpr size_t kMax = SECURE_MEM_LIMIT;
};

template <>
struct SizeLimit<wchar_t> {
  static constexpr size_t kMax = SECURE_WCHAR_LIMIT;
};

// A capacity, in characters, from 1 to the limit.
template <typename Char>
constexpr bool is_valid_capacity(size_t dst_count) {
  return dst_count - 1 < SizeLimit<Char>::kMax;
}

// A count of characters to copy; unlike a capacity it may be 0.
template <typename Char>
constexpr bool is_valid_count(size_t count) {
  return count <= SizeLimit<Char>::kMax;
}

constexpr bool is_valid_size(size_t dst_size) { return is_valid_capacity<char>(dst_size); }

}  // namespace plx::securec

#endif
