// The tree of a JSON text, as the library builds it.
#ifndef PLX_TOOLS_JSON_TREE_H
#define PLX_TOOLS_JSON_TREE_H

#include <plx/json.h>

#include <memory>
#include <string>

namespace plx::tool {

struct FreeTree {
  void operator()(PLX_JsonValue* value) const { PLX_FreeJsonValue(value); }
};
using JsonTree = std::unique_ptr<PLX_JsonValue, FreeTree>;

// The tree drawn for reading, one line an entry.
std::string draw_tree(const PLX_JsonValue* value);
// The tree as strict JSON on one line. Every scalar is a string, as it is for the library.
std::string tree_json(const PLX_JsonValue* value);

// The way to the member that the library's search for `name` finds first: ".a.b[2].name", or an
// empty text when it finds none.
std::string path_to(const PLX_JsonValue* value, const char* name);

}  // namespace plx::tool

#endif
