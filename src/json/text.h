// Reading one text (a scalar or a member's name) out of the input.
#ifndef PLX_SRC_JSON_TEXT_H
#define PLX_SRC_JSON_TEXT_H

#include <stddef.h>

#include "internal/owned.h"

namespace plx::json {

// An unescaped text in a block of its exact size; `data` is null where there is none.
struct Text {
  OwnedBlock<char> data;
  size_t length = 0;  // without the terminator
};

// Reads a quoted string or, where there is none or it is rejected, a bare token at `*cursor`, and
// moves the cursor past it. No text means that the parse fails.
Text read_text(const char** cursor);

}  // namespace plx::json

#endif
