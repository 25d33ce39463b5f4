// Formatted output: formats built with arguments that match them, and formats of any bytes.
//
// A built format holds one conversion between literal texts, and a plain "%d" behind it, which
// shows that no more and no less than its arguments were taken. Its text must be the C library's
// wherever the two agree by design, the same in both widths where it is ASCII, and in a room of any
// size the same as far as that goes. Formats of any bytes stay within their room, and both widths
// make the same of them.
#include <limits.h>
#include <locale.h>
#include <plx/securec.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

void check(bool holds, const char* property, const std::string& format) {
  if (holds) return;
  fprintf(stderr, "broken: %s\nformat: %s\n", property, format.c_str());
  abort();
}

// What is left of the input; zeros when nothing is.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  template <typename T>
  T take() {
    T value = {};
    const size_t count = std::min(size_, sizeof value);
    memcpy(&value, data_, count);
    drop(count);
    return value;
  }
  size_t below(size_t limit) { return take<uint16_t>() % limit; }
  bool flip() { return take<uint8_t>() % 2 != 0; }
  std::string text(size_t limit) {
    const size_t count = std::min(take<uint8_t>() % (limit + 1), size_);
    const std::string text(reinterpret_cast<const char*>(data_), count);
    drop(count);
    return text;
  }
  std::string rest() { return {reinterpret_cast<const char*>(data_), size_}; }

 private:
  void drop(size_t count) {
    data_ += count;
    size_ -= count;
  }

  const uint8_t* data_;
  size_t size_;
};

constexpr size_t kRoom = 12000;  // more than any built format prints

struct Built {
  std::string format;
  std::string flags;
  int width = 0;
  int precision = -1;
  std::vector<int> stars;
  bool is_ascii = true;       // so is everything it prints
  bool is_platform = true;    // the C library prints the same
  bool is_wide_alike = true;  // and so it does in wide text

  bool has(char flag) const { return flags.find(flag) != std::string::npos; }
};

template <typename Char>
std::basic_string<Char> widen(const std::string& text) {
  std::basic_string<Char> wide;
  for (const char c : text) wide += static_cast<Char>(static_cast<unsigned char>(c));
  return wide;
}

// ---- Properties of one call ---------------------------------------------------------------------

// The text of a call in a buffer of exactly `room` characters, where a sanitizer sees a write
// outside, must be that of the unlimited call, or be emptied.
template <typename Char, typename Call>
void check_room(const std::basic_string<Char>& text, size_t room, const Built& built, Call call) {
  std::vector<Char> dst(room, 0x55);
  const int result = call(dst.data(), room);
  const bool fits = text.size() < room;
  check(result == (fits ? static_cast<int>(text.size()) : -1), "result in a room", built.format);
  if (!fits) dst[0] = text[0];
  const size_t kept = fits ? text.size() : room - 1;
  check(std::equal(dst.begin(), dst.begin() + kept, text.begin()), "text in a room", built.format);
  check(room == 1 || dst[kept] == 0, "terminator in a room", built.format);
  check(std::all_of(dst.begin() + kept + 1, dst.end(), [](Char c) { return c == 0x55; }),
        "bytes behind the text", built.format);
}

template <typename... Args>
void check_count(const std::string& text, size_t count, const Built& built, Args... args) {
  std::vector<char> dst(count + 2, 0x55);
  const int result = snprintf_s(dst.data(), dst.size(), count, built.format.c_str(), args...);
  const size_t kept = std::min(count, text.size());
  check(result == (text.size() <= count ? static_cast<int>(text.size()) : -1), "result of a count",
        built.format);
  check(std::equal(dst.begin(), dst.begin() + kept, text.begin()) && dst[kept] == 0 &&
            dst[count + 1] == 0x55,
        "text of a count", built.format);
}

template <typename... Args>
void check_call(const Built& built, size_t room, Args... args) {
  static char ours[kRoom], theirs[kRoom];
  static wchar_t wide_ours[kRoom], wide_theirs[kRoom];
  const char* const format = built.format.c_str();
  const std::wstring wide_format = widen<wchar_t>(built.format);
  const int size = sprintf_s(ours, kRoom, format, args...);
  const int wide_size = swprintf_s(wide_ours, kRoom, wide_format.c_str(), args...);
  if (built.is_ascii) {
    check(size >= 0 && size == wide_size, "both widths print as much", built.format);
    check(std::equal(ours, ours + size + 1, wide_ours), "both widths print the same", built.format);
  }
  if (built.is_platform) {
    check(snprintf(theirs, kRoom, format, args...) == size, "the C library's size", built.format);
    check(memcmp(ours, theirs, size + 1) == 0, "the C library's text", built.format);
  }
  if (built.is_platform && built.is_wide_alike && built.is_ascii) {
    check(swprintf(wide_theirs, kRoom, wide_format.c_str(), args...) == wide_size,
          "the C library's wide size", built.format);
    check(wmemcmp(wide_ours, wide_theirs, wide_size + 1) == 0, "the C library's wide text",
          built.format);
  }
  if (size >= 0) {
    const std::string text(ours, ours + size);
    check_room(text, room % (text.size() + 3) + 1, built,
               [&](char* dst, size_t count) { return sprintf_s(dst, count, format, args...); });
    check_count(text, room % (text.size() + 2), built, args...);
  }
  if (wide_size >= 0) {
    const std::wstring text(wide_ours, wide_ours + wide_size);
    check_room(text, room % (text.size() + 3) + 1, built, [&](wchar_t* dst, size_t count) {
      return swprintf_s(dst, count, wide_format.c_str(), args...);
    });
  }
}

// ---- Formats with matching arguments ------------------------------------------------------------

template <typename Value>
void check_value(const Built& built, size_t room, Value value) {
  const std::vector<int>& stars = built.stars;
  constexpr int kBehind = 4711;
  switch (stars.size()) {
    case 0:
      return check_call(built, room, value, kBehind);
    case 1:
      return check_call(built, room, stars[0], value, kBehind);
    default:
      return check_call(built, room, stars[0], stars[1], value, kBehind);
  }
}

std::string literal(Input* input) {
  std::string text;
  for (const char c : input->text(20)) {
    text += static_cast<char>(' ' + static_cast<unsigned char>(c) % 95);
    if (text.back() == '%') text += '%';
  }
  return text;
}

// Everything between '%' and the size.
std::string field(Input* input, Built* built) {
  const uint8_t set = input->take<uint8_t>();
  for (int bit = 0; bit < 5; ++bit) {
    if (set & 1 << bit) built->flags += "-+ #0"[bit];
  }
  std::string text = "%" + built->flags;
  if (set & 0x20) {
    built->width = static_cast<int>(input->below(set & 0x40 ? 40 : 2500));
    if (input->flip()) {
      built->stars.push_back(input->flip() ? built->width : -built->width);
      text += '*';
    } else if (built->width != 0) {
      text += std::to_string(built->width);
    }
  }
  if (set & 0x80) {
    const int precision = static_cast<int>(input->below(set & 0x40 ? 40 : 2500));
    built->precision = precision;
    if (!input->flip()) return text + '.' + std::to_string(precision);
    if (input->flip()) built->precision = -1;
    built->stars.push_back(built->precision < 0 ? -1 - precision : precision);
    text += ".*";
  }
  return text;
}

template <typename Value>
void check_number(Input* input, Built* built, const std::string& conversion, Value value) {
  built->format += conversion + literal(input) + "%d";
  check_value(*built, input->take<uint16_t>(), value);
}

void check_integer(Input* input, Built* built) {
  const char letter = "diuoxX"[input->below(6)];
  const long long value = input->flip() ? input->take<long long>() : input->take<int8_t>();
  // More than 512 digits are not asked for.
  built->is_platform = built->precision <= 512;
  switch (input->below(6)) {
    case 0:
      return check_number(input, built, std::string("hh") + letter, static_cast<int>(value));
    case 1:
      return check_number(input, built, std::string("h") + letter, static_cast<int>(value));
    case 2:
      return check_number(input, built, std::string("l") + letter, static_cast<long>(value));
    case 3:
      return check_number(input, built, std::string("z") + letter, static_cast<size_t>(value));
    case 4:
      // The C library of 32 bits loses the digit of a wide zero that has '0' but no width.
      built->is_wide_alike = sizeof(long) == 8 || !built->has('0') || built->width != 0;
      return check_number(input, built, std::string("ll") + letter, value);
    default:
      return check_number(input, built, std::string(1, letter), static_cast<int>(value));
  }
}

void check_float(Input* input, Built* built) {
  const std::string letter(1, "efgEFG"[input->below(6)]);
  const double value = input->flip() ? input->take<double>() : input->take<int32_t>() / 1000.0;
  if (input->flip()) return check_number(input, built, letter, value);
  check_number(input, built, "L" + letter, static_cast<long double>(value) * 1.00000000000000001L);
}

void check_pointer(Input* input, Built* built) {
  void* const value = reinterpret_cast<void*>(input->take<uintptr_t>());
  // Signs are for numbers, zeros hold beside a precision, and "(nil)" is never cut.
  built->is_platform = !built->has('+') && !built->has(' ') && built->precision <= 512 &&
                       (built->precision < 0 || (!built->has('0') && value != nullptr));
  check_number(input, built, "p", value);
}

void check_text(Input* input, Built* built) {
  const std::string bytes = input->text(60);
  const std::string text(bytes.c_str());  // up to a first zero
  built->is_ascii = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
  const bool is_null = input->flip() && input->flip();
  // The C library prints nothing rather than a part of "(null)".
  if (is_null) built->is_platform = built->precision < 0 || built->precision >= 6;
  if (input->flip()) return check_number(input, built, "s", is_null ? nullptr : text.c_str());
  // Widths count the characters of converted text, not its bytes.
  built->is_platform = built->is_platform && (built->is_ascii || is_null);
  std::wstring wide = widen<wchar_t>(text);
  if (!wide.empty() && !built->is_ascii && input->flip()) wide[0] = input->take<wchar_t>();
  check_number(input, built, "ls", is_null ? nullptr : wide.c_str());
}

void check_character(Input* input, Built* built) {
  if (input->flip()) {
    const int c = input->take<uint8_t>();
    built->is_ascii = c < 0x80;
    return check_number(input, built, "c", c);
  }
  const wint_t c = input->flip() ? input->take<wint_t>() : input->take<uint8_t>();
  built->is_ascii = built->is_platform = c < 0x80;
  check_number(input, built, "lc", c);
}

void check_built(Input input) {
  Built built;
  built.format = literal(&input);
  built.format += field(&input, &built);
  switch (input.below(5)) {
    case 0:
      return check_integer(&input, &built);
    case 1:
      return check_float(&input, &built);
    case 2:
      return check_pointer(&input, &built);
    case 3:
      return check_text(&input, &built);
    default:
      return check_character(&input, &built);
  }
}

// ---- Formats of any bytes -----------------------------------------------------------------------

// Every argument is an address at which an ASCII text of either width stands; its lowest byte is a
// character too.
alignas(256) const wchar_t kTexts[64] = L"................text";
constexpr const wchar_t* kText = kTexts + 16;
#define EIGHT kText, kText, kText, kText, kText, kText, kText, kText
#define ARGUMENTS EIGHT, EIGHT, EIGHT, EIGHT, EIGHT, EIGHT, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0
constexpr size_t kEnough = 20;  // conversions and stars; a long one takes two arguments on 32 bits

template <typename Char>
std::basic_string<Char> print(const std::basic_string<Char>& format, size_t room, int* result);

template <>
std::string print(const std::string& format, size_t room, int* result) {
  std::vector<char> dst(room);
  *result = sprintf_s(dst.data(), room, format.c_str(), ARGUMENTS);
  check(dst[*result < 0 ? 0 : *result] == 0, "terminator of any format", format);
  return {dst.data(), dst.data() + std::max(*result, 0)};
}

template <>
std::wstring print(const std::wstring& format, size_t room, int* result) {
  std::vector<wchar_t> dst(room);
  *result = swprintf_s(dst.data(), room, format.c_str(), ARGUMENTS);
  return {dst.data(), dst.data() + std::max(*result, 0)};
}

void check_any(Input input) {
  const size_t room = input.below(4000) + 1;
  const std::string format = input.rest();
  const size_t taken =
      std::count_if(format.begin(), format.end(), [](char c) { return c == '%' || c == '*'; });
  if (taken > kEnough) return;
  int result, wide_result;
  const std::string text = print(format, room, &result);
  const std::wstring wide = print(widen<wchar_t>(format), room, &wide_result);
  // A number that happens to be an address need not be a wide character.
  const bool has_character = format.find_first_of("cC") != std::string::npos;
  if (has_character && format.find_first_of("lwC") != std::string::npos) return;
  check(result == wide_result, "both widths print as much of any format", format);
  check(widen<wchar_t>(text) == wide, "both widths print the same of any format", format);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool has_locale = setlocale(LC_ALL, "C.UTF-8") != nullptr;
  check(has_locale, "a locale with more than ASCII", "");
  Input input(data, size);
  if (input.flip()) {
    check_any(input);
  } else {
    check_built(input);
  }
  return 0;
}
