// Characters by ASCII alone: no locale, and the same where char is signed and where it is not.
#ifndef PLX_SRC_INTERNAL_ASCII_H
#define PLX_SRC_INTERNAL_ASCII_H

#include <stddef.h>

namespace plx {

constexpr unsigned char ascii_to_upper(char c) {
  return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}

inline bool ascii_equal_ignoring_case(const char* a, const char* b, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (ascii_to_upper(a[i]) != ascii_to_upper(b[i])) return false;
  }
  return true;
}

}  // namespace plx

#endif
