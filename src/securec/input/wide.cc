// Formatted input of wide text.
#include <plx/securec.h>
#include <stdarg.h>

#include "securec/input/entry.h"

using namespace plx::securec::input;

extern "C" {

int vswscanf_s(const wchar_t* buffer, const wchar_t* format, va_list args) {
  return scan_string(buffer, format, args);
}

int swscanf_s(const wchar_t* buffer, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_string(buffer, format, args);
  va_end(args);
  return result;
}

int vwscanf_s(const wchar_t* format, va_list args) { return scan_standard_input(format, args); }

int wscanf_s(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_standard_input(format, args);
  va_end(args);
  return result;
}

int vfwscanf_s(FILE* stream, const wchar_t* format, va_list args) {
  return scan_file(stream, format, args);
}

int fwscanf_s(FILE* stream, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = scan_file(stream, format, args);
  va_end(args);
  return result;
}

int securec_winput_s(SecureWideInputSource* source, const wchar_t* format, va_list args) {
  if (source == nullptr || format == nullptr) return kFailed;
  return run_engine<wchar_t>(*source, format, args);
}

void clearwDestBuf(const wchar_t*, const wchar_t* format, va_list args) {
  clear_first_destination(format, args);
}

}  // extern "C"
