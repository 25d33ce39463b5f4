#include "request/members.h"

#include <string.h>

namespace plx::tool {

std::optional<std::string> cut_to_braces(const std::string& request, size_t* start) {
  const size_t first = request.find('{');
  const size_t last = request.rfind('}');
  if (first == std::string::npos || last == std::string::npos || last < first) return {};
  *start = first;
  return request.substr(first, last - first + 1);
}

Member find_member(const PLX_JsonValue* tree, const char* name, size_t room) {
  Member member;
  const PLX_JsonValue* value = PLX_FindFromJsonValue(tree, name);
  if (value == nullptr) return member;
  member.found = true;
  member.path = path_to(tree, name);
  const char* text = PLX_GetJsonValueString(value);
  member.container = text == nullptr;
  if (text == nullptr) return member;
  member.full_length = strlen(text);
  member.text.assign(text, member.full_length < room - 2 ? member.full_length : room - 2);
  return member;
}

}  // namespace plx::tool
