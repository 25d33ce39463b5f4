// A converted number before it is padded. It is ASCII whatever the width of the output, but for
// what the platform puts into a float (a decimal point may be more than one byte).
#ifndef PLX_SRC_SECUREC_OUTPUT_FIELD_H
#define PLX_SRC_SECUREC_OUTPUT_FIELD_H

#include <stddef.h>
#include <stdint.h>

#include "securec/output/digits.h"

namespace plx::securec {

// In front of every number: its sign, or "0x" or "0X".
struct Prefix {
  char text[2] = {};
  unsigned char size = 0;

  void add(char c) { text[size++] = c; }
};

//   prefix  zeros  digits
//     -      000     42      precision 5
struct IntegerField {
  Digits digits;
  uint32_t num_digits = 0;
  uint32_t zeros = 0;
  Prefix prefix;
  bool zero_pads = false;  // a wider field is filled with zeros, behind the prefix

  size_t columns() const { return prefix.size + zeros + num_digits; }
};

//   prefix  body  zeros  tail
//     -      1.5   000   e+10   more digits asked for than the value has
struct FloatField {
  Prefix prefix;
  bool zero_pads = false;
  const char* body = nullptr;
  size_t body_size = 0;
  size_t zeros = 0;
  size_t tail_size = 0;     // the tail stands right behind the body
  size_t text_columns = 0;  // characters of body and tail

  size_t columns() const { return prefix.size + zeros + text_columns; }
};

}  // namespace plx::securec

#endif
