// The output engine: literal text and conversions, one after the other, into a bounded room.
// Written once for both character widths.
#ifndef PLX_SRC_SECUREC_OUTPUT_ENGINE_H
#define PLX_SRC_SECUREC_OUTPUT_ENGINE_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "securec/limits.h"
#include "securec/output/arguments.h"
#include "securec/output/convert.h"
#include "securec/output/reader.h"
#include "securec/output/stream.h"

namespace plx::securec {

// Finds where literal text ends: at a '%' or at the terminator. Between two conversions there is
// seldom much of it, and often nothing.
template <typename Char>
class LiteralEnd {
 public:
  const Char* find(const Char* text) {
    for (int i = 0; i < kShort; ++i, ++text) {
      if (*text == 0 || *text == '%') return text;
    }
    return find_far(text);
  }

 private:
  static constexpr int kShort = 4;

  const Char* find_far(const Char* text);

  // Of the whole format, once it is known: the C library finds one wide character or the other.
  const Char* format_end_ = nullptr;
};

template <>
inline const char* LiteralEnd<char>::find_far(const char* text) {
#ifdef __ANDROID__  // has strchrnul only since Android 7
  return text + strcspn(text, "%");
#else
  return strchrnul(text, '%');
#endif
}

template <>
inline const wchar_t* LiteralEnd<wchar_t>::find_far(const wchar_t* text) {
  if (format_end_ == nullptr) format_end_ = text + wcslen(text);
  const wchar_t* percent = wmemchr(text, L'%', static_cast<size_t>(format_end_ - text));
  return percent != nullptr ? percent : format_end_;
}

// A conversion that is nothing but its letter. What its missing parts would do is settled when this
// is compiled.
template <char kLetter, typename Char>
bool convert_plain(Writer<Char>* out, Arguments* arguments) {
  Conversion conversion;
  conversion.letter = kLetter;
  return convert(out, conversion, arguments);
}

// False when the format is refused, a text does not convert, or the room has run out.
template <typename Char>
__attribute__((flatten)) bool write_formatted(Writer<Char>* out, const Char* format,
                                              Arguments* arguments) {
  LiteralEnd<Char> literal_end;
  const Char* literal = format;
  for (;;) {
    const Char* const percent = literal_end.find(format);
    if (percent != literal && !out->write_string(literal, static_cast<size_t>(percent - literal))) {
      return false;
    }
    if (*percent == 0) return true;
    literal = percent + 1;
    // The two commonest conversions need no reading.
    if (*literal == 'd' || *literal == 's') {
      const bool goes_on =
          *literal == 'd' ? convert_plain<'d'>(out, arguments) : convert_plain<'s'>(out, arguments);
      if (!goes_on) return false;
      format = ++literal;
      continue;
    }
    Conversion conversion;
    const Reading reading = read_conversion(&literal, arguments, &conversion);
    if (reading == Reading::kRefused) return false;
    if (reading == Reading::kConversion && !convert(out, conversion, arguments)) return false;
    // A character that is printed as it is may look like the start of a conversion.
    format = reading == Reading::kLiteral ? literal + 1 : literal;
  }
}

constexpr int kCut = -2;

// Formats into a buffer of `dst_count` characters and terminates the text. Returns its length,
// kCut when text or terminator did not fit (as much as fits then stands terminated in the buffer),
// or -1.
template <typename Char>
inline __attribute__((always_inline)) int vsnprintf_helper(Char* dst, size_t dst_count,
                                                           const Char* format, va_list args) {
  Arguments arguments(args);
  Writer<Char> out(dst, dst_count);
  const bool is_whole = write_formatted(&out, format, &arguments);
  if (is_whole && out.put_ending_zero()) return static_cast<int>(out.written());
  dst[dst_count - 1] = 0;
  return is_whole || out.is_cut() ? kCut : -1;
}

// A refused call empties the destination where there is one to empty.
template <typename Char>
int refuse(Char* dst, size_t dst_count) {
  if (dst != nullptr && dst_count != 0) dst[0] = 0;
  return -1;
}

// Formats all or nothing.
template <typename Char>
int format_whole(Char* dst, size_t dst_count, const Char* format, va_list args) {
  if (dst == nullptr || format == nullptr || !is_valid_capacity<Char>(dst_count)) {
    return refuse(dst, dst_count);
  }
  const int result = vsnprintf_helper(dst, dst_count, format, args);
  return result >= 0 ? result : refuse(dst, dst_count);
}

// The exported engines: what callers hand over is tested for null and otherwise believed.
template <typename Char>
int format_to_stream(BoundedStream<Char>* stream, const Char* format, va_list args) {
  if (stream == nullptr || stream->position == nullptr || format == nullptr) return -1;
  constexpr int32_t kUnit = sizeof(Char);
  Arguments arguments(args);
  Writer<Char> out(stream->position, static_cast<size_t>(std::max(stream->room, 0) / kUnit));
  const bool is_whole = write_formatted(&out, format, &arguments);
  stream->position = out.position();
  stream->room -= static_cast<int32_t>(out.written()) * kUnit;
  // The character that found no room has taken its share of it too.
  if (out.is_cut() && stream->room >= 0) stream->room -= kUnit;
  return is_whole ? static_cast<int>(out.written()) : -1;
}

}  // namespace plx::securec

#endif
