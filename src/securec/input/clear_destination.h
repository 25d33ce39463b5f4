// What a scan of an empty text leaves in its first destination.
#ifndef PLX_SRC_SECUREC_INPUT_CLEAR_DESTINATION_H
#define PLX_SRC_SECUREC_INPUT_CLEAR_DESTINATION_H

#include <limits.h>
#include <stdarg.h>
#include <wchar.h>

#include "securec/input/conversion.h"
#include "securec/input/scanset.h"

namespace plx::securec::input {

// Finds the first '%' and, if it starts a conversion of text that is assigned, returns true.
template <typename Char>
bool first_is_text(const Char* format, bool* is_wide) {
  while (*format != 0 && *format != '%') ++format;
  if (*format == 0) return false;
  ++format;
  int text_width = 0;
  for (;; ++format) {
    if (*format == 'h') {
      --text_width;
    } else if (*format == 'l' || *format == 'w') {
      ++text_width;
    } else if (digit_value(*format) >= 10) {
      break;
    }
  }
  const Letter& letter = kLetters.of[ascii(*format)];
  *is_wide = text_width != 0 ? text_width > 0 : letter.is_wide;
  SetList<Char> set;
  switch (letter.kind) {
    case Kind::kCharacters:
    case Kind::kString:
      return true;
    case Kind::kSet:
      return read_set_list(format + 1, &set) != nullptr;
    default:
      return false;
  }
}

// Empties the destination of a first conversion of text. A size below 4 clears one byte of a wide
// destination, although sizes count characters; callers depend on it.
template <typename Char>
void clear_first_destination(const Char* format, va_list args) {
  bool is_wide;
  if (format == nullptr || !first_is_text(format, &is_wide)) return;
  void* dst = va_arg(args, void*);
  const unsigned size = va_arg(args, unsigned);
  if (dst == nullptr || size == 0 || size > INT_MAX) return;
  if (is_wide && size >= sizeof(wchar_t)) {
    *static_cast<wchar_t*>(dst) = 0;
  } else {
    *static_cast<char*>(dst) = 0;
  }
}

}  // namespace plx::securec::input

#endif
