// Twins of the bounds-checked memory and string functions.
#include <plx/securec.h>

#include "twin.h"

using plx::twin::fill_bytes;
using plx::twin::fill_text;
using plx::twin::fill_wide_bytes;
using plx::twin::fill_wide_text;

extern "C" {

#define PLX_TWIN_SET(function)                                                    \
  PLX_TWIN_ERRNO(function, (void* dest, size_t destMax, int c, size_t count),     \
                 (dest, destMax, c, count), (PLX_SIZE(destMax), PLX_SIZE(count)), \
                 fill_bytes(dest, destMax, count))
PLX_TWIN_SET(memset_s)
PLX_TWIN_SET(memset_sOptAsm)
PLX_TWIN_SET(memset_sOptTc)

#define PLX_TWIN_COPY(function)                                                         \
  PLX_TWIN_ERRNO(function, (void* dest, size_t destMax, const void* src, size_t count), \
                 (dest, destMax, src, count), (PLX_SIZE(destMax), PLX_SIZE(count)),     \
                 fill_bytes(dest, destMax, count))
PLX_TWIN_COPY(memcpy_s)
PLX_TWIN_COPY(memcpy_sOptAsm)
PLX_TWIN_COPY(memcpy_sOptTc)
PLX_TWIN_COPY(memmove_s)

#define PLX_TWIN_WIDE_COPY(function)                                                           \
  PLX_TWIN_ERRNO(function, (wchar_t * dest, size_t destMax, const wchar_t* src, size_t count), \
                 (dest, destMax, src, count), (PLX_SIZE(destMax), PLX_SIZE(count)),            \
                 fill_wide_bytes(dest, destMax, count))
PLX_TWIN_WIDE_COPY(wmemcpy_s)
PLX_TWIN_WIDE_COPY(wmemmove_s)

#define PLX_TWIN_TEXT(function, Char, fill)                                                      \
  PLX_TWIN_ERRNO(function, (Char * dest, size_t destMax, const Char* src), (dest, destMax, src), \
                 (PLX_SIZE(destMax)), fill(dest, destMax))
PLX_TWIN_TEXT(strcpy_s, char, fill_text)
PLX_TWIN_TEXT(strcat_s, char, fill_text)
PLX_TWIN_TEXT(wcscpy_s, wchar_t, fill_wide_text)
PLX_TWIN_TEXT(wcscat_s, wchar_t, fill_wide_text)

#define PLX_TWIN_COUNTED_TEXT(function, Char, fill)                                      \
  PLX_TWIN_ERRNO(function, (Char * dest, size_t destMax, const Char* src, size_t count), \
                 (dest, destMax, src, count), (PLX_SIZE(destMax), PLX_SIZE(count)),      \
                 fill(dest, destMax))
PLX_TWIN_COUNTED_TEXT(strncpy_s, char, fill_text)
PLX_TWIN_COUNTED_TEXT(strncat_s, char, fill_text)
PLX_TWIN_COUNTED_TEXT(wcsncpy_s, wchar_t, fill_wide_text)
PLX_TWIN_COUNTED_TEXT(wcsncat_s, wchar_t, fill_wide_text)

// The end of the tokens is no refusal, and neither is the end of the input.
#define PLX_TWIN_TOKEN(function, Char)                                                   \
  PLX_TWIN_(Char*, function, #function, (Char * str, const Char* delim, Char** context), \
            (str, delim, context), delim == nullptr || context == nullptr, result,       \
            ({"delim_given", delim != nullptr}, {"context_given", context != nullptr}),  \
            PLX_NOTHING)
PLX_TWIN_TOKEN(strtok_s, char)
PLX_TWIN_TOKEN(wcstok_s, wchar_t)

PLX_TWIN_(char*, gets_s, "gets_s", (char* buffer, int size), (buffer, size),
          buffer == nullptr || size < 1, result, (PLX_SIZE(size)),
          if (result != nullptr) fill_text(buffer, static_cast<size_t>(size)))

PLX_TWIN_(intptr_t, getQxSecureCVersion, "getQxSecureCVersion",
          (char* buf, int bufSize, unsigned short* verNumber), (buf, bufSize, verNumber),
          buf == nullptr || bufSize < 1 || result != 0,
          (long long)(buf == nullptr || bufSize < 1 ? 0 : result), (PLX_SIZE(bufSize)),
          fill_text(buf, static_cast<size_t>(bufSize)))

}  // extern "C"
