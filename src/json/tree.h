// The records of a tree: their layout, and how they are made and released.
#ifndef PLX_SRC_JSON_TREE_H
#define PLX_SRC_JSON_TREE_H

#include <plx/json.h>

#include "container/alloc.h"

namespace plx::json {

// A new record of kind `type` that owns `data`; null, with `data` still the caller's, when memory
// is short.
inline PLX_JsonValue* make_value(uint32_t type, void* data) {
  auto* value = static_cast<PLX_JsonValue*>(allocate_block(sizeof(PLX_JsonValue)));
  if (value != nullptr) *value = {type, data};
  return value;
}

// Bodies without entries, `count` slots allocated and counted; the slots are to be filled at once.
// Null when memory is short.
PLX_JsonArray* make_array(size_t count);
PLX_JsonObject* make_object(size_t count);

// Whether the values' texts are wiped before they are released.
enum class Texts : bool { kPlain, kSecret };

void release_text(void* text, Texts texts);

// Wipes the texts of what `value` is and of everything below it.
void wipe_texts(const PLX_JsonValue* value);

// Releases `value`, which may be null, and everything below it, the last entries first.
void release(PLX_JsonValue* value, Texts texts = Texts::kPlain);

// Releases a body and its slot arrays, but not what the slots hold.
void release_body(PLX_JsonArray* array);
void release_body(PLX_JsonObject* object);

inline PLX_JsonArray* array_of(const PLX_JsonValue* value) {
  if (value == nullptr || value->type != PLX_JSON_ARRAY) return nullptr;
  return static_cast<PLX_JsonArray*>(value->data);
}

inline PLX_JsonObject* object_of(const PLX_JsonValue* value) {
  if (value == nullptr || value->type != PLX_JSON_OBJECT) return nullptr;
  return static_cast<PLX_JsonObject*>(value->data);
}

}  // namespace plx::json

#endif
