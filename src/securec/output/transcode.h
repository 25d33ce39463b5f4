// Text of one width for an output of the other.
//
// Each text is converted from a fresh state of our own: a state that calls share stays spoiled
// once a text was cut in the middle of a character. ASCII, which is the same in every locale that
// the platform offers, is passed through without asking the locale.
#ifndef PLX_SRC_SECUREC_OUTPUT_TRANSCODE_H
#define PLX_SRC_SECUREC_OUTPUT_TRANSCODE_H

#include <limits.h>
#include <stddef.h>
#include <wchar.h>

#include "securec/output/stream.h"

namespace plx::securec {

constexpr size_t kMaxCharacterSize = MB_LEN_MAX;

// Bytes of one wide character, written to `bytes`; 0 when it has none.
size_t wctomb_fresh(wchar_t c, char (&bytes)[kMaxCharacterSize]);

// The wide character of a single byte, false when it has none.
bool mbtowc_fresh(unsigned char byte, wchar_t* out);

// Characters of `text`, at most `max`. Those behind one that does not convert are not counted.
size_t count_characters(const char* text, size_t max);
inline size_t count_characters(const wchar_t* text, size_t max) { return wcsnlen(text, max); }

// Both write at most `max` characters of `text` and stop at its terminator. False when one does
// not convert or the output ends; what stands before it has been written.
bool write_converted(Writer<char>* out, const wchar_t* text, size_t max);
bool write_converted(Writer<wchar_t>* out, const char* text, size_t max);

}  // namespace plx::securec

#endif
