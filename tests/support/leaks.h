// Blocks that are lost on purpose, where a sanitizer watches; and lost descriptors.
#ifndef PLX_TESTS_SUPPORT_LEAKS_H
#define PLX_TESTS_SUPPORT_LEAKS_H

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define PLX_TESTS_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PLX_TESTS_UNDER_ASAN 1
#endif
#endif

#ifdef PLX_TESTS_UNDER_ASAN
#include <sanitizer/lsan_interface.h>
#endif

namespace plx_test {

// What is allocated while one of these lives may leak without a report.
class LeaksExpected {
 public:
#ifdef PLX_TESTS_UNDER_ASAN
  LeaksExpected() { __lsan_disable(); }
  ~LeaksExpected() { __lsan_enable(); }
#else
  LeaksExpected() {}
#endif
  LeaksExpected(const LeaksExpected&) = delete;
  LeaksExpected& operator=(const LeaksExpected&) = delete;
};

// Another one than before when a descriptor was left open.
inline int lowest_free_descriptor() {
  const int descriptor = dup(STDIN_FILENO);
  close(descriptor);
  return descriptor;
}

}  // namespace plx_test

#endif
