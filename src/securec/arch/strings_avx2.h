// Copies of texts by AVX2, 32 characters at a time and without a call into the C library. As there,
// bytes beside a text are looked at when an aligned vector holds them with some of its own: they
// lie in its page, and decide nothing.
#ifndef PLX_SRC_SECUREC_ARCH_STRINGS_AVX2_H
#define PLX_SRC_SECUREC_ARCH_STRINGS_AVX2_H

#include <plx/securec.h>
#include <stddef.h>

#include "internal/cpu.h"
#include "internal/readable.h"
#include "securec/memory.h"

// Where a sanitizer watches, the C library is asked, which the sanitizer knows.
#if defined(__x86_64__) && !PLX_READS_ARE_CHECKED
#define PLX_STRINGS_AVX2 1
#else
#define PLX_STRINGS_AVX2 0
#endif

namespace plx::securec {

// Whether `length` characters and a terminator do not overlap where they are copied to: the same as
// !ranges_overlap(dst, src, length + 1) for a length below the limit, in one comparison.
inline bool are_apart(const char* dst, const char* src, size_t length) {
  return distance(src, dst) + length > 2 * length;
}

// The full functions (string.cc), which know every refusal and its order. Cold, so that no branch
// is taken on the way to the copies: each would cost a cycle of ten.
[[gnu::noinline, gnu::cold]] errno_t copy_any_string(char* dst, size_t dst_size, const char* src);
// The first `known` characters hold no terminator; `known` is below dst_size.
errno_t copy_string_from(char* dst, size_t dst_size, const char* src, size_t known);

namespace avx2 {

constexpr bool kCompiled = PLX_STRINGS_AVX2;

// False until one of the full functions has asked, which spares the copies a frame.
inline bool is_ready() {
  return (cpu::g_features.load(std::memory_order_relaxed) & cpu::kAvx2) != 0;
}

// strcpy_s of texts that are not null and a valid size; what it cannot accept goes on to the full
// functions.
errno_t copy_string(char* dst, size_t dst_size, const char* src);

// Copies `src`, but no more than `count` characters, storing as it goes, and terminates. `count` is
// not 0; `dst` has room for count + 1, and they do not overlap these many of `src`.
errno_t copy_counted(char* dst, const char* src, size_t count);

}  // namespace avx2
}  // namespace plx::securec

#endif
