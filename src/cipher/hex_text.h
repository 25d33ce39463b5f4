// Hexadecimal text of requests: upper-case digits out, digits of either case in.
#ifndef PLX_SRC_CIPHER_HEX_TEXT_H
#define PLX_SRC_CIPHER_HEX_TEXT_H

#include <stddef.h>

namespace plx::cipher {

// Writes two digits a byte, the high one first, and no terminator. A `count` below 1 writes
// nothing.
void write_hex(const unsigned char* bytes, int count, char* out);

// Reads `length` digits, two a byte, and returns the number of bytes. What is no digit counts as
// 0, and a missing last one too.
int read_hex(const char* text, size_t length, unsigned char* out);

}  // namespace plx::cipher

#endif
