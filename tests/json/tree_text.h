// A tree as one line of text, so that trees compare as strings: scalars in double quotes, with
// everything but printable characters as \xx; "-" for no tree.
#ifndef PLX_TESTS_JSON_TREE_TEXT_H
#define PLX_TESTS_JSON_TREE_TEXT_H

#include <plx/json.h>

#include <string>

namespace plx_test {

inline std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    const char* digits = "0123456789abcdef";
    if (c > 0x20 && c < 0x7F && c != '"' && c != '\\') {
      out += static_cast<char>(c);
    } else {
      out += {'\\', digits[c >> 4], digits[c & 15]};
    }
  }
  return out + '"';
}

// Also holds the records to their promises; a broken one shows in the text.
inline std::string tree_text(const PLX_JsonValue* value) {
  if (value == nullptr) return "-";
  if (value->type == PLX_JSON_STRING) return quoted(static_cast<const char*>(value->data));
  const auto* object = static_cast<const PLX_JsonObject*>(value->data);
  const auto* array = static_cast<const PLX_JsonArray*>(value->data);
  const bool is_object = value->type == PLX_JSON_OBJECT;
  if (!is_object && value->type != PLX_JSON_ARRAY) return "bad kind";
  std::string out;
  for (int i = 0; i < array->count; ++i) {
    if (i > 0) out += ',';
    if (is_object) out += quoted(object->names[i]) + ':';
    out += tree_text(is_object ? object->values[i] : array->items[i]);
  }
  if (array->capacity != static_cast<uint32_t>(array->count)) out += " bad capacity";
  if ((array->count == 0) != (array->items == nullptr)) out += " bad slots";
  if (is_object && (object->names == nullptr) != (object->values == nullptr)) out += " bad values";
  return (is_object ? '{' : '[') + out + (is_object ? '}' : ']');
}

}  // namespace plx_test

#endif
