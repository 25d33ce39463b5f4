// Formatted output of wide text.
#include <plx/securec.h>

#include "securec/output/engine.h"

using namespace plx::securec;

extern "C" {

int vswprintf_s(wchar_t* dest, size_t destMax, const wchar_t* format, va_list args) {
  return format_whole(dest, destMax, format, args);
}

int swprintf_s(wchar_t* dest, size_t destMax, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = format_whole(dest, destMax, format, args);
  va_end(args);
  return result;
}

int securec_woutput_s(SecurecWideOutputStream* stream, const wchar_t* format, va_list args) {
  return format_to_stream(stream, format, args);
}

}  // extern "C"
