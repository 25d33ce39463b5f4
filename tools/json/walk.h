// Walks a JSON text as the library's reader does, and says where and why that would refuse it.
//
// The library answers a refused text with null alone. This walk keeps the position and the rule;
// its verdict is the library's on every text (memory permitting), which a fuzz target holds it to.
#ifndef PLX_TOOLS_JSON_WALK_H
#define PLX_TOOLS_JSON_WALK_H

#include <stddef.h>

#include <string>

namespace plx::tool {

struct JsonRefusal {
  bool refused = false;
  size_t byte = 0;    // offset from 0
  size_t line = 1;    // from 1
  size_t column = 1;  // in bytes, from 1
  std::string rule;
};

// `text` ends at its first zero byte, as for the library.
JsonRefusal walk_json(const char* text);

}  // namespace plx::tool

#endif
