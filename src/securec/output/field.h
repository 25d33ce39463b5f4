// A converted number before it is padded. It is ASCII whatever the width of the output, but for
// what the platform puts into a float (a decimal point may be more than one byte).
#ifndef PLX_SRC_SECUREC_OUTPUT_FIELD_H
#define PLX_SRC_SECUREC_OUTPUT_FIELD_H

#include <stddef.h>

namespace plx::securec {

//   prefix  zeros  body  inner_zeros  tail
//     -      000    42                         an integer of precision 5
//     -            1.5       000       e+10    a float of more digits than its value has
struct Field {
  char prefix[2] = {};  // a sign, "0x" or "0X"
  unsigned char prefix_size = 0;
  bool zero_pads = false;  // a wider field is filled with zeros, behind the prefix
  size_t zeros = 0;
  const char* body = nullptr;
  size_t body_size = 0;
  size_t inner_zeros = 0;
  size_t tail_size = 0;  // the tail stands right behind the body
  size_t columns = 0;    // characters of body and tail

  void add_prefix(char c) { prefix[prefix_size++] = c; }
  void set_body(const char* text, size_t size) {
    body = text;
    body_size = columns = size;
  }
  size_t size() const { return prefix_size + zeros + columns + inner_zeros; }
};

}  // namespace plx::securec

#endif
