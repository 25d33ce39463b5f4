#include "json/query.h"

#include <stdlib.h>
#include <string.h>

#include "json/name_match.h"
#include "json/tree.h"

namespace plx::json {
namespace {

// Place of the first member whose name matches, or the count. The matcher comes by value, so that
// the compiler sees that nothing changes it.
template <typename Names>
int32_t index_of(const PLX_JsonObject& object, const Names names) {
  for (int32_t i = 0; i < object.count; ++i) {
    if (names.matches(object.names[i])) return i;
  }
  return object.count;
}

template <typename Names>
PLX_JsonValue* search(const PLX_JsonValue* value, const Names& names);

// Place of the first container among `values` from `i` on, or the count. Scalars are what there is
// most of, so four are told at a step.
int32_t next_container(PLX_JsonValue* const* values, int32_t i, int32_t count) {
  for (; i + 4 <= count; i += 4) {
    const uint32_t types =
        values[i]->type | values[i + 1]->type | values[i + 2]->type | values[i + 3]->type;
    if (types != PLX_JSON_STRING) break;
  }
  while (i < count && values[i]->type == PLX_JSON_STRING) ++i;
  return i;
}

// The first match below the first `count` of `values`.
template <typename Names>
PLX_JsonValue* search_each(PLX_JsonValue* const* values, int32_t count, const Names& names) {
  for (int32_t i = 0; (i = next_container(values, i, count)) < count; ++i) {
    if (PLX_JsonValue* found = search(values[i], names)) return found;
  }
  return nullptr;
}

// A member's own name goes before what is below its value, and that before the next member; so
// below the values in front of the member that matches, and only there, may be an earlier match.
template <typename Names>
PLX_JsonValue* search(const PLX_JsonValue* value, const Names& names) {
  if (const PLX_JsonArray* array = array_of(value)) {
    return search_each(array->items, array->count, names);
  }
  const PLX_JsonObject* object = object_of(value);
  if (object == nullptr) return nullptr;
  const int32_t match = index_of(*object, names);
  if (PLX_JsonValue* found = search_each(object->values, match, names)) return found;
  return match < object->count ? object->values[match] : nullptr;
}

// The words of a boolean, tested as prefixes in this order.
constexpr struct {
  char word[6];
  size_t length;
  int result;
} kBooleans[] = {{"false", 5, 0}, {"False", 5, 0}, {"FALSE", 5, 0},
                 {"true", 4, 1},  {"True", 4, 1},  {"TRUE", 4, 1}};

int boolean_of(const PLX_JsonValue* value) {
  const char* text = text_of(value);
  if (text == nullptr) return -1;
  for (const auto& boolean : kBooleans) {
    if (strncmp(text, boolean.word, boolean.length) == 0) return boolean.result;
  }
  return -1;
}

}  // namespace

PLX_JsonValue* find(const PLX_JsonValue* value, const char* name) {
  if (name == nullptr) return nullptr;
  return with_matcher(name, [value](const auto& names) { return search(value, names); });
}

const char* text_of(const PLX_JsonValue* value) {
  if (value == nullptr || value->type != PLX_JSON_STRING) return nullptr;
  return static_cast<const char*>(value->data);
}

}  // namespace plx::json

using namespace plx::json;

// gcc wants to hear that an alias throws as little as its target; clang will not hear it.
#ifdef __clang__
#define PLX_SAME_AS(function) __attribute__((alias(function)))
#else
#define PLX_SAME_AS(function) __attribute__((alias(function), nothrow))
#endif

extern "C" {

// Two functions are exported under two names each, with one address. They serve either body, for
// both kinds start with the count and have their first slot array at the same place.
int PLX_JsonGetArrayCount(const PLX_JsonArray* body) { return body != nullptr ? body->count : 0; }
int PLX_JsonGetObjectCount(const PLX_JsonObject* body) PLX_SAME_AS("PLX_JsonGetArrayCount");

PLX_JsonValue* PLX_JsonArrayGetValueByIndex(const PLX_JsonArray* body, int index) {
  if (index < 0 || body == nullptr || index >= body->count) return nullptr;
  return body->items[index];
}
const char* PLX_JsonObjectGetStringByIndex(const PLX_JsonObject* body, int index)
    PLX_SAME_AS("PLX_JsonArrayGetValueByIndex");

PLX_JsonValue* PLX_JsonObjectGetValueByIndex(const PLX_JsonObject* object, int index) {
  if (index < 0 || object == nullptr || index >= object->count) return nullptr;
  return object->values[index];
}

PLX_JsonValue* PLX_JsonObjectGetValueByName(const PLX_JsonObject* object, const char* name) {
  if (object == nullptr || name == nullptr) return nullptr;
  return with_matcher(name, [object](const auto& names) {
    const int32_t match = index_of(*object, names);
    return match < object->count ? object->values[match] : nullptr;
  });
}

PLX_JsonValue* PLX_FindFromJsonValue(const PLX_JsonValue* value, const char* name) {
  return find(value, name);
}

PLX_JsonValue* PLX_FindFromJsonValueiCase(const PLX_JsonValue* value, const char* name) {
  return name != nullptr ? search(value, AnyCase(name)) : nullptr;
}

const char* PLX_FindStringFromJsonValue(const PLX_JsonValue* value, const char* name) {
  return text_of(find(value, name));
}

int PLX_FindNumberFromJsonValue(const PLX_JsonValue* value, const char* name, double* out) {
  const char* text = text_of(find(value, name));
  if (text == nullptr) return -1;
  *out = strtod(text, nullptr);
  return 0;
}

PLX_JsonObject* PLX_FindObjectFromJsonValue(const PLX_JsonValue* value, const char* name) {
  return object_of(find(value, name));
}

PLX_JsonArray* PLX_FindArrayFromJsonValue(const PLX_JsonValue* value, const char* name) {
  return array_of(find(value, name));
}

const char* PLX_GetJsonValueString(const PLX_JsonValue* value) { return text_of(value); }

double PLX_GetJsonValueNumber(const PLX_JsonValue* value) {
  const char* text = text_of(value);
  return text != nullptr ? strtod(text, nullptr) : 0.0;
}

int PLX_GetJsonValueBoolean(const PLX_JsonValue* value) { return boolean_of(value); }

PLX_JsonArray* PLX_GetJsonValueArray(const PLX_JsonValue* value) { return array_of(value); }

PLX_JsonObject* PLX_GetJsonValueObject(const PLX_JsonValue* value) { return object_of(value); }

}  // extern "C"
