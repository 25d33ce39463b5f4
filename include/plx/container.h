/* Allocation, containers and text helpers.
 *
 * Heap blocks that the library hands out come from PLX_malloc and go back through PLX_free, unless
 * a function says otherwise. Containers belong to one thread at a time; nothing here locks.
 */
#ifndef PLX_CONTAINER_H
#define PLX_CONTAINER_H

#include <plx/export.h>
#include <stddef.h>
#include <stdint.h>

PLX_BEGIN_DECLS

/* ---- Allocation ----------------------------------------------------------------------------- */

/* PLX_malloc returns a new block of `size` bytes, all zero, or null when `size` is 0, is above
 * 0x7FFFFFFF, or memory is short. Release it with PLX_free. */
PLX_API void* PLX_malloc(size_t size) PLX_CHECK_RESULT;

/* PLX_realloc resizes `block` as the C realloc does and returns it, possibly moved, or null with
 * `block` still valid. A `size` of 0 returns null and leaves `block` alone: unlike the C realloc it
 * never frees. */
PLX_API void* PLX_realloc(void* block, size_t size) PLX_CHECK_RESULT;

/* PLX_reallocMem grows `oldBlock` (may be null), of which the first `oldLen` bytes are kept, to
 * `newSize` bytes. The bytes behind them are indeterminate. Always consumes `oldBlock`: when
 * `newSize` is not above `oldLen`, is above 0x7FFFFFFF, or memory is short, `oldBlock` is freed and
 * null returned, so a null result means that the data is lost. */
PLX_API void* PLX_reallocMem(void* oldBlock, size_t newSize, size_t oldLen) PLX_CHECK_RESULT;

/* PLX_free releases a block of this family. Null is ignored. */
PLX_API void PLX_free(void* block);

/* PLX_strdup returns a heap copy of `str`, to be released with PLX_free; null for null or when
 * memory is short. */
PLX_API char* PLX_strdup(const char* str) PLX_CHECK_RESULT;

/* PLX_posix_memalign and PLX_valloc are the C library's functions of those names. */
PLX_API int PLX_posix_memalign(void** out, size_t alignment, size_t size) PLX_CHECK_RESULT;
PLX_API void* PLX_valloc(size_t size) PLX_CHECK_RESULT;

PLX_END_DECLS

#endif
