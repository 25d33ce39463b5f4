// The members of a request, as the library takes them out of its text.
#ifndef PLX_TOOLS_REQUEST_MEMBERS_H
#define PLX_TOOLS_REQUEST_MEMBERS_H

#include <stddef.h>

#include <optional>
#include <string>

#include "json/tree.h"
#include "json/walk.h"

namespace plx::tool {

// The part of a request from its first "{" to its last "}", which is all that counts.
std::optional<std::string> cut_to_braces(const std::string& request, size_t* start);

struct Member {
  bool found = false;
  bool container = false;  // found, but as an object or array: its text counts as empty
  std::string text;        // as far as it is taken
  size_t full_length = 0;  // of the text before the cut
  std::string path;        // where the search met it
  bool cut() const { return full_length > text.size(); }
};

// `room` is the size of the buffer that takes the text: two bytes less are taken.
Member find_member(const PLX_JsonValue* tree, const char* name, size_t room);

}  // namespace plx::tool

#endif
