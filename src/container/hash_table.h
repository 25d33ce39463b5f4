// PLX_hashtable's enumeration, hidden. Contracts as in plx/container.h.
#ifndef PLX_SRC_CONTAINER_HASH_TABLE_H
#define PLX_SRC_CONTAINER_HASH_TABLE_H

#include <plx/container.h>

namespace plx::container {

void begin_enumeration(PLX_hashtable* table);
void* next_value(PLX_hashtable* table);

}  // namespace plx::container

#endif
