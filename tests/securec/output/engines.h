// The formatters of both character widths under one name, ours and the C library's.
#ifndef PLX_TESTS_SECUREC_OUTPUT_ENGINES_H
#define PLX_TESTS_SECUREC_OUTPUT_ENGINES_H

#include <plx/securec.h>
#include <stdarg.h>
#include <stdio.h>
#include <wchar.h>

#include <string>

namespace plx_test {

template <typename Char>
struct Engine;

template <>
struct Engine<char> {
  using Stream = SecurecOutputStream;
  static constexpr size_t kLimit = SECURE_MEM_LIMIT;
  static constexpr auto ours = sprintf_s;
  static constexpr auto ours_list = vsprintf_s;
  static constexpr auto platform = snprintf;
  static constexpr auto run_list = securec_output_s;
};

template <>
struct Engine<wchar_t> {
  using Stream = SecurecWideOutputStream;
  static constexpr size_t kLimit = SECURE_WCHAR_LIMIT;
  static constexpr auto ours = swprintf_s;
  static constexpr auto ours_list = vswprintf_s;
  static constexpr auto platform = swprintf;
  static constexpr auto run_list = securec_woutput_s;
};

template <typename Char>
std::basic_string<Char> text_of(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

// Hand what follows the format to a function that takes a list.
template <typename Char>
int run(typename Engine<Char>::Stream* stream, const Char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = Engine<Char>::run_list(stream, format, args);
  va_end(args);
  return result;
}

template <typename Char>
int print_list(Char* dst, size_t dst_count, const Char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = Engine<Char>::ours_list(dst, dst_count, format, args);
  va_end(args);
  return result;
}

// What a format makes of its arguments; "refused" for -1.
template <typename Char, typename... Args>
std::basic_string<Char> print(const std::string& format, Args... args) {
  Char text[1000];
  const int size = Engine<Char>::ours(text, 1000, text_of<Char>(format).c_str(), args...);
  return size < 0 ? text_of<Char>("refused") : std::basic_string<Char>(text, text + size);
}

}  // namespace plx_test

#endif
