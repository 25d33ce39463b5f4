// Characters of the other width, as the locale converts them. ASCII is the same in both.
#ifndef PLX_SRC_SECUREC_INPUT_FOREIGN_H
#define PLX_SRC_SECUREC_INPUT_FOREIGN_H

#include <limits.h>
#include <stddef.h>
#include <wchar.h>

#include "securec/input/char_class.h"

namespace plx::securec::input {

// Each conversion starts from a fresh state: one kept between calls would be spoilt by the first
// incomplete character. What does not convert is stored as '?'; callers depend on it.
wchar_t convert_byte(char byte);
size_t convert_wide(wchar_t c, char (&out)[MB_LEN_MAX]);  // returns the number of bytes

inline wchar_t to_wide(char byte) {
  return code(byte) < 0x80 ? static_cast<wchar_t>(byte) : convert_byte(byte);
}

}  // namespace plx::securec::input

#endif
