// Formatted output against the C library's, and two that take its place elsewhere. Formats and
// arguments are kept from the compiler, which would otherwise print some of them beforehand.
#include <fmt/format.h>
#include <plx/securec.h>
#include <stb/stb_sprintf.h>
#include <stdio.h>
#include <wchar.h>

#include <string>
#include <vector>

#include "bench/support.h"

namespace {

constexpr size_t kRoom = 64 * 1024 + 1;
char narrow[kRoom];
wchar_t wide[kRoom];

template <typename T>
T opaque(T value) {
  volatile T hidden = value;
  return hidden;
}

// `braces` is the same format as fmt writes it.
template <typename... Args>
void compare_narrow(const std::string& row, const char* text, const char* braces, size_t bytes,
                    Args... args) {
  const char* const format = opaque(text);
  const std::string name = "snprintf_s/" + row;
  plx_bench::compare(
      name, [=] { snprintf_s(narrow, kRoom, kRoom - 1, format, args...); },
      [=] { snprintf(narrow, kRoom, format, args...); }, bytes);
  plx_bench::add(
      name, "peer:stb", [=] { stbsp_snprintf(narrow, static_cast<int>(kRoom), format, args...); },
      bytes);
  plx_bench::add(
      name, "peer:fmt",
      [format = fmt::string_view(opaque(braces)), args...] {
        *fmt::format_to_n(narrow, kRoom - 1, fmt::runtime(format), args...).out = '\0';
      },
      bytes);
}

template <typename... Args>
void compare_wide(const std::string& row, const wchar_t* text, size_t bytes, Args... args) {
  const wchar_t* const format = opaque(text);
  plx_bench::compare(
      "swprintf_s/" + row, [=] { swprintf_s(wide, kRoom, format, args...); },
      [=] { swprintf(wide, kRoom, format, args...); }, bytes);
}

}  // namespace

void plx_bench::register_benchmarks() {
  const int number = opaque(12345);
  const long long large = opaque(123456789012345);
  const char* const text = opaque("hello, world");
  compare_narrow("%d", "%d", "{}", 0, number);
  compare_narrow("%s", "%s", "{}", 0, text);
  compare_narrow("%08x", "%08x", "{:08x}", 0, 0xbeef12);
  compare_narrow("mixed", "%5d %s %u %lld", "{:5} {} {} {}", 0, number, text, 77u, large);
  compare_narrow("%.3f", "%.3f", "{:.3f}", 0, opaque(3.14159));
  compare_wide("%d", L"%d", 0, number);
  compare_wide("mixed", L"%5d %u %lld", 0, number, 77u, large);

  // Texts of a size, as literal text and as an argument; they live as long as the program.
  static std::vector<std::string> texts;
  static std::vector<std::wstring> wide_texts;
  const size_t sizes[] = {16, 220, 1024, 16 * 1024, 64 * 1024};
  for (const size_t size : sizes) {
    texts.emplace_back(size, 'x');
    wide_texts.emplace_back(size, L'x');
  }
  for (size_t i = 0; i < texts.size(); ++i) {
    const size_t size = sizes[i];
    const std::string name = size < 1024 ? std::to_string(size) : std::to_string(size / 1024) + "K";
    const std::string literal = size == 220 ? "literal-220" : "literal/" + name;
    compare_narrow(literal, texts[i].c_str(), texts[i].c_str(), size);
    compare_wide(literal, wide_texts[i].c_str(), size * sizeof(wchar_t));
    compare_narrow("text/" + name, "%s", "{}", size, texts[i].c_str());
    compare_wide("text/" + name, L"%ls", size * sizeof(wchar_t), wide_texts[i].c_str());
  }
}
