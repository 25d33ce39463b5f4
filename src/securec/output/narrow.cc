// Formatted output of narrow text.
#include <plx/securec.h>
#include <stdint.h>

#include "securec/output/engine.h"
#include "securec/output/format.h"

namespace plx::securec {
namespace {

// All ones, of 32 bits or of a size_t, stand for no limit.
bool is_unlimited(size_t count) { return count == SIZE_MAX || count == UINT32_MAX; }

}  // namespace

int format_text_list(char* dst, size_t dst_size, size_t count, const char* format, va_list args) {
  if (dst == nullptr || format == nullptr || !is_valid_size(dst_size) ||
      (count >= SECURE_MEM_LIMIT && !is_unlimited(count))) {
    return refuse(dst, dst_size);
  }
  if (count < dst_size) {
    const int result = format_bounded(dst, count + 1, format, args);
    // Callers depend on getting the cut text here, and nowhere else.
    if (result == kCut) return -1;
    return result >= 0 ? result : refuse(dst, dst_size);
  }
  const int result = format_whole(dst, dst_size, format, args);
  // Callers depend on a terminator at the very end, whatever the length of the text.
  dst[dst_size - 1] = 0;
  return result;
}

int format_text(char* dst, size_t dst_size, size_t count, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_text_list(dst, dst_size, count, format, args);
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
  return format_text_list(dest, destMax, count, format, args);
}

int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_text_list(dest, destMax, count, format, args);
  va_end(args);
  return result;
}

int securec_output_s(SecurecOutputStream* stream, const char* format, va_list args) {
  return run_exported(stream, format, args);
}

}  // extern "C"
