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
 *  - Nothing is written outside the sizes given, and nothing that stands there decides anything. On
 *    some machines bytes beside a text are looked at: those that share an aligned vector with it.
 *  - Nothing is logged, errno is not set, nothing aborts. Nothing of ours allocates but the
 *    formatting and scanning of long floating-point text and the scanning of files, as said there;
 *    the C library may for its streams and locales.
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

/* strcpy_s copies the text `src` with its terminator to `dest`, which holds `destMax` bytes. Its
 * end is sought in the first `destMax` bytes of `src`.
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
PLX_API char* gets_s(char* buffer, int size) PLX_CHECK_RESULT PLX_CHECK_WRITES(1, 2, buffer, size);

/* ---- Formatted output ----------------------------------------------------------------------- */

/* The formatters return the number of characters written, without the terminator, or -1; never one
 * of the codes above. A conversion is
 *
 *   % flags width .precision size letter
 *
 *   flags      '-' left-justify, '0' pad with zeros, '+' and ' ' sign of d and i, '#' alternate
 *              form. They may also stand behind the width; digits behind them start it anew.
 *   width      digits or '*'. A negative '*' means '-' and its magnitude. Digits go up to
 *              214748369, the least int is refused.
 *   precision  digits or '*', nothing for 0. A negative '*' counts as not given. Least number of
 *              digits of an integer (at most 512), most characters of a text, digits of a float.
 *   size       hh  char                     l  long; wide character or text
 *              h   short; narrow text       z t  size_t
 *              ll  64 bits                  w  int; wide character or text
 *              j L q I64  64 bits           I32  32 bits
 *              L q  also long double        I  before d i o u x X: size_t
 *              N and Z say nothing. An I before anything else ends the conversion and is printed.
 *   letter     d i u o x X   integers
 *              e f g E F G   floats, the text of the C library's printf in the current locale
 *              p   a pointer: "0x" and digits, "(nil)" for null. Its zero padding holds beside a
 *                  precision.
 *              c s   a character, a text; null prints "(null)"
 *              C S   a wide character, a wide text (narrow with h)
 *
 * "%%" prints the sign itself; nothing may stand between the two.
 *
 * Text of the other width is converted in the current locale. Width and precision count its
 * characters, not its bytes; a 'c' of several bytes is padded by its bytes. A text that does not
 * convert fails the call, a single character ('c') that does not prints nothing.
 *
 * Everything else after '%' is refused, also "%n", "%a" and a format that ends within a conversion.
 * What the precision leaves out of a text is not read. Nothing is allocated but for a float whose
 * width, or whose precision and 349 more (4972 for a long double), reach 512; without memory it
 * prints nothing, and so does one whose precision passes 2147483298 (2147478675).
 *
 * A destination must not overlap the format or an argument. */

/* sprintf_s formats into `dest`, which holds `destMax` bytes, all or nothing. Returns -1 when
 *   `dest` or `format` is null, or `destMax` is 0 or above the limit
 *   the format is refused, or a text does not convert
 *   the text and its terminator do not fit
 * and then leaves the empty text in `dest`, if it is not null and `destMax` not 0. */
PLX_API int sprintf_s(char* dest, size_t destMax, const char* format, ...) PLX_CHECK_FORMAT(3, 4)
    PLX_CHECK_WRITES(1, 2, dest, destMax);
PLX_API int vsprintf_s(char* dest, size_t destMax, const char* format, va_list args)
    PLX_CHECK_FORMAT(3, 0) PLX_CHECK_WRITES(1, 2, dest, destMax);

/* snprintf_s is sprintf_s for at most `count` characters. When more are to be written and `count`
 * is below `destMax`, it returns -1 and keeps the cut text: the first `count` characters and a
 * terminator. Nothing else is ever cut. A `count` of all ones (of 32 bits, or of a size_t) sets no
 * limit; other values above 0x7FFFFFFE are refused like a null `dest`.
 * With `count` at or above `destMax` the last byte of `dest` is set to 0 too. */
PLX_API int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    PLX_CHECK_FORMAT(4, 5) PLX_CHECK_WRITES(1, 2, dest, destMax);
PLX_API int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args)
    PLX_CHECK_FORMAT(4, 0) PLX_CHECK_WRITES(1, 2, dest, destMax);

/* swprintf_s is sprintf_s for wide text: `destMax` and the result count wide characters, and so do
 * widths and precisions. Here too 's' and 'c' take narrow arguments unless marked by l or w. The
 * wide character 0xFFFFFFFF cannot be written and fails the call. */
PLX_API int swprintf_s(wchar_t* dest, size_t destMax, const wchar_t* format, ...)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax);
PLX_API int vswprintf_s(wchar_t* dest, size_t destMax, const wchar_t* format, va_list args)
    PLX_CHECK_WRITES_WIDE(1, 2, dest, destMax);

/* The engines behind them, for callers with a room of their own. */
typedef struct SecurecOutputStream {
  int32_t room;   /* characters that may still be written; below 0 once text was cut */
  char* position; /* where the next one goes */
} SecurecOutputStream;

/* The same for wide text. */
typedef struct SecurecWideOutputStream {
  int32_t room;      /* bytes that may still be written, 4 a character; below 0 once text was cut */
  wchar_t* position; /* where the next character goes */
} SecurecWideOutputStream;

/* securec_output_s formats into the room of `stream` and moves it on behind what was written; no
 * terminator is added. Returns the number of characters written, or -1 when `stream`, its position
 * or `format` is null, when the format is refused or a text does not convert, or when the room ran
 * out: what fits has then been written. securec_woutput_s does the same for wide text. */
PLX_API int securec_output_s(SecurecOutputStream* stream, const char* format, va_list args)
    PLX_CHECK_FORMAT(2, 0);
PLX_API int securec_woutput_s(SecurecWideOutputStream* stream, const wchar_t* format, va_list args);

/* ---- Formatted input ------------------------------------------------------------------------ */

/* The scanning functions read text by a format, from a string (sscanf_s), from standard input
 * (scanf_s) or from a file (fscanf_s), and store what the conversions read. Formats are those of
 * ISO/IEC 9899 scanf, with one argument more: the destination of %s, %c and %[ is followed by its
 * size, an `unsigned int` that counts characters of the destination (bytes, or wide characters).
 *
 *     char word[16];
 *     int number;
 *     sscanf_s(line, "%15s %d", word, (unsigned)sizeof word, &number);
 *
 * Results. The number of fields assigned. -1 when the format, the text or the stream is null, the
 * text is empty or longer than INT_MAX, the input ends before a conversion or an ordinary character
 * and nothing was assigned, or a destination is null (even if fields before it were assigned).
 * Fields assigned before a failure keep their values.
 *
 * Directives. White space matches any amount of white space. An ordinary character and "%%" match
 * themselves; no white space is skipped for them. A conversion is '%', an optional '*' (read and do
 * not assign), an optional width (0 is none), modifiers and a letter. All but %c, %[ and %n skip
 * white space first. A letter in the other case is the same, but for %C and %S. Anything else after
 * '%' ends the scan, and so does a set without its ']'.
 *
 *   d u      decimal                   a sign may stand before every number; it negates an unsigned
 *   o        octal                     one. x, p and i take a "0x" that a digit follows; a sign or
 *   x p      hexadecimal               "0x" alone is no number. A number is gathered in 64 bits and
 *   i        by prefix: 0x, 0, none    stays at the largest or smallest of these (signed for d and
 *                                      i); the low bits that the destination holds are stored
 *   e f g    floating point: digits, the locale's point, an exponent, which may lack its digits.
 *            No infinity, NaN or hexadecimal number. strtod gives the value, also for the other
 *            two types
 *   s        characters other than white space, and a terminator
 *   [        characters in the set, or not in it after "[^", and a terminator. ']' in the first
 *            place is a member, and '-' in the first or last. "a-z" is a range; of a reversed
 *            one like "z-a" its two ends and the '-' are members, no others
 *   c        as many characters as the width says (1), no terminator. At the end of the input it
 *            may be fewer
 *   n        stores the number of characters taken so far; it is not counted as a field
 *
 *   Modifier     integers, %n            floating point   text
 *   none         int                     float            char; %C and %S wchar_t
 *   hh, h        char, short             float            char
 *   l            long                    double           wchar_t
 *   t, z         long (ptrdiff_t)        double
 *   ll, L, j, q  64 bits                 long double      ll: wchar_t
 *   I64, I32     64 bits, 32 bits
 *   I            size of a pointer; only before d, i, o, u, x and X, else the letter i
 *   w                                                     wchar_t
 *   F, N         no effect; a modifier if a modifier or a letter follows, else the letter itself
 * %p always stores a pointer.
 *
 * Sizes. When a text does not fit, its first character becomes 0 and the scan ends with the fields
 * before it; the character that did not fit is not taken. %s and %[ need one character of the size
 * for the terminator. A size of 0 stores a 0 all the same: there must be one character. A size
 * above SECURE_MEM_LIMIT (wide: SECURE_WCHAR_LIMIT) ends the scan. A text of no characters is a
 * mismatch and leaves its destination as it is.
 *
 * Other widths. Text of one width is converted into a destination of the other as the locale says,
 * each character on its own: every byte of a longer character, and everything that has no
 * counterpart, becomes '?'. Narrow input knows the white space of ASCII, wide input that of
 * iswspace.
 *
 * A text with a NUL cannot be read from a string; from a stream it is an ordinary character. */

/* sscanf_s reads the string `buffer`, whose length is measured first. An empty one gives -1 and
 * empties the destination of a first conversion by c, s or [, see clearDestBuf. swscanf_s does the
 * same for wide text. */
PLX_API int sscanf_s(const char* buffer, const char* format, ...);
PLX_API int vsscanf_s(const char* buffer, const char* format, va_list args);
PLX_API int swscanf_s(const wchar_t* buffer, const wchar_t* format, ...);
PLX_API int vswscanf_s(const wchar_t* buffer, const wchar_t* format, va_list args);

/* scanf_s reads standard input by fgetc, wscanf_s by fgetwc. Nothing is read that the format does
 * not ask for, and what was looked at but not taken is given back to the stream. */
PLX_API int scanf_s(const char* format, ...);
PLX_API int vscanf_s(const char* format, va_list args);
PLX_API int wscanf_s(const wchar_t* format, ...);
PLX_API int vwscanf_s(const wchar_t* format, va_list args);

/* fscanf_s reads `stream` in chunks of 1024 bytes, held on the heap for the time of the call (the
 * input is at its end when there is no memory), and leaves it just behind the last character taken.
 * Of a stream without a position, such as a pipe, it reads one character at a time and gives back
 * what was not taken by ungetc. A UTF-8 byte-order mark where the call starts to read is passed
 * over; %n does not count it.
 * fwscanf_s takes each character from the bytes of a wchar_t, whatever the locale, and removes the
 * bytes FF FE or FE FF where it starts; the order of bytes is not changed by them. */
PLX_API int fscanf_s(FILE* stream, const char* format, ...);
PLX_API int vfscanf_s(FILE* stream, const char* format, va_list args);
PLX_API int fwscanf_s(FILE* stream, const wchar_t* format, ...);
PLX_API int vfwscanf_s(FILE* stream, const wchar_t* format, va_list args);

/* clearDestBuf is the step of sscanf_s for an empty text: if the first '%' of `format` starts an
 * assigned conversion by c, s or [ (with no other modifiers than h, l and w), a 0 is stored at its
 * destination, the first in `args`, unless that is null or its size is 0 or above INT_MAX. A wide
 * destination gets a wide 0 if its size is at least 4, else one byte. `buffer` is not looked at.
 * clearwDestBuf takes a wide format. */
PLX_API void clearDestBuf(const char* buffer, const char* format, va_list args);
PLX_API void clearwDestBuf(const wchar_t* buffer, const wchar_t* format, va_list args);

/* The engines behind these functions, and their records of a source of characters, which only the
 * library makes. They return the number of fields, -1 when the input ended before anything was
 * assigned (or an argument is null), and -2 for a null destination. */
typedef struct SecureInputSource SecureInputSource;
typedef struct SecureWideInputSource SecureWideInputSource;
PLX_API int securec_input_s(SecureInputSource* source, const char* format, va_list args);
PLX_API int securec_winput_s(SecureWideInputSource* source, const wchar_t* format, va_list args);

PLX_END_DECLS

#endif
