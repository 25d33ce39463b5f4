// What a character is to the scanner. ASCII is decided by one table; only wide characters above
// it are asked of the platform.
#ifndef PLX_SRC_SECUREC_INPUT_CHAR_CLASS_H
#define PLX_SRC_SECUREC_INPUT_CHAR_CLASS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

#include <initializer_list>

namespace plx::securec::input {

// A character as a number that is never negative, whatever the sign of its type.
inline uint32_t code(char c) { return static_cast<unsigned char>(c); }
inline uint32_t code(wchar_t c) { return static_cast<uint32_t>(c); }

// One byte for each character: the value of a hexadecimal digit, or one of the marks below, both
// larger than any base.
constexpr uint8_t kOther = 0x40;
constexpr uint8_t kSpace = 0x80;

struct CharClasses {
  uint8_t of[256];
};

constexpr CharClasses make_char_classes() {
  CharClasses table = {};
  for (uint8_t& entry : table.of) entry = kOther;
  for (uint8_t i = 0; i < 10; ++i) table.of['0' + i] = i;
  for (uint8_t i = 0; i < 6; ++i) {
    table.of['a' + i] = static_cast<uint8_t>(10 + i);
    table.of['A' + i] = static_cast<uint8_t>(10 + i);
  }
  for (const char c : {' ', '\t', '\n', '\v', '\f', '\r'}) {
    table.of[static_cast<unsigned char>(c)] = kSpace;
  }
  return table;
}

inline constexpr CharClasses kCharClasses = make_char_classes();

inline bool is_space(char c) { return kCharClasses.of[code(c)] == kSpace; }
inline bool is_space(wchar_t c) {
  if (code(c) < 0x80) return kCharClasses.of[code(c)] == kSpace;
  return iswspace(static_cast<wint_t>(c)) != 0;
}

// The top bit of every character of a word up to ' ', and perhaps of others behind the first.
inline size_t space_candidates(size_t word) {
  constexpr size_t kOnes = ~size_t{0} / 0xFF;
  return (word - kOnes * 0x21) & ~word & kOnes * 0x80;
}

// The first white space. Several characters at a time are seen to have none.
inline const char* find_space(const char* at, const char* end) {
  while (static_cast<size_t>(end - at) >= sizeof(size_t)) {
    size_t word;
    memcpy(&word, at, sizeof word);
    const size_t candidates = space_candidates(word);
    if (candidates == 0) {
      at += sizeof word;
      continue;
    }
    at += __builtin_ctzl(candidates) / 8;
    if (is_space(*at)) return at;
    ++at;
  }
  while (at != end && !is_space(*at)) ++at;
  return at;
}

inline const wchar_t* find_space(const wchar_t* at, const wchar_t* end) {
  while (at != end && !is_space(*at)) ++at;
  return at;
}

// The value of a digit; not below `base` when `c` is no digit of it.
inline unsigned digit_value(char c) { return kCharClasses.of[code(c)]; }
inline unsigned digit_value(wchar_t c) {
  return code(c) < 0x80 ? kCharClasses.of[code(c)] : unsigned{kOther};
}

}  // namespace plx::securec::input

#endif
