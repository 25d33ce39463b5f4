// Copy and append, narrow and wide. Two ways of copying stand here, for callers see the
// difference: strcpy_s and strncpy_s measure the source before they write, so a refused copy
// changes only the first character; every append and the wide copies store as they go, so a
// refused one leaves a partial text behind the cleared first character.
#include "securec/string.h"

#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "securec/arch/strings_avx2.h"
#include "securec/limits.h"
#include "securec/memory.h"
#include "securec/short_strings.h"

namespace plx::securec {
namespace {

constexpr size_t kNoLimit = SIZE_MAX;

// Length of `text`, reading no more than `max` characters.
inline size_t bounded_length(const char* text, size_t max) { return strnlen(text, max); }
inline size_t bounded_length(const wchar_t* text, size_t max) { return wcsnlen(text, max); }

template <typename Char>
inline void copy_chars(Char* dst, const Char* src, size_t count) {
  memcpy(dst, src, count * sizeof(Char));
}

// A refused string call empties the destination, and only that.
template <typename Char>
inline errno_t clear_first(Char* dst, errno_t code) {
  dst[0] = 0;
  return code;
}

// Stores `src` and its terminator at `out`, character by character as callers see it, until
// `limit` characters are stored or the `room` is full. The text overlaps when the write position
// reaches a source that lies above `dst`, or the read position reaches `dst` itself. `dst` is
// where the whole string starts, at or before `out`.
template <typename Char>
errno_t store_as_it_goes(Char* dst, Char* out, size_t room, const Char* src, size_t limit) {
  const size_t gap = (src > dst ? distance(out, src) : distance(src, dst)) / sizeof(Char);
  // Up to the gap nothing that is written is read again, so one block copy does the same.
  const size_t bound = std::min(std::min(room, limit), gap);
  const size_t length = bounded_length(src, bound);
  copy_chars(out, src, length);
  if (length < bound) {
    out[length] = 0;
    return EOK;
  }
  if (bound == room) return clear_first(dst, ERANGE_CLEARED);
  if (bound == gap) return clear_first(dst, EOVERLAP_CLEARED);
  out[length] = 0;
  return EOK;
}

template <typename Char>
errno_t append(Char* dst, size_t dst_count, const Char* src, size_t limit) {
  // The scan for the end stops where it would run into the source.
  const size_t gap = src > dst ? distance(dst, src) / sizeof(Char) : kNoLimit;
  const size_t bound = std::min(dst_count, gap);
  const size_t length = bounded_length(dst, bound);
  if (length == bound) {
    return clear_first(dst, bound == dst_count ? EINVAL_CLEARED : EOVERLAP_CLEARED);
  }
  if (limit == 0) return EOK;
  return store_as_it_goes(dst, dst + length, dst_count - length, src, limit);
}

template <typename Char>
errno_t append_any(Char* dst, size_t dst_count, const Char* src) {
  if (!is_valid_capacity<Char>(dst_count)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  return append(dst, dst_count, src, kNoLimit);
}

template <typename Char>
errno_t append_counted(Char* dst, size_t dst_count, const Char* src, size_t count) {
  if (!is_valid_capacity<Char>(dst_count)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  if (!is_valid_count<Char>(count)) return clear_first(dst, ERANGE_CLEARED);
  return append(dst, dst_count, src, count);
}

errno_t copy_wide(wchar_t* dst, size_t dst_count, const wchar_t* src) {
  if (!is_valid_capacity<wchar_t>(dst_count)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  if (dst == src) return EOK;
  const errno_t code = store_as_it_goes(dst, dst, dst_count, src, kNoLimit);
  // Callers depend on plain ERANGE for a source that does not fit, here and nowhere else.
  return code == ERANGE_CLEARED ? ERANGE : code;
}

errno_t copy_wide_counted(wchar_t* dst, size_t dst_count, const wchar_t* src, size_t count) {
  if (!is_valid_capacity<wchar_t>(dst_count)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  if (!is_valid_count<wchar_t>(count)) return clear_first(dst, ERANGE_CLEARED);
  if (count == 0) return clear_first(dst, EOK);
  return store_as_it_goes(dst, dst, dst_count, src, count);
}

[[gnu::noinline, gnu::cold]] errno_t copy_any_counted(char* dst, size_t dst_size, const char* src,
                                                      size_t count) {
  if constexpr (avx2::kCompiled) cpu::features();  // which makes the copies by AVX2 ready
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  if (!is_valid_count<char>(count)) return clear_first(dst, ERANGE_CLEARED);
  const size_t length = bounded_length(src, std::min(count, dst_size));
  if (length == dst_size) return clear_first(dst, ERANGE_CLEARED);
  if (dst != src) {
    if (ranges_overlap(dst, src, length + 1)) return clear_first(dst, EOVERLAP_CLEARED);
    copy_chars(dst, src, length);
  }
  dst[length] = 0;
  return EOK;
}

// Nothing is wrong with most calls.
[[gnu::always_inline]] inline errno_t copy_whole(char* dst, size_t dst_size, const char* src) {
  if constexpr (avx2::kCompiled) {
    if (is_valid_size(dst_size) && dst != nullptr && src != nullptr && avx2::is_ready()) {
      return avx2::copy_string(dst, dst_size, src);
    }
  }
  return copy_any_string(dst, dst_size, src);
}

[[gnu::always_inline]] inline errno_t copy_counted(char* dst, size_t dst_size, const char* src,
                                                   size_t count) {
  if constexpr (avx2::kCompiled) {
    // Not refused whatever the source's length, which therefore need not be known before it is
    // written. One comparison for 0 < count < dst_size.
    if (is_valid_size(dst_size) && count - 1 < dst_size - 1 && dst != nullptr && src != nullptr &&
        avx2::is_ready() && are_apart(dst, src, count)) {
      return avx2::copy_counted(dst, src, count);
    }
  }
  return copy_any_counted(dst, dst_size, src, count);
}

[[gnu::always_inline]] inline errno_t append_whole(char* dst, size_t dst_size, const char* src) {
  if (append_short_string(dst, dst_size, src)) return EOK;
  return append_any(dst, dst_size, src);
}

}  // namespace

errno_t copy_any_string(char* dst, size_t dst_size, const char* src) {
  if constexpr (avx2::kCompiled) cpu::features();  // which makes the copies by AVX2 ready
  if (!is_valid_size(dst_size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear_first(dst, EINVAL_CLEARED);
  return copy_string_from(dst, dst_size, src, 0);
}

errno_t copy_string_from(char* dst, size_t dst_size, const char* src, size_t known) {
  // A short text is measured and copied without a call into the C library; one whose start is known
  // here is past that.
  constexpr size_t kShort = 32;
  size_t length = known;
  while (length < std::min(kShort, dst_size) && src[length] != 0) ++length;
  if (length >= kShort) length += bounded_length(src + length, dst_size - length);
  if (length == dst_size) return clear_first(dst, ERANGE_CLEARED);
  if (dst == src) return EOK;
  if (ranges_overlap(dst, src, length + 1)) return clear_first(dst, EOVERLAP_CLEARED);
  if (length < kShort) {
    copy_to_32(dst, src, length + 1);
  } else {
    copy_chars(dst, src, length + 1);
  }
  return EOK;
}

errno_t copy_string(char* dst, size_t dst_size, const char* src) {
  return copy_whole(dst, dst_size, src);
}

errno_t copy_string(char* dst, size_t dst_size, const char* src, size_t count) {
  return copy_counted(dst, dst_size, src, count);
}

errno_t append_string(char* dst, size_t dst_size, const char* src) {
  return append_whole(dst, dst_size, src);
}

errno_t append_string(char* dst, size_t dst_size, const char* src, size_t count) {
  return append_counted(dst, dst_size, src, count);
}

}  // namespace plx::securec

using namespace plx::securec;

extern "C" {

errno_t strcpy_s(char* dest, size_t destMax, const char* src) {
  return copy_whole(dest, destMax, src);
}

errno_t strncpy_s(char* dest, size_t destMax, const char* src, size_t count) {
  return copy_counted(dest, destMax, src, count);
}

errno_t strcat_s(char* dest, size_t destMax, const char* src) {
  return append_whole(dest, destMax, src);
}

errno_t strncat_s(char* dest, size_t destMax, const char* src, size_t count) {
  return append_counted(dest, destMax, src, count);
}

errno_t wcscpy_s(wchar_t* dest, size_t destMax, const wchar_t* src) {
  return copy_wide(dest, destMax, src);
}

errno_t wcsncpy_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return copy_wide_counted(dest, destMax, src, count);
}

errno_t wcscat_s(wchar_t* dest, size_t destMax, const wchar_t* src) {
  return append_any(dest, destMax, src);
}

errno_t wcsncat_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count) {
  return append_counted(dest, destMax, src, count);
}

}  // extern "C"
