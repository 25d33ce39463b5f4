// Dumps of byte arrays for debugging.
#ifndef PLX_SRC_CIPHER_BYTE_DUMP_H
#define PLX_SRC_CIPHER_BYTE_DUMP_H

#include <stddef.h>

namespace plx::cipher {

// Writes the title, of at most `text_size` - 1 characters, and the bytes, "title[0A FF]", to
// `text`. A dump that does not fit leaves an empty text.
void format_dump(char* text, size_t text_size, const char* title, const unsigned char* data,
                 int len);

}  // namespace plx::cipher

#endif
