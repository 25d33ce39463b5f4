// Reading behind the end of a text. Bytes in the page of one that may be read may be read as well,
// as the C library's own searches do; what stands there must decide nothing.
#ifndef PLX_SRC_INTERNAL_READABLE_H
#define PLX_SRC_INTERNAL_READABLE_H

#include <stddef.h>
#include <stdint.h>

// A sanitizer would object. Where it watches, only what belongs to the text is read.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define PLX_READS_ARE_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer)
#define PLX_READS_ARE_CHECKED 1
#endif
#endif
#ifndef PLX_READS_ARE_CHECKED
#define PLX_READS_ARE_CHECKED 0
#endif

namespace plx {

constexpr size_t kSmallestPage = 4096;

// Bytes from `p` to the end of its page, at least one.
inline size_t bytes_to_page_end(const void* p) {
  return kSmallestPage - reinterpret_cast<uintptr_t>(p) % kSmallestPage;
}

}  // namespace plx

#endif
