// Formatted input of narrow text.
#include <plx/securec.h>
#include <stdarg.h>

#include "securec/input/entry.h"

using namespace plx::securec::input;

extern "C" {

int vsscanf_s(const char* buffer, const char* format, va_list args) {
  return scan_string(buffer, format, args);
}

int sscanf_s(const char* buffer, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_string(buffer, format, args);
  va_end(args);
  return result;
}

int vscanf_s(const char* format, va_list args) { return scan_standard_input(format, args); }

int scanf_s(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_standard_input(format, args);
  va_end(args);
  return result;
}

int vfscanf_s(FILE* stream, const char* format, va_list args) {
  return scan_file(stream, format, args);
}

int fscanf_s(FILE* stream, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_file(stream, format, args);
  va_end(args);
  return result;
}

int securec_input_s(SecureInputSource* source, const char* format, va_list args) {
  if (source == nullptr || format == nullptr) return kFailed;
  return run_engine<char>(*source, format, args);
}

void clearDestBuf(const char*, const char* format, va_list args) {
  clear_first_destination(format, args);
}

}  // extern "C"
