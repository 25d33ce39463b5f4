// The copies and appends of both widths by one name, and naive models of them that work character
// by character.
#ifndef PLX_FUZZ_STRING_MODEL_H
#define PLX_FUZZ_STRING_MODEL_H

#include <plx/securec.h>
#include <stddef.h>

#include <algorithm>
#include <vector>

namespace plx_test {

template <typename Char>
struct Calls;

template <>
struct Calls<char> {
  using Char = char;
  static constexpr size_t kLimit = SECURE_MEM_LIMIT;
  static constexpr bool kMeasuresFirst = true;
  static constexpr errno_t kCopyDoesNotFit = ERANGE_CLEARED;
  static errno_t copy(char* d, size_t n, const char* s) { return strcpy_s(d, n, s); }
  static errno_t copy(char* d, size_t n, const char* s, size_t c) { return strncpy_s(d, n, s, c); }
  static errno_t append(char* d, size_t n, const char* s) { return strcat_s(d, n, s); }
  static errno_t append(char* d, size_t n, const char* s, size_t c) {
    return strncat_s(d, n, s, c);
  }
};

template <>
struct Calls<wchar_t> {
  using Char = wchar_t;
  static constexpr size_t kLimit = SECURE_WCHAR_LIMIT;
  static constexpr bool kMeasuresFirst = false;
  static constexpr errno_t kCopyDoesNotFit = ERANGE;  // callers depend on it, wcscpy_s alone
  static errno_t copy(wchar_t* d, size_t n, const wchar_t* s) { return wcscpy_s(d, n, s); }
  static errno_t copy(wchar_t* d, size_t n, const wchar_t* s, size_t c) {
    return wcsncpy_s(d, n, s, c);
  }
  static errno_t append(wchar_t* d, size_t n, const wchar_t* s) { return wcscat_s(d, n, s); }
  static errno_t append(wchar_t* d, size_t n, const wchar_t* s, size_t c) {
    return wcsncat_s(d, n, s, c);
  }
};

constexpr size_t kWhole = static_cast<size_t>(-1);

template <typename Char>
errno_t empty(Char* dst, errno_t code) {
  *dst = 0;
  return code;
}

// Stores one character at a time and looks for the overlap before each.
template <typename Char>
errno_t model_store(Char* dst, Char* out, size_t room, const Char* src, size_t limit) {
  const bool above = src > dst;
  const Char* start = src;
  for (; room > 0; --room, --limit) {
    if (above ? out == start : src == dst) return empty(dst, EOVERLAP_CLEARED);
    if (limit == 0) return empty(out, EOK);
    if ((*out++ = *src++) == 0) return EOK;
  }
  return empty(dst, ERANGE_CLEARED);
}

template <typename Char>
errno_t model_append(Char* dst, size_t room, const Char* src, size_t limit) {
  Char* out = dst;
  for (;; ++out, --room) {
    if (room == 0) return empty(dst, EINVAL_CLEARED);
    if (src > dst && out == src) return empty(dst, EOVERLAP_CLEARED);
    if (*out == 0) break;
  }
  if (limit == 0) return EOK;
  return model_store(dst, out, room, src, limit);
}

template <typename Char>
errno_t model_copy(Char* dst, size_t room, const Char* src, size_t limit) {
  if (limit == 0) return empty(dst, EOK);
  const bool whole = limit == kWhole;
  if (dst == src && whole && !Calls<Char>::kMeasuresFirst) return EOK;
  if (!Calls<Char>::kMeasuresFirst) {
    const errno_t code = model_store(dst, dst, room, src, limit);
    return code == ERANGE_CLEARED && whole ? Calls<Char>::kCopyDoesNotFit : code;
  }
  size_t length = 0;
  while (length < limit && src[length] != 0) {
    if (++length == room) return empty(dst, ERANGE_CLEARED);
  }
  if (dst == src && whole) return EOK;
  const Char* low = std::min<const Char*>(dst, src);
  const Char* high = std::max<const Char*>(dst, src);
  if (dst != src && low + length + 1 > high) return empty(dst, EOVERLAP_CLEARED);
  const std::vector<Char> text(src, src + length);
  std::copy(text.begin(), text.end(), dst);
  dst[length] = 0;
  return EOK;
}

}  // namespace plx_test

#endif
