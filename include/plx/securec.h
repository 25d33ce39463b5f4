/* Bounds-checked C functions: memory, strings, formatted output and formatted input.
 *
 * Every function takes the capacity of its destination, tests its arguments in a fixed order and
 * answers with a code instead of trusting the caller. The names are the published ones of the
 * bounds-checking interfaces (ISO/IEC 9899:2011, annex K); the behaviour is the one described
 * here, which differs from the annex in places.
 *
 * Shared rules:
 *  - Sizes of narrow text and of memory are bytes, from 1 to SECURE_MEM_LIMIT. The functions on
 *    wide text count characters, from 1 to SECURE_WCHAR_LIMIT; a wide character is 4 bytes.
 *    Larger values are refused, never cut.
 *  - When several arguments are bad, the first test that fails decides the result. Each comment
 *    lists the tests in their order.
 *  - EINVAL and ERANGE from an argument test leave the destination untouched. A code with _CLEARED
 *    says that the destination was cleared: the memory functions clear all of it, the string
 *    functions set its first character to 0 and leave what stands behind it.
 *  - Nothing is logged, errno is not set, nothing aborts. Nothing allocates but the formatting and
 *    scanning of long floating-point text and the scanning of files, as said there.
 *  - No function keeps state: all may run on any number of threads at once, on distinct
 *    destinations. Only the standard streams are shared.
 */
#ifndef PLX_SECUREC_H
#define PLX_SECUREC_H

#include <errno.h>
#include <plx/export.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <wchar.h>

PLX_BEGIN_DECLS

/* ---- Result codes and limits ---------------------------------------------------------------- */

#ifndef PLX_ERRNO_T_DEFINED
#define PLX_ERRNO_T_DEFINED
/* errno_t holds one of the codes below. */
typedef int errno_t;
#endif

/* EINVAL (22): the destination is null.  ERANGE (34): its size is 0 or above the limit. Both come
 * from <errno.h>. The codes below are those with bit 0x80 set: the destination was cleared. */
#define EOK 0
#define EINVAL_CLEARED 150   /* the source is null, or an appended-to text has no terminator */
#define ERANGE_CLEARED 162   /* the data does not fit */
#define EOVERLAP_CLEARED 182 /* source and destination overlap */

#define SECURE_MEM_LIMIT 0x7FFFFFFFUL   /* largest size in bytes */
#define SECURE_WCHAR_LIMIT 0x1FFFFFFFUL /* largest count of wide characters */

/* What getQxSecureCVersion reports. */
#define SECURE_C_VERSION_TEXT "Orvane Secure C V100R001C01SPC004"
#define SECURE_C_VERSION_NUMBER 0x0504

/* getQxSecureCVersion stores the version text in `buf`, which holds `bufSize` bytes, and the
 * number 0x0504 in `*verNumber` (skipped when null). The text needs 34 bytes.
 * Returns the result of copying the text: 0, or 162 with `buf` emptied when `bufSize` is from 1 to
 * 33. When there is nothing to copy to (`buf` null or `bufSize` below 1) it returns `buf` itself,
 * as a number: test `*verNumber` and the buffer rather than the result. */
PLX_API intptr_t getQxSecureCVersion(char* buf, int bufSize, unsigned short* verNumber)
    PLX_CHECK_WRITES(1, 2, buf, bufSize);

/* ---- Memory --------------------------------------------------------------------------------- */

/* memset_s sets the first `count` bytes of `dest`, which holds `destMax` bytes, to the low byte of
 * `c`.
 *   ERANGE          `destMax` is above the limit, or is 0 and either `count` is above 0 or `dest`
 *                   is null (0 bytes into a capacity of 0 are set with EOK)
 *   EINVAL          `dest` is null
 *   ERANGE_CLEARED  `count` > `destMax`; all `destMax` bytes are set to `c`, not to zero */
PLX_API errno_t memset_s(void* dest, size_t destMax, int c, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax);

/* memcpy_s copies `count` bytes from `src` to `dest`, which holds `destMax` bytes. The two blocks
 * must not overlap, but may be the same block, which copies nothing.
 *   ERANGE            `destMax` is 0 or above the limit
 *   EINVAL            `dest` is null
 *   EINVAL_CLEARED    `src` is null
 *   ERANGE_CLEARED    `count` > `destMax`
 *   EOVERLAP_CLEARED  the blocks of `count` bytes overlap
 * The last three zero all `destMax` bytes. A `count` of 0 that passes the tests copies nothing. */
PLX_API errno_t memcpy_s(void* dest, size_t destMax, const void* src, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax) PLX_CHECK_READS(3, 4, src, count);

/* memmove_s is memcpy_s for blocks that may overlap; it never returns EOVERLAP_CLEARED. */
PLX_API errno_t memmove_s(void* dest, size_t destMax, const void* src, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax) PLX_CHECK_READS(3, 4, src, count);

/* The OptAsm variants give the same results as the functions above and use no call into the C
 * library for up to 32 bytes (fill) or 64 bytes (copy). The OptTc variants are the same but accept
 * a `destMax` above the limit when nothing else is wrong with the call: they then write under a
 * size that nobody has tested. */
PLX_API errno_t memset_sOptAsm(void* dest, size_t destMax, int c, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax);
PLX_API errno_t memset_sOptTc(void* dest, size_t destMax, int c, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax);
PLX_API errno_t memcpy_sOptAsm(void* dest, size_t destMax, const void* src, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax) PLX_CHECK_READS(3, 4, src, count);
PLX_API errno_t memcpy_sOptTc(void* dest, size_t destMax, const void* src, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax) PLX_CHECK_READS(3, 4, src, count);

/* wmemcpy_s and wmemmove_s are memcpy_s and memmove_s with `destMax` and `count` in wide
 * characters. Their own tests come first:
 *   ERANGE          `destMax` is 0 or above SECURE_WCHAR_LIMIT, or `count` > `destMax` while `dest`
 *                   is null (ERANGE, where the byte functions say EINVAL)
 *   ERANGE_CLEARED  `count` > `destMax`; the whole destination is zeroed */
PLX_API errno_t wmemcpy_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax) PLX_CHECK_READS_WIDE(3, 4, src, count);
PLX_API errno_t wmemmove_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax) PLX_CHECK_READS_WIDE(3, 4, src, count);

/* util_memmove moves `count` bytes between blocks that may overlap. It tests nothing. */
PLX_API void util_memmove(void* dest, const void* src, size_t count);

/* ---- Strings -------------------------------------------------------------------------------- */

/* strcpy_s copies the text `src` with its terminator to `dest`, which holds `destMax` bytes. No
 * more than `destMax` bytes of `src` are read.
 *   ERANGE            `destMax` is 0 or above the limit
 *   EINVAL            `dest` is null
 *   EINVAL_CLEARED    `src` is null
 *   ERANGE_CLEARED    the text and its terminator do not fit
 *   EOVERLAP_CLEARED  the text and its copy overlap; `dest` == `src` is no overlap but EOK
 * Nothing is ever cut: a refused call changes the first character of `dest` and no other. */
PLX_API errno_t strcpy_s(char* dest, size_t destMax, const char* src)
    PLX_CHECK_WRITES(1, 2, dest, destMax) PLX_CHECK_FITS(src, destMax);

/* strncpy_s copies at most `count` characters of `src` and ends them with a terminator. Tests,
 * codes and effects as for strcpy_s, with, after the null test of `src`:
 *   ERANGE_CLEARED  `count` is above the limit
 *   EOK             `count` is 0; `dest` is then the empty text
 * `dest` == `src` cuts the text in place. */
PLX_API errno_t strncpy_s(char* dest, size_t destMax, const char* src, size_t count)
    PLX_CHECK_WRITES(1, 2, dest, destMax);

/* strcat_s appends the text `src` to the text in `dest`, which holds `destMax` bytes in all.
 *   ERANGE            `destMax` is 0 or above the limit
 *   EINVAL            `dest` is null
 *   EINVAL_CLEARED    `src` is null, or no terminator stands within `destMax` bytes of `dest`
 *   EOVERLAP_CLEARED  the text in `dest` runs into `src`, or the append runs into the other text
 *   ERANGE_CLEARED    the result and its terminator do not fit
 * Characters are stored as they are read: a refused append leaves as many of them behind the
 * cleared first character as there was room. */
PLX_API errno_t strcat_s(char* dest, size_t destMax, const char* src)
    PLX_CHECK_UPDATES(1, 2, dest, destMax) PLX_CHECK_FITS(src, destMax);

/* strncat_s appends at most `count` characters of `src`. Tests, codes and effects as for strcat_s,
 * with, after the null test of `src`:
 *   ERANGE_CLEARED  `count` is above the limit
 * A `count` of 0 leaves a terminated `dest` as it is. */
PLX_API errno_t strncat_s(char* dest, size_t destMax, const char* src, size_t count)
    PLX_CHECK_UPDATES(1, 2, dest, destMax);

/* The wide functions count wide characters. wcscat_s and wcsncat_s follow strcat_s and strncat_s;
 * wcsncpy_s follows strncpy_s, but stores as it goes, like an append, and treats `dest` == `src`
 * as an overlap. */
PLX_API errno_t wcsncpy_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax);
PLX_API errno_t wcscat_s(wchar_t* dest, size_t destMax, const wchar_t* src)
    PLX_CHECK_UPDATES_WIDE(1, 2, dest, destMax) PLX_CHECK_FITS_WIDE(src, destMax);
PLX_API errno_t wcsncat_s(wchar_t* dest, size_t destMax, const wchar_t* src, size_t count)
    PLX_CHECK_UPDATES_WIDE(1, 2, dest, destMax);

/* wcscpy_s follows strcpy_s, but stores as it goes, and answers a source that does not fit with
 * ERANGE (not ERANGE_CLEARED), although `dest` is emptied. `dest` == `src` is EOK untested. */
PLX_API errno_t wcscpy_s(wchar_t* dest, size_t destMax, const wchar_t* src)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax) PLX_CHECK_FITS_WIDE(src, destMax);

/* strtok_s returns the next token of `str`, or of `*context` when `str` is null: the longest run of
 * characters that do not occur in `delim`. The delimiter behind it becomes a terminator and
 * `*context` the place to go on from. Returns null when no token is left, or when `delim`,
 * `context` or both texts are null (nothing changes then). An empty `delim` makes the whole rest
 * one token. wcstok_s does the same for wide text. */
PLX_API char* strtok_s(char* str, const char* delim, char** context);
PLX_API wchar_t* wcstok_s(wchar_t* str, const wchar_t* delim, wchar_t** context);

/* gets_s reads one line of standard input into `buffer`, which holds `size` bytes, and removes all
 * carriage returns and line feeds at its end. Returns `buffer`, or null when `buffer` is null,
 * `size` is below 1 or nothing could be read. A longer line is cut at `size` - 1 characters and its
 * rest stays unread. */
PLX_API char* gets_s(char* buffer, int size);

/* ---- Formatted output ----------------------------------------------------------------------- */

/* ---- Formatted input ------------------------------------------------------------------------ */

PLX_END_DECLS

#endif
