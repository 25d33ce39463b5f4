/* What the compiler can see of a caller's mistakes.
 *
 * The macros stand behind the declarations of the other headers. They add warnings to calls and
 * change nothing else: no symbol, no code, no result. They know less than the functions accept (the
 * formats "%I64d" and "%wc", flags behind a width) and cannot know that a call is wrong on purpose;
 * define PLX_NO_CALLER_CHECKS before the first header of the library to have none of them.
 *
 * gcc from 11 on sees formats, ignored results, and sizes beyond a destination or a source; clang
 * sees literals that cannot fit as well. Null is a documented refusal, so nothing is marked as
 * never null. One false alarm is left: to gcc a size beside a pointer says that there is a block,
 * and it remarks on a literal null beside a constant size above 0 (-Wnonnull), however the pair is
 * marked. Pass a size of 0 with it, or compile that call with -Wno-nonnull.
 *
 *   PLX_CHECK_RESULT   a result that nobody looks at hides a refusal, or leaks
 *   PLX_CHECK_FORMAT   the arguments from position `first` on (0: none in sight) suit the format
 *   PLX_CHECK_WRITES   `dest` holds at least `size` bytes (_WIDE: wide characters)
 *   PLX_CHECK_UPDATES  the same, and `dest` holds a text already
 *   PLX_CHECK_READS    `src` holds at least `count` bytes (_WIDE: wide characters)
 *   PLX_CHECK_FITS     the literal `src` and its terminator fit into `size` characters
 *
 * Behind an assembler label, which the typed functions have in C, clang knows no parameter names;
 * PLX_CHECK_BEHIND_LABEL leaves the checks that need them out there.
 *
 * Where a macro takes both, gcc needs the parameter's position and clang its name.
 */
#ifndef PLX_CALLER_CHECKS_H
#define PLX_CALLER_CHECKS_H

#if defined(PLX_NO_CALLER_CHECKS) || !defined(__GNUC__) || (!defined(__clang__) && __GNUC__ < 11)

#define PLX_CHECK_RESULT
#define PLX_CHECK_BEHIND_LABEL(...)
#define PLX_CHECK_FORMAT(format_at, first)
#define PLX_CHECK_WRITES(dest_at, size_at, dest, size)
#define PLX_CHECK_WRITES_WIDE(dest_at, size_at, dest, size)
#define PLX_CHECK_UPDATES(dest_at, size_at, dest, size)
#define PLX_CHECK_UPDATES_WIDE(dest_at, size_at, dest, size)
#define PLX_CHECK_READS(src_at, count_at, src, count)
#define PLX_CHECK_READS_WIDE(src_at, count_at, src, count)
#define PLX_CHECK_FITS(src, size)
#define PLX_CHECK_FITS_WIDE(src, size)

#else

#include <stddef.h>

#define PLX_CHECK_RESULT __attribute__((warn_unused_result))
#define PLX_CHECK_FORMAT(format_at, first) __attribute__((format(printf, format_at, first)))

#if defined(__clang__) && !defined(__cplusplus)
#define PLX_CHECK_BEHIND_LABEL(...)
#else
#define PLX_CHECK_BEHIND_LABEL(...) __VA_ARGS__
#endif

#ifdef __clang__
#define PLX_CHECK_SEEN_(condition, text)                                                \
  _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wgcc-compat\"") \
      __attribute__((diagnose_if(condition, text, "warning"))) _Pragma("clang diagnostic pop")
#define PLX_CHECK_ROOM_(block, type, count, text) \
  PLX_CHECK_SEEN_(__builtin_object_size(block, 0) / sizeof(type) < (size_t)(count), text)
#define PLX_CHECK_WRITES(dest_at, size_at, dest, size) \
  PLX_CHECK_ROOM_(dest, char, size, "the size is larger than the destination")
#define PLX_CHECK_WRITES_WIDE(dest_at, size_at, dest, size) \
  PLX_CHECK_ROOM_(dest, wchar_t, size, "the size in wide characters is larger than the destination")
#define PLX_CHECK_UPDATES(dest_at, size_at, dest, size) \
  PLX_CHECK_WRITES(dest_at, size_at, dest, size)
#define PLX_CHECK_UPDATES_WIDE(dest_at, size_at, dest, size) \
  PLX_CHECK_WRITES_WIDE(dest_at, size_at, dest, size)
#define PLX_CHECK_READS(src_at, count_at, src, count) \
  PLX_CHECK_ROOM_(src, char, count, "the count is larger than the source")
#define PLX_CHECK_READS_WIDE(src_at, count_at, src, count) \
  PLX_CHECK_ROOM_(src, wchar_t, count, "the count in wide characters is larger than the source")
#define PLX_CHECK_FITS(src, size)                          \
  PLX_CHECK_SEEN_(__builtin_strlen(src) >= (size_t)(size), \
                  "the literal and its terminator do not fit into the size")
#define PLX_CHECK_FITS_WIDE(src, size)                     \
  PLX_CHECK_SEEN_(__builtin_wcslen(src) >= (size_t)(size), \
                  "the literal and its terminator do not fit into the size")
#else
#define PLX_CHECK_WRITES(dest_at, size_at, dest, size) \
  __attribute__((access(write_only, dest_at, size_at)))
#define PLX_CHECK_WRITES_WIDE(dest_at, size_at, dest, size) \
  PLX_CHECK_WRITES(dest_at, size_at, dest, size)
#define PLX_CHECK_UPDATES(dest_at, size_at, dest, size) \
  __attribute__((access(read_write, dest_at, size_at)))
#define PLX_CHECK_UPDATES_WIDE(dest_at, size_at, dest, size) \
  PLX_CHECK_UPDATES(dest_at, size_at, dest, size)
#define PLX_CHECK_READS(src_at, count_at, src, count) \
  __attribute__((access(read_only, src_at, count_at)))
#define PLX_CHECK_READS_WIDE(src_at, count_at, src, count) \
  PLX_CHECK_READS(src_at, count_at, src, count)
#define PLX_CHECK_FITS(src, size)
#define PLX_CHECK_FITS_WIDE(src, size)
#endif

#endif

#endif
