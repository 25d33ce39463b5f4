// PLX_array inside the library: what its files share. Contracts as in plx/container.h.
#ifndef PLX_SRC_CONTAINER_ARRAY_H
#define PLX_SRC_CONTAINER_ARRAY_H

#include <plx/container.h>
#include <stdint.h>

namespace plx::container {

using ReleaseElement = void (*)(void* element);

PLX_array* create_array(ReleaseElement clean);
void free_array_alone(PLX_array* array);  // its elements stay

// Makes `needed` slots available; false when there are none to be had.
[[gnu::noinline]] bool grow_array(PLX_array* array, int64_t needed);

inline bool ensure_room(PLX_array* array, int64_t needed) {
  if (needed <= 0) return false;
  // A failed growth leaves a capacity without slots.
  if (needed <= array->capacity && array->items != nullptr) return true;
  return grow_array(array, needed);
}

[[gnu::noinline]] bool append_growing(PLX_array* array, void* element);

// With room it needs no call and no frame.
inline bool append_element(PLX_array* array, void* element) {
  if (array->count >= array->capacity || array->items == nullptr) {
    return append_growing(array, element);
  }
  array->items[array->count++] = element;
  return true;
}

}  // namespace plx::container

#endif
