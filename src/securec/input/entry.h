// What the public functions of both widths do: refuse, set up a source, run the engine.
#ifndef PLX_SRC_SECUREC_INPUT_ENTRY_H
#define PLX_SRC_SECUREC_INPUT_ENTRY_H

#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "securec/input/clear_destination.h"
#include "securec/input/scanner.h"
#include "securec/input/source.h"
#include "securec/input/stream_sources.h"
#include "securec/keep_errno.h"

namespace plx::securec::input {

constexpr int kFailed = -1;

template <typename Char>
int run_engine(Source<Char>& source, const Char* format, va_list args) {
  return Scanner<Char>(source, format, args).scan();
}

inline size_t text_length(const char* text) { return strlen(text); }
inline size_t text_length(const wchar_t* text) { return wcslen(text); }

template <typename Char>
int scan_string(const Char* text, const Char* format, va_list args) {
  if (text == nullptr || format == nullptr) return kFailed;
  const size_t length = text_length(text);
  if (length == 0) {
    clear_first_destination(format, args);
    return kFailed;
  }
  if (length > INT_MAX) return kFailed;
  StringSource<Char> source(text, length);
  return std::max(run_engine<Char>(source, format, args), kFailed);
}

template <typename Char>
int scan_standard_input(const Char* format, va_list args) {
  if (format == nullptr) return kFailed;
  const KeepErrno keep_errno;
  StandardInput<Char> source;
  return std::max(run_engine<Char>(source, format, args), kFailed);
}

template <typename Char>
int scan_file(FILE* file, const Char* format, va_list args) {
  if (file == nullptr || format == nullptr) return kFailed;
  const KeepErrno keep_errno;
  FileSource<Char> source(file);
  return std::max(run_engine<Char>(source, format, args), kFailed);
}

}  // namespace plx::securec::input

#endif
