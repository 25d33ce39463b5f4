#include "json/tree.h"

#include <stddef.h>
#include <string.h>

#include "container/alloc.h"
#include "internal/wipe.h"

// Callers read these records directly, so every field stays where it is.
template <size_t k64, size_t k32>
constexpr size_t kPerAbi = sizeof(void*) == 8 ? k64 : k32;

static_assert(offsetof(PLX_JsonValue, type) == 0);
static_assert(offsetof(PLX_JsonValue, data) == kPerAbi<8, 4>);
static_assert(sizeof(PLX_JsonValue) == kPerAbi<16, 8>);

static_assert(offsetof(PLX_JsonObject, count) == 0);
static_assert(offsetof(PLX_JsonObject, capacity) == 4);
static_assert(offsetof(PLX_JsonObject, names) == 8);
static_assert(offsetof(PLX_JsonObject, values) == kPerAbi<16, 12>);
static_assert(sizeof(PLX_JsonObject) == kPerAbi<24, 16>);

// One function counts either body and one returns a slot of either.
static_assert(offsetof(PLX_JsonArray, count) == offsetof(PLX_JsonObject, count));
static_assert(offsetof(PLX_JsonArray, capacity) == 4);
static_assert(offsetof(PLX_JsonArray, items) == offsetof(PLX_JsonObject, names));
static_assert(sizeof(PLX_JsonArray) == kPerAbi<16, 12>);

namespace plx::json {
namespace {

// Slots for `count` entries, null for none. Tells through `out_ok` whether that is as wanted.
template <typename T>
T** make_slots(size_t count, bool* out_ok) {
  T** slots = static_cast<T**>(allocate_block(count * sizeof(T*)));
  if (slots == nullptr && count != 0) *out_ok = false;
  return slots;
}

template <typename Body>
Body* checked_body(Body* body, bool ok) {
  if (ok) return body;
  release_body(body);
  return nullptr;
}

}  // namespace

PLX_JsonArray* make_array(size_t count) {
  auto* array = static_cast<PLX_JsonArray*>(allocate_block(sizeof(PLX_JsonArray)));
  if (array == nullptr) return nullptr;
  bool ok = true;
  *array = {static_cast<int32_t>(count), static_cast<uint32_t>(count),
            make_slots<PLX_JsonValue>(count, &ok)};
  return checked_body(array, ok);
}

PLX_JsonObject* make_object(size_t count) {
  auto* object = static_cast<PLX_JsonObject*>(allocate_block(sizeof(PLX_JsonObject)));
  if (object == nullptr) return nullptr;
  bool ok = true;
  *object = {static_cast<int32_t>(count), static_cast<uint32_t>(count),
             make_slots<char>(count, &ok), make_slots<PLX_JsonValue>(count, &ok)};
  return checked_body(object, ok);
}

void release_body(PLX_JsonArray* array) {
  release_block(array->items);
  release_block(array);
}

void release_body(PLX_JsonObject* object) {
  release_block(object->names);
  release_block(object->values);
  release_block(object);
}

void release_text(void* text, Texts texts) {
  if (texts == Texts::kSecret) wipe(text, strlen(static_cast<char*>(text)));
  release_block(text);
}

void wipe_texts(const PLX_JsonValue* value) {
  if (value->type == PLX_JSON_STRING) {
    wipe(value->data, strlen(static_cast<char*>(value->data)));
  } else if (const PLX_JsonObject* object = object_of(value)) {
    for (int32_t i = 0; i < object->count; ++i) wipe_texts(object->values[i]);
  } else if (const PLX_JsonArray* array = array_of(value)) {
    for (int32_t i = 0; i < array->count; ++i) wipe_texts(array->items[i]);
  }
}

void release(PLX_JsonValue* value, Texts texts) {
  if (value == nullptr) return;
  if (value->type == PLX_JSON_STRING) {
    release_text(value->data, texts);
  } else if (PLX_JsonObject* object = object_of(value)) {
    for (int32_t i = object->count; i-- > 0;) {
      release_block(object->names[i]);
      release(object->values[i], texts);
    }
    release_body(object);
  } else if (PLX_JsonArray* array = array_of(value)) {
    for (int32_t i = array->count; i-- > 0;) release(array->items[i], texts);
    release_body(array);
  }
  release_block(value);
}

}  // namespace plx::json

extern "C" {

void PLX_FreeJsonValue(PLX_JsonValue* value) { plx::json::release(value); }

}  // extern "C"
