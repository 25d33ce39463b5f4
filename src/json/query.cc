#include "json/query.h"

#include <stdlib.h>
#include <string.h>

#include "json/tree.h"

namespace plx::json {
namespace {

struct SameCase {
  static bool equal(const char* a, const char* b) { return strcmp(a, b) == 0; }
};

// ASCII letters only, whatever the locale.
struct AnyCase {
  static unsigned char lower(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? byte | 0x20 : byte;
  }
  static bool equal(const char* a, const char* b) {
    for (; lower(*a) == lower(*b); ++a, ++b) {
      if (*a == '\0') return true;
    }
    return false;
  }
};

template <typename Names>
PLX_JsonValue* search(const PLX_JsonValue* value, const char* name) {
  if (const PLX_JsonObject* object = object_of(value)) {
    for (int32_t i = 0; i < object->count; ++i) {
      if (Names::equal(object->names[i], name)) return object->values[i];
      if (PLX_JsonValue* found = search<Names>(object->values[i], name)) return found;
    }
  } else if (const PLX_JsonArray* array = array_of(value)) {
    for (int32_t i = 0; i < array->count; ++i) {
      if (PLX_JsonValue* found = search<Names>(array->items[i], name)) return found;
    }
  }
  return nullptr;
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
  return name != nullptr ? search<SameCase>(value, name) : nullptr;
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
  for (int32_t i = 0; i < object->count; ++i) {
    if (SameCase::equal(object->names[i], name)) return object->values[i];
  }
  return nullptr;
}

PLX_JsonValue* PLX_FindFromJsonValue(const PLX_JsonValue* value, const char* name) {
  return find(value, name);
}

PLX_JsonValue* PLX_FindFromJsonValueiCase(const PLX_JsonValue* value, const char* name) {
  return name != nullptr ? search<AnyCase>(value, name) : nullptr;
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
