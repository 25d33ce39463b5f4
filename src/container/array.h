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
bool ensure_room(PLX_array* array, int64_t needed);

bool append_element(PLX_array* array, void* element);

}  // namespace plx::container

#endif
