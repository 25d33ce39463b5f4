/* Linkage of the library's exported names. */
#ifndef PLX_EXPORT_H
#define PLX_EXPORT_H

#include <plx/caller_checks.h>
#include <plx/version.h>

#define PLX_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define PLX_BEGIN_DECLS extern "C" {
#define PLX_END_DECLS }
/* In C++ a typed function's symbol follows from its declaration. */
#define PLX_TYPED(symbol)
#else
#define PLX_BEGIN_DECLS
#define PLX_END_DECLS
/* Some functions are exported under the symbol that C++ makes of their parameter types. C callers
 * reach them through an assembler label. */
#define PLX_TYPED(symbol) __asm__(symbol)
#endif

#endif
