// The scalars of walk_json: quoted strings and bare tokens.
#ifndef PLX_TOOLS_JSON_WALK_STRING_H
#define PLX_TOOLS_JSON_WALK_STRING_H

#include <stddef.h>

#include <string>

namespace plx::tool {

// A place in the text and what is wrong there.
struct JsonFault {
  const char* at = nullptr;
  const char* rule = nullptr;
};

// Reads a scalar at `*cursor`: a quoted string, or else a bare token, which is tried right behind
// a quoted string that was rejected for what it holds. Moves the cursor behind it and stores the
// unescaped text. Returns false with the first fault.
bool read_scalar(const char** cursor, std::string* text, JsonFault* fault);

}  // namespace plx::tool

#endif
