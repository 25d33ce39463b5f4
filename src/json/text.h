// Reading one text (a scalar or a member's name) out of the input.
#ifndef PLX_SRC_JSON_TEXT_H
#define PLX_SRC_JSON_TEXT_H

#include <stddef.h>
#include <string.h>

#include "container/alloc.h"
#include "json/characters.h"

namespace plx::json {

// An unescaped text in a block of its exact size, owned by whoever holds it.
struct Text {
  char* data;     // null where there is none
  size_t length;  // without the terminator
};

// The first character from `p` on that is in one of `classes`, of which the terminator must be one.
inline const char* find_any(const char* p, unsigned classes) {
  for (;; p += 4) {
    if (is_any(p[0], classes)) return p;
    if (is_any(p[1], classes)) return p + 1;
    if (is_any(p[2], classes)) return p + 2;
    if (is_any(p[3], classes)) return p + 3;
  }
}

// What ends a run of plain characters between double quotes.
constexpr unsigned kEndsPlain = kDoubleQuote | kBackslash | kControl;

// The same as find_any for kEndsPlain, on texts that are long.
const char* find_end_of_long(const char* p);

// Most texts end within a few characters, which a table finds soonest.
inline const char* find_end_of_plain(const char* p) {
  for (const char* const far = p + 16; p != far; p += 4) {
    if (is_any(p[0], kEndsPlain)) return p;
    if (is_any(p[1], kEndsPlain)) return p + 1;
    if (is_any(p[2], kEndsPlain)) return p + 2;
    if (is_any(p[3], kEndsPlain)) return p + 3;
  }
  return find_end_of_long(p);
}

// Copies `size` bytes, at least one. Most texts are short, so they are copied by two pieces that
// may overlap, and without a call.
inline void copy_run(char* dst, const char* src, size_t size) {
  const auto copy_ends = [&](auto piece) {
    auto tail = piece;
    memcpy(&piece, src, sizeof piece);
    memcpy(&tail, src + size - sizeof tail, sizeof tail);
    memcpy(dst, &piece, sizeof piece);
    memcpy(dst + size - sizeof tail, &tail, sizeof tail);
  };
  struct TwoWords {
    uint64_t words[2];
  };
  if (size > 2 * sizeof(TwoWords)) {
    memcpy(dst, src, size);
  } else if (size >= sizeof(TwoWords)) {
    copy_ends(TwoWords{});
  } else if (size >= sizeof(uint64_t)) {
    copy_ends(uint64_t{});
  } else if (size >= sizeof(uint32_t)) {
    copy_ends(uint32_t{});
  } else {
    const char middle = src[size / 2], last = src[size - 1];
    dst[0] = src[0];
    dst[size / 2] = middle;
    dst[size - 1] = last;
  }
}

// A copy of the text from `first` to `last`, where a closing quote or the like stands.
inline Text copy_plain_text(const char* first, const char* last) {
  const auto length = static_cast<size_t>(last - first);
  char* data = static_cast<char*>(allocate_block(length + 1));
  if (data != nullptr) {
    copy_run(data, first, length + 1);
    data[length] = '\0';
  }
  return {data, length};
}

// Reads a text that read_text does not read by itself; the same contract.
Text read_unusual_text(const char** cursor);

// Reads a quoted string or, where there is none or it is rejected, a bare token at `*cursor`, and
// moves the cursor past it. No text means that the parse fails.
inline Text read_text(const char** cursor) {
  const char* first = *cursor;
  if (*first == '"') {
    const char* last = find_end_of_plain(++first);
    if (*last == '"' && last[1] != '\0') {
      *cursor = last + 1;
      return copy_plain_text(first, last);
    }
  } else {
    const char* last = find_any(first, kEndsToken | kBackslash | kControl);
    if (last != first && is_any(*last, kEndsToken)) {
      *cursor = last;
      return copy_plain_text(first, last);
    }
  }
  return read_unusual_text(cursor);
}

}  // namespace plx::json

#endif
