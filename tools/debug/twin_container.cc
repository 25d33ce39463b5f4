// Twins of allocation and of the containers. What a search or an index does not find is no refusal.
#include <plx/container.h>

#include "twin.h"

extern "C" {

PLX_TWIN_(void*, PLX_malloc, "PLX_malloc", (size_t size), (size), result == nullptr, result,
          (PLX_SIZE(size)), PLX_NOTHING)
PLX_TWIN_(void*, PLX_realloc, "PLX_realloc", (void* block, size_t size), (block, size),
          result == nullptr, result, (PLX_SIZE(size)), PLX_NOTHING)
PLX_TWIN_(void*, PLX_reallocMem, "PLX_reallocMem", (void* oldBlock, size_t newSize, size_t oldLen),
          (oldBlock, newSize, oldLen), result == nullptr, result,
          (PLX_SIZE(newSize), PLX_SIZE(oldLen)), PLX_NOTHING)
PLX_TWIN_(char*, PLX_strdup, "PLX_strdup", (const char* str), (str), result == nullptr, result, (),
          PLX_NOTHING)

}  // extern "C"
