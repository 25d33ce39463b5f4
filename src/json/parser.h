// The reader as the rest of the library calls it, with the contract of plx/json.h.
#ifndef PLX_SRC_JSON_PARSER_H
#define PLX_SRC_JSON_PARSER_H

#include <plx/json.h>

#include "json/tree.h"

namespace plx::json {

// The tree of `text`, to be given to `release` (tree.h), or null. What a failed parse releases is
// released by `texts`.
PLX_JsonValue* parse(const char* text, Texts texts = Texts::kPlain);

}  // namespace plx::json

#endif
