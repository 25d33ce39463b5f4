// Reads one conversion from a format, with the widths and precisions that stand in the argument
// list.
#ifndef PLX_SRC_SECUREC_OUTPUT_READER_H
#define PLX_SRC_SECUREC_OUTPUT_READER_H

#include <limits.h>
#include <stdint.h>

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/state_table.h"

namespace plx::securec {

inline uint32_t code_of(char c) { return static_cast<unsigned char>(c); }
inline uint32_t code_of(wchar_t c) { return static_cast<uint32_t>(c); }

constexpr uint16_t flag_mark(uint32_t code) {
  switch (code) {
    case ' ':
      return Conversion::kSpace;
    case '#':
      return Conversion::kAlternate;
    case '+':
      return Conversion::kPlus;
    case '-':
      return Conversion::kLeft;
    default:
      return Conversion::kZeroPad;
  }
}

// Appends a decimal digit to `*number`. False when the number has grown too long for another one,
// which holds as soon as it passes this limit: nine digits, of which the largest begin 21474836.
constexpr int kLongestNumber = 21474836;

inline bool append_digit(uint32_t code, int* number) {
  if (*number > kLongestNumber) return false;
  *number = *number * 10 + static_cast<int>(code - '0');
  return true;
}

inline bool read_width(uint32_t code, State previous, Arguments* arguments,
                       Conversion* conversion) {
  if (code == '*') {
    conversion->width = va_arg(arguments->list, int);
    if (conversion->width >= 0) return true;
    if (conversion->width == INT_MIN) return false;  // it has no magnitude
    conversion->marks |= Conversion::kLeft;
    conversion->width = -conversion->width;
    return true;
  }
  // Behind a flag a digit starts the width anew.
  if (previous != State::kWidth) conversion->width = 0;
  return append_digit(code, &conversion->width);
}

inline bool read_precision(uint32_t code, Arguments* arguments, Conversion* conversion) {
  if (code == '*') {
    conversion->precision = va_arg(arguments->list, int);
    return true;
  }
  // Digits behind a negative '*' do not bring the precision back.
  return !conversion->has_precision() || append_digit(code, &conversion->precision);
}

inline bool is_integer_letter(uint32_t code) {
  return code == 'd' || code == 'i' || code == 'o' || code == 'u' || code == 'x' || code == 'X';
}

// Reads the size modifier at `text` and returns its length, or 0 for an 'I' that is none.
template <typename Char>
inline int read_size(const Char* text, Conversion* conversion) {
  uint16_t& marks = conversion->marks;
  const bool doubled = text[1] == text[0];
  switch (code_of(text[0])) {
    case 'h':
      marks |= doubled ? Conversion::kChar : Conversion::kShort;
      return doubled ? 2 : 1;
    case 'l':
      marks |= doubled ? Conversion::k64 : Conversion::kWord | Conversion::kWide;
      return doubled ? 2 : 1;
    case 'L':
    case 'q':
      marks |= Conversion::k64 | Conversion::kLongDouble;
      return 1;
    case 'j':
      marks |= Conversion::k64;
      return 1;
    case 'z':
    case 't':
      marks |= Conversion::kWord;
      return 1;
    case 'w':
      marks |= Conversion::kWide;
      return 1;
    case 'I':
      if (text[1] == '6' && text[2] == '4') {
        marks |= Conversion::k64;
        return 3;
      }
      if (text[1] == '3' && text[2] == '2') {
        marks &= static_cast<uint16_t>(~(Conversion::k64 | Conversion::kWord));
        return 3;
      }
      if (!is_integer_letter(code_of(text[1]))) return 0;
      marks |= Conversion::kWord;
      return 1;
    default:  // 'N' and 'Z' say nothing
      return 1;
  }
}

enum class Reading {
  kConversion,  // the format goes on behind the letter
  kLiteral,     // no conversion: the format goes on with a character that is printed as it is
  kRefused,
};

// Reads on from behind a '%'. What ends a format early is a character like any other that has no
// place in a conversion.
template <typename Char>
inline Reading read_conversion(const Char** format, Arguments* arguments, Conversion* conversion) {
  State state = State::kPercent;
  for (const Char* text = *format;; ++text) {
    const uint32_t code = code_of(*text);
    const State previous = state;
    state = next_state(state, code);
    switch (state) {
      case State::kFlag:
        conversion->marks |= flag_mark(code);
        break;
      case State::kWidth:
        if (!read_width(code, previous, arguments, conversion)) return Reading::kRefused;
        break;
      case State::kDot:
        conversion->precision = 0;
        break;
      case State::kPrecision:
        if (!read_precision(code, arguments, conversion)) return Reading::kRefused;
        break;
      case State::kSize: {
        const int length = read_size(text, conversion);
        if (length == 0) {
          *format = text;
          return Reading::kLiteral;
        }
        text += length - 1;
        break;
      }
      case State::kType:
        conversion->letter = static_cast<char>(code);
        *format = text + 1;
        return Reading::kConversion;
      case State::kNormal:
        *format = text;
        return Reading::kLiteral;
      default:
        return Reading::kRefused;
    }
  }
}

}  // namespace plx::securec

#endif
