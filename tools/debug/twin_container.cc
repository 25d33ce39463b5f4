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

PLX_TWIN_(PLX_array*, PLX_array_createFromArray, "PLX_array_createFromArray",
          (const PLX_array* array), (array), result == nullptr, result, (), PLX_NOTHING)
PLX_TWIN_INT(PLX_array_append, "PLX_array_append", (PLX_array * array, void* element),
             (array, element), (), PLX_NOTHING)
PLX_TWIN_INT(PLX_array_insert, "PLX_array_insert", (PLX_array * array, void* element, int index),
             (array, element, index), (PLX_SIZE(index)), PLX_NOTHING)
PLX_TWIN_INT(PLX_array_modify, "PLX_array_modify", (PLX_array * array, int index, void* element),
             (array, index, element), (PLX_SIZE(index)), PLX_NOTHING)
PLX_TWIN_INT(PLX_array_preAppend, "PLX_array_preAppend", (PLX_array * array, int n), (array, n),
             (PLX_SIZE(n)), PLX_NOTHING)
PLX_TWIN_INT(PLX_array_move, "PLX_array_move", (PLX_array * array, int from, int to),
             (array, from, to), (PLX_SIZE(from), PLX_SIZE(to)), PLX_NOTHING)
PLX_TWIN_(PLX_hashtable*, PLX_hashtable_create, "PLX_hashtable_create",
          (uint32_t bucketCount, uint32_t (*hashFn)(const void* key, uint32_t bucketCount),
           int (*compareFn)(const void* storedKey, const void* wantedKey),
           void (*freeFn)(void* value)),
          (bucketCount, hashFn, compareFn, freeFn), result == nullptr, result,
          (PLX_SIZE(bucketCount)), PLX_NOTHING)
PLX_TWIN_INT(PLX_hashtable_insert, "PLX_hashtable_insert",
             (PLX_hashtable * table, const void* key, void* value), (table, key, value), (),
             PLX_NOTHING)

}  // extern "C"

PLX_TWIN_(PLX_bufList*, PLX_bufList_init, "_Z16PLX_bufList_initii", (int bufNum, int bufSize),
          (bufNum, bufSize), result == nullptr, result, (PLX_SIZE(bufNum), PLX_SIZE(bufSize)),
          PLX_NOTHING)
PLX_TWIN_INT(PLX_bufList_push_back, "_Z21PLX_bufList_push_backP11PLX_bufListPKvi",
             (PLX_bufList * list, const void* data, int len), (list, data, len), (PLX_SIZE(len)),
             PLX_NOTHING)
PLX_TWIN_INT(PLX_bufList_getUseableBuf, "_Z25PLX_bufList_getUseableBufP11PLX_bufListPPv",
             (PLX_bufList * list, void** buf), (list, buf), (), PLX_NOTHING)

// An empty queue is no refusal.
PLX_TWIN_(int, PLX_bufList_pop_front, "_Z21PLX_bufList_pop_frontP11PLX_bufListPPvPi",
          (PLX_bufList * list, void** buf, int* len), (list, buf, len),
          list == nullptr || buf == nullptr || len == nullptr, result, (), PLX_NOTHING)
