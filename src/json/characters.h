// The character classes of the dialect: plain ASCII, whatever the locale, and the same whether
// char is signed or not.
#ifndef PLX_SRC_JSON_CHARACTERS_H
#define PLX_SRC_JSON_CHARACTERS_H

#include <stdint.h>

#include <array>

namespace plx::json {

enum CharacterClass : uint8_t {
  kWhiteSpace = 1 << 0,  // between tokens
  kEndsToken = 1 << 1,   // stands behind a bare token, and cannot start one
  kControl = 1 << 2,     // below 0x20, NUL included: in no string
  kBackslash = 1 << 3,
  kDoubleQuote = 1 << 4,
  kSingleQuote = 1 << 5,
};

constexpr std::array<uint8_t, 256> make_character_classes() {
  std::array<uint8_t, 256> classes{};
  for (int c = 0; c < 0x20; ++c) classes[c] |= kControl;
  for (char c : {' ', '\t', '\n', '\v', '\f', '\r'}) classes[c] |= kWhiteSpace;
  for (char c : {'\0', ',', ' ', ':', '\'', '"', '{', '}', '[', ']'}) classes[c] |= kEndsToken;
  classes['\\'] |= kBackslash;
  classes['"'] |= kDoubleQuote;
  classes['\''] |= kSingleQuote;
  return classes;
}

inline constexpr std::array<uint8_t, 256> kCharacterClasses = make_character_classes();

// Whether `c` is in one of `classes`.
inline bool is_any(char c, unsigned classes) {
  return (kCharacterClasses[static_cast<unsigned char>(c)] & classes) != 0;
}

inline bool is_white_space(char c) { return is_any(c, kWhiteSpace); }

// The value of a hexadecimal digit, or -1.
inline int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace plx::json

#endif
