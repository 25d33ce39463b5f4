// Whatever prints as much as a count allows.
#ifndef PLX_TESTS_SECUREC_OUTPUT_COUNTED_H
#define PLX_TESTS_SECUREC_OUTPUT_COUNTED_H

#include <plx/securec.h>
#include <stdarg.h>

#include "securec/output/format.h"

namespace plx_test {

inline int print_counted_list(char* dst, size_t dst_size, size_t count, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = vsnprintf_s(dst, dst_size, count, format, args);
  va_end(args);
  return result;
}

constexpr decltype(&snprintf_s) kCounted[] = {snprintf_s, plx::securec::format_text,
                                              print_counted_list};

}  // namespace plx_test

#endif
