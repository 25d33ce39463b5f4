// One conversion of a format: what stands between a '%' and its letter, read into a record.
#ifndef PLX_SRC_SECUREC_INPUT_CONVERSION_H
#define PLX_SRC_SECUREC_INPUT_CONVERSION_H

#include <stddef.h>
#include <stdint.h>

#include <initializer_list>

#include "internal/checked_size.h"
#include "securec/input/char_class.h"

namespace plx::securec::input {

enum class Kind : uint8_t { kNone, kCharacters, kString, kSet, kInteger, kFloat, kCount };

struct alignas(8) Letter {  // a table of them is indexed by a shift
  Kind kind;
  uint8_t base;  // of an integer; 0 finds out by the prefix
  bool is_signed;
  bool is_pointer;   // an integer is as large as a pointer, whatever the modifiers say
  bool is_wide;      // text goes to a wide destination unless a modifier says otherwise
  bool is_modifier;  // may stand before a letter; F, I and N are letters as well
};

struct LetterTable {
  Letter of[128];
};

// Letters mean the same in either case, but for the wide 'C' and 'S'. The other case of '[' is
// '{', which is no letter.
constexpr LetterTable make_letters() {
  struct Row {
    char name;
    Letter letter;
  };
  const Row rows[] = {
      {'c', {Kind::kCharacters, 0, false, false, false, false}},
      {'s', {Kind::kString, 0, false, false, false, false}},
      {'[', {Kind::kSet, 0, false, false, false, false}},
      {'d', {Kind::kInteger, 10, true, false, false, false}},
      {'i', {Kind::kInteger, 0, true, false, false, false}},
      {'u', {Kind::kInteger, 10, false, false, false, false}},
      {'o', {Kind::kInteger, 8, false, false, false, false}},
      {'x', {Kind::kInteger, 16, false, false, false, false}},
      {'p', {Kind::kInteger, 16, false, true, false, false}},
      {'e', {Kind::kFloat, 0, false, false, false, false}},
      {'f', {Kind::kFloat, 0, false, false, false, false}},
      {'g', {Kind::kFloat, 0, false, false, false, false}},
      {'n', {Kind::kCount, 0, false, false, false, false}},
  };
  LetterTable table = {};
  for (const Row& row : rows) {
    table.of[static_cast<unsigned char>(row.name)] = row.letter;
    if (row.name >= 'a') table.of[row.name - 'a' + 'A'] = row.letter;
  }
  for (const unsigned char name : {'C', 'S'}) table.of[name].is_wide = true;
  for (const unsigned char name : {'h', 'l', 'L', 'j', 'q', 't', 'z', 'w', 'I', 'F', 'N'}) {
    table.of[name].is_modifier = true;
  }
  return table;
}

inline constexpr LetterTable kLetters = make_letters();

// A format character as an index of the table; what is not ASCII is no letter, like 0.
template <typename Char>
inline unsigned char ascii(Char c) {
  return code(c) < 0x80 ? static_cast<unsigned char>(c) : 0;
}

struct Conversion {
  static constexpr size_t kNoWidth = 0;

  const Letter* letter = nullptr;
  bool suppressed = false;
  size_t width = kNoWidth;
  int level = kIntLevel;   // how large a number is stored
  bool is_64_bit = false;  // an integer is stored in 64 bits whatever its level
  int text_width = 0;      // below 0 narrow, above 0 wide

  static constexpr int kShortLevel = 0, kIntLevel = 1, kLongLevel = 2, kLongDoubleLevel = 3;

  bool is_wide() const { return text_width != 0 ? text_width > 0 : letter->is_wide; }

  // In bytes.
  size_t integer_size() const {
    if (letter->is_pointer) return sizeof(void*);
    if (is_64_bit) return sizeof(uint64_t);
    if (level >= kLongLevel) return sizeof(long);
    if (level == kIntLevel) return sizeof(int);
    return level == kShortLevel ? sizeof(short) : sizeof(char);
  }

  void make_64_bit() {
    level += 2;
    is_64_bit = true;
  }
};

// Reads 'I', which is a modifier in "I64", "I32" and right before an integer's letter, and
// otherwise the letter 'i' itself. Returns the characters read.
template <typename Char>
size_t read_size_of_i(const Char* at, Conversion* out) {
  if (at[1] == '6' && at[2] == '4') {
    out->is_64_bit = true;
    return 3;
  }
  if (at[1] == '3' && at[2] == '2') {
    out->is_64_bit = false;
    out->level = Conversion::kIntLevel;
    return 3;
  }
  for (const unsigned char letter : {'d', 'i', 'o', 'u', 'x', 'X'}) {
    if (ascii(at[1]) != letter) continue;
    out->is_64_bit = out->is_64_bit || sizeof(void*) == sizeof(uint64_t);
    return 1;
  }
  return 0;
}

// Reads one modifier at `at`, if one stands there, and returns the characters read.
template <typename Char>
size_t read_modifier(const Char* at, Conversion* out) {
  switch (ascii(*at)) {
    case 'h':
      --out->level;
      --out->text_width;
      return 1;
    case 'l':
      ++out->text_width;
      if (at[1] == 'l') {
        out->make_64_bit();
        return 2;
      }
      ++out->level;
      return 1;
    case 't':
    case 'z':
      ++out->level;
      return 1;
    case 'L':
    case 'j':
    case 'q':
      out->make_64_bit();
      return 1;
    case 'w':
      ++out->text_width;
      return 1;
    case 'I':
      return read_size_of_i(at, out);
    default: {  // 'F' and 'N'
      // Without a modifier or a letter behind it, it is the letter.
      const Letter& next = kLetters.of[ascii(at[1])];
      return next.is_modifier || next.kind != Kind::kNone ? 1 : 0;
    }
  }
}

template <typename Char>
const Char* read_width(const Char* at, size_t* out) {
  for (; digit_value(*at) < 10; ++at) {
    if (!checked_multiply(*out, 10, out) || !checked_add(*out, digit_value(*at), out)) {
      *out = SIZE_MAX;
    }
  }
  return at;
}

// Reads the conversion whose first character behind the '%' is `at` and returns where it ends. A
// letter that is none has the kind kNone.
template <typename Char>
const Char* read_conversion(const Char* at, Conversion* out) {
  if (*at == '*') {
    out->suppressed = true;
    ++at;
  }
  at = read_width(at, &out->width);
  while (kLetters.of[ascii(*at)].is_modifier) {
    const size_t length = read_modifier(at, out);
    if (length == 0) break;
    at += length;
  }
  out->letter = &kLetters.of[ascii(*at)];
  return at + 1;
}

}  // namespace plx::securec::input

#endif
