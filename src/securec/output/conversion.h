// One conversion of a format, as read: what stands between its '%' and its letter.
#ifndef PLX_SRC_SECUREC_OUTPUT_CONVERSION_H
#define PLX_SRC_SECUREC_OUTPUT_CONVERSION_H

#include <stdint.h>

namespace plx::securec {

struct Conversion {
  enum Mark : uint16_t {
    // Flags.
    kSpace = 1 << 0,
    kAlternate = 1 << 1,
    kPlus = 1 << 2,
    kLeft = 1 << 3,
    kZeroPad = 1 << 4,
    // Sizes. They add up as they are read; where several are given the widest integer wins.
    kChar = 1 << 5,        // hh
    kShort = 1 << 6,       // h
    kWord = 1 << 7,        // l, z, t, plain I: the platform's own
    k64 = 1 << 8,          // ll, j, L, q, I64
    kLongDouble = 1 << 9,  // L, q
    kWide = 1 << 10,       // l, w: a wide character or text

    kAnySize = kChar | kShort | kWord | k64,
  };

  int width = 0;
  int precision = -1;  // below 0 it is not given
  uint16_t marks = 0;
  char letter = 0;

  bool has(unsigned any) const { return (marks & any) != 0; }
  bool has_precision() const { return precision >= 0; }
  // Left-justified fields have nothing to pad with zeros.
  bool pads_with_zeros() const { return (marks & (kZeroPad | kLeft)) == kZeroPad; }
  // Whether a 'c', 'C', 's' or 'S' takes a wide argument. 'h' makes it narrow whatever else is
  // said.
  bool takes_wide_text() const {
    return !has(kShort | kChar) && (has(kWide) || letter == 'C' || letter == 'S');
  }
};

}  // namespace plx::securec

#endif
