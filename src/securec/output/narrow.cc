// Formatted output of narrow text.
#include <plx/securec.h>
#include <stdint.h>

#include "securec/output/engine.h"
#include "securec/output/format.h"

namespace plx::securec {
namespace {

// All ones, of 32 bits or of a size_t, stand for no limit.
bool is_unlimited(size_t count) { return count == SIZE_MAX || count == UINT32_MAX; }

// Inlined into each of its callers: this is most of what a short format costs.
inline __attribute__((always_inline)) int format_counted(char* dst, size_t dst_size, size_t count,
                                                         const char* format, va_list args) {
  if (dst == nullptr || format == nullptr || !is_valid_size(dst_size) ||
      (count >= SECURE_MEM_LIMIT && !is_unlimited(count))) {
    return refuse(dst, dst_size);
  }
  const bool may_cut = count < dst_size;
  const int result = vsnprintf_helper(dst, may_cut ? count + 1 : dst_size, format, args);
  // Callers depend on a terminator at the very end, whatever the length of the text, when the
  // count sets no limit, and on getting the cut text, here and nowhere else, when it does.
  if (!may_cut) dst[dst_size - 1] = 0;
  if (result >= 0) return result;
  return may_cut && result == kCut ? -1 : refuse(dst, dst_size);
}

}  // namespace

int format_text(char* dst, size_t dst_size, size_t count, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_counted(dst, dst_size, count, format, args);
  va_end(args);
  return result;
}

}  // namespace plx::securec

using namespace plx::securec;

extern "C" {

int vsprintf_s(char* dest, size_t destMax, const char* format, va_list args) {
  return format_whole(dest, destMax, format, args);
}

int sprintf_s(char* dest, size_t destMax, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_whole(dest, destMax, format, args);
  va_end(args);
  return result;
}

int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args) {
  return format_counted(dest, destMax, count, format, args);
}

int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_counted(dest, destMax, count, format, args);
  va_end(args);
  return result;
}

int securec_output_s(SecurecOutputStream* stream, const char* format, va_list args) {
  return format_to_stream(stream, format, args);
}

}  // extern "C"
