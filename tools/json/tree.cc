#include "json/tree.h"

#include <fmt/core.h>
#include <string.h>

#include <vector>

#include "support/output.h"

namespace plx::tool {
namespace {

// One entry of a container: its name or its index.
struct Entry {
  std::string label;
  const PLX_JsonValue* value;
};

std::vector<Entry> entries_of(const PLX_JsonValue* value) {
  std::vector<Entry> entries;
  if (const PLX_JsonObject* object = PLX_GetJsonValueObject(value)) {
    for (int i = 0; i < PLX_JsonGetObjectCount(object); ++i) {
      entries.push_back(
          {PLX_JsonObjectGetStringByIndex(object, i), PLX_JsonObjectGetValueByIndex(object, i)});
    }
  } else if (const PLX_JsonArray* array = PLX_GetJsonValueArray(value)) {
    for (int i = 0; i < PLX_JsonGetArrayCount(array); ++i) {
      entries.push_back({fmt::format("{}", i), PLX_JsonArrayGetValueByIndex(array, i)});
    }
  }
  return entries;
}

std::string describe(const PLX_JsonValue* value) {
  if (const char* text = PLX_GetJsonValueString(value)) {
    return fmt::format("\"{}\"", printable(text, 200));
  }
  const size_t count = entries_of(value).size();
  const bool object = value->type == PLX_JSON_OBJECT;
  return fmt::format(
      "{} of {} {}", object ? "object" : "array", count,
      object ? (count == 1 ? "member" : "members") : (count == 1 ? "element" : "elements"));
}

void draw_below(const PLX_JsonValue* value, const std::string& indent, std::string* out) {
  const std::vector<Entry> entries = entries_of(value);
  for (size_t i = 0; i < entries.size(); ++i) {
    const bool last = i + 1 == entries.size();
    *out += fmt::format("{}{} {}: {}\n", indent, last ? "└─" : "├─",
                        printable(entries[i].label, 200), describe(entries[i].value));
    draw_below(entries[i].value, indent + (last ? "   " : "│  "), out);
  }
}

}  // namespace

std::string draw_tree(const PLX_JsonValue* value) {
  std::string text = describe(value) + "\n";
  draw_below(value, "", &text);
  return text;
}

std::string tree_json(const PLX_JsonValue* value) {
  if (const char* text = PLX_GetJsonValueString(value)) return json_quote(text);
  if (value->type == PLX_JSON_ARRAY) {
    std::vector<std::string> elements;
    for (const Entry& entry : entries_of(value)) elements.push_back(tree_json(entry.value));
    return json_array(elements);
  }
  JsonObject object;
  for (const Entry& entry : entries_of(value)) object.raw(entry.label, tree_json(entry.value));
  return object.str();
}

std::string path_to(const PLX_JsonValue* value, const char* name) {
  const bool object = value->type == PLX_JSON_OBJECT;
  for (const Entry& entry : entries_of(value)) {
    const std::string step = fmt::format(object ? ".{}" : "[{}]", printable(entry.label));
    if (object && entry.label == name) return step;
    const std::string below = path_to(entry.value, name);
    if (!below.empty()) return step + below;
  }
  return "";
}

}  // namespace plx::tool
