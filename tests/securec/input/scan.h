// Scanning with arguments that are described by a text, so that a test is a row of a table.
#ifndef PLX_TESTS_SECUREC_INPUT_SCAN_H
#define PLX_TESTS_SECUREC_INPUT_SCAN_H

#include <plx/securec.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/guarded.h"
#include "support/standard_input.h"

namespace plx_test {

template <typename Char>
std::basic_string<Char> of_width(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

// A text at whose end an inaccessible page begins. The next call uses the same page.
template <typename Char>
Char* guarded(const std::string& ascii, size_t which = 0) {
  constexpr size_t kLargest = 4096;
  static Guarded<Char> pages[] = {Guarded<Char>(kLargest), Guarded<Char>(kLargest),
                                  Guarded<Char>(kLargest), Guarded<Char>(kLargest),
                                  Guarded<Char>(kLargest), Guarded<Char>(kLargest)};
  Char* first = pages[which].data() + kLargest - ascii.size();
  std::copy(ascii.begin(), ascii.end(), first);
  return first;
}

// Destinations, one for each word of a description, each at the end of accessible memory:
//   s8       8 bytes of text, and their number as the size; w8 the same in wide characters
//   s8=5     the same with 5 as the size; t8 and u8 without any
//   i1 .. i8 an integer of so many bytes; il a long, ip a pointer
//   f d D    float, double, long double
//   0 0=5    a null pointer, without and with a size
class Destinations {
 public:
  explicit Destinations(const std::string& description) : call_(12) {
    size_t n = 0;
    for (size_t at = 0; at < description.size();) {
      const size_t end = std::min(description.find(' ', at), description.size());
      const std::string word = description.substr(at, end - at);
      at = end + 1;
      const Place place = {word[0], size_of(word), nullptr};
      if (place.kind != '0') {
        places_.push_back(place);
        call_[n] = places_.back().at =
            guarded<unsigned char>(std::string(place.size, kFill), places_.size() - 1);
      }
      ++n;
      size_t size = strtoul(word.c_str() + 1, nullptr, 10);
      const size_t equals = word.find('=');
      if (equals != std::string::npos) size = strtoul(word.c_str() + equals + 1, nullptr, 0);
      if (equals != std::string::npos || strchr("sw", word[0]) != nullptr) {
        call_[n++] = reinterpret_cast<void*>(size);
      }
    }
  }

  // Calls `function(first..., arguments...)`. Each argument is as wide as a register.
  template <typename Function, typename... First>
  std::string call(Function function, First... first) const {
    void* const* a = call_.data();
    const int result = function(first..., a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8],
                                a[9], a[10], a[11]);
    return std::to_string(result) + " " + image();
  }

 private:
  static constexpr char kFill = '\xA5';
  struct Place {
    char kind;
    size_t size;
    unsigned char* at;
  };

  static bool is_wide(char kind) { return kind == 'w' || kind == 'u'; }

  static size_t size_of(const std::string& word) {
    const size_t count = strtoul(word.c_str() + 1, nullptr, 10);
    if (word == "il" || word == "ip") return sizeof(long);
    if (word[0] == 'f') return sizeof(float);
    if (word[0] == 'd') return sizeof(double);
    if (word[0] == 'D') return sizeof(long double);
    return is_wide(word[0]) ? count * sizeof(wchar_t) : count;
  }

  // What stands in the destinations, divided by '|'. In texts '_' is 0 and '.' an untouched
  // character; an untouched number is '.' too.
  std::string image() const {
    std::string all;
    for (const Place& place : places_) {
      if (&place != &places_.front()) all += '|';
      const bool is_text = strchr("swtu", place.kind) != nullptr;
      const size_t unit = !is_text ? place.size : is_wide(place.kind) ? sizeof(wchar_t) : 1;
      for (const unsigned char* at = place.at; at != place.at + place.size; at += unit) {
        const bool untouched = std::string(at, at + unit) == std::string(unit, kFill);
        all += untouched ? "." : is_text ? character(at, unit) : number(place);
      }
    }
    return all;
  }

  static std::string character(const unsigned char* at, size_t size) {
    uint32_t c = 0;
    memcpy(&c, at, size);
    char escaped[16];
    snprintf(escaped, sizeof escaped, "<%x>", c);
    return c == 0 ? "_" : c >= ' ' && c <= '~' ? std::string(1, static_cast<char>(c)) : escaped;
  }

  static std::string number(const Place& place) {
    char image[64];
    uint64_t bits = 0;
    const unsigned shift = static_cast<unsigned>(64 - 8 * std::min<size_t>(place.size, 8));
    if (shift < 64) memcpy(&bits, place.at, 8 - shift / 8);
    const void* at = place.at;
    switch (place.kind) {
      case 'f':
        snprintf(image, sizeof image, "%.9g", static_cast<double>(*static_cast<const float*>(at)));
        break;
      case 'd':
        snprintf(image, sizeof image, "%.17g", *static_cast<const double*>(at));
        break;
      case 'D':
        snprintf(image, sizeof image, "%.20Lg", *static_cast<const long double*>(at));
        break;
      default:
        snprintf(image, sizeof image, "%lld", static_cast<long long>(bits << shift) >> shift);
    }
    return image;
  }

  std::vector<Place> places_;
  std::vector<void*> call_;
};

template <typename Char>
struct Scan;
template <>
struct Scan<char> {
  static constexpr auto kString = sscanf_s;
  static constexpr auto kStringList = vsscanf_s;
  static constexpr auto kStandardInput = scanf_s;
  static constexpr auto kFile = fscanf_s;
};
template <>
struct Scan<wchar_t> {
  static constexpr auto kString = swscanf_s;
  static constexpr auto kStringList = vswscanf_s;
  static constexpr auto kStandardInput = wscanf_s;
  static constexpr auto kFile = fwscanf_s;
};

template <typename Char>
std::string scan_string(const std::string& text, const std::string& format,
                        const std::string& destinations) {
  const Char* const first = guarded<Char>(text + '\0');
  return Destinations(destinations)
      .call(Scan<Char>::kString, first, guarded<Char>(format + '\0', 1));
}

template <typename Char>
std::string scan_file(FILE* file, const std::string& format, const std::string& destinations) {
  return Destinations(destinations).call(Scan<Char>::kFile, file, of_width<Char>(format).c_str());
}

template <typename Char>
std::string scan_standard_input(const std::string& format, const std::string& destinations) {
  return Destinations(destinations)
      .call(Scan<Char>::kStandardInput, of_width<Char>(format).c_str());
}

template <typename Char>
int call_list(const Char* text, const Char* format, int, int, int skipped, ...) {
  va_list args;
  va_start(args, skipped);
  for (; skipped > 0; --skipped) static_cast<void>(va_arg(args, void*));
  const int result = Scan<Char>::kStringList(text, format, args);
  va_end(args);
  return result;
}

// By a list of arguments, all of which lie on the stack, or all but the first.
template <typename Char>
std::string scan_list(const std::string& text, const std::string& format,
                      const std::string& destinations, bool all = true) {
  const auto wanted = of_width<Char>(format);
  return Destinations((all ? "0 " : "") + destinations)
      .call(call_list<Char>, of_width<Char>(text).c_str(), wanted.c_str(), 0, 0, int{all});
}

// A character of a file is the bytes of a wchar_t.
template <typename Char>
std::string bytes_of(const std::string& ascii) {
  const auto text = of_width<Char>(ascii);
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Char)};
}

inline std::string read_all(FILE* file) {
  std::string rest;
  for (int c; (c = fgetc(file)) != EOF;) rest += static_cast<char>(c);
  return rest;
}

}  // namespace plx_test

#endif
