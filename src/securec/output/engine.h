// The output engine: literal text and converted fields, one after the other, into a bounded
// stream. Written once for both character widths.
#ifndef PLX_SRC_SECUREC_OUTPUT_ENGINE_H
#define PLX_SRC_SECUREC_OUTPUT_ENGINE_H

#include <limits.h>
#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <type_traits>

#include "securec/limits.h"
#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/field.h"
#include "securec/output/floating.h"
#include "securec/output/integer.h"
#include "securec/output/reader.h"
#include "securec/output/stream.h"
#include "securec/output/transcode.h"

namespace plx::securec {

// ---- What differs between the widths ------------------------------------------------------------

inline const char* null_text(const char*) { return "(null)"; }
inline const wchar_t* null_text(const wchar_t*) { return L"(null)"; }

inline size_t bounded_length(const char* text, size_t max) { return strnlen(text, max); }
inline size_t bounded_length(const wchar_t* text, size_t max) { return wcsnlen(text, max); }

// Where the literal text at `text` ends: at a '%' or at the terminator. Between two conversions
// there is seldom much of it, and often nothing.
inline const char* find_percent(const char* text) {
  for (int i = 0; i < 4; ++i, ++text) {
    if (*text == 0 || *text == '%') return text;
  }
  return strchrnul(text, '%');
}
inline const wchar_t* find_percent(const wchar_t* text) {
  while (*text != 0 && *text != L'%') ++text;
  return text;
}

// Takes the argument of a 'c' or 'C' and returns how many characters of output it makes; 0 when it
// does not convert.
inline size_t take_character(const Conversion& conversion, Arguments* arguments,
                             char (&text)[kMaxCharacterSize]) {
  if (conversion.takes_wide_text()) {
    return narrow_character(static_cast<wchar_t>(va_arg(arguments->list, wint_t)), text);
  }
  text[0] = static_cast<char>(va_arg(arguments->list, int));
  return 1;
}
inline size_t take_character(const Conversion& conversion, Arguments* arguments,
                             wchar_t (&text)[kMaxCharacterSize]) {
  if (conversion.takes_wide_text()) {
    text[0] = static_cast<wchar_t>(va_arg(arguments->list, wint_t));
    return 1;
  }
  return widen_byte(static_cast<unsigned char>(va_arg(arguments->list, int)), text) ? 1 : 0;
}

// ---- Fields -------------------------------------------------------------------------------------

inline size_t padding(const Conversion& conversion, size_t size) {
  const size_t width = static_cast<size_t>(conversion.width);
  return width > size ? width - size : 0;
}

// Writes what `body()` writes, `size` characters, padded with spaces to the width of the field.
template <typename Char, typename Body>
bool put_padded(Writer<Char>* out, const Conversion& conversion, size_t size, Body body) {
  const size_t pad = padding(conversion, size);
  if (pad == 0) return body();
  const bool left = conversion.has(Conversion::kLeft);
  return (left || out->write_repeated(' ', pad)) && body() &&
         (!left || out->write_repeated(' ', pad));
}

inline bool write_body(Writer<char>* out, const FloatField& field) {
  return out->write_run(field.body, field.body_size);
}
inline bool write_body(Writer<wchar_t>* out, const FloatField& field) {
  // The platform's text may hold a decimal point of several bytes.
  return write_converted(out, field.body, field.text_columns - field.tail_size);
}

template <typename Char>
bool put_float(Writer<Char>* out, const Conversion& conversion, const FloatField& field) {
  const size_t zeros = field.zero_pads ? padding(conversion, field.columns()) : 0;
  return put_padded(out, conversion, field.columns() + zeros, [&] {
    return out->write_ascii(field.prefix.text, field.prefix.size) &&
           out->write_repeated('0', zeros) && write_body(out, field) &&
           out->write_repeated('0', field.zeros) &&
           out->write_ascii(field.body + field.body_size, field.tail_size);
  });
}

// `Sink` is a Writer, or a Pen where the whole field has room.
template <typename Sink>
bool draw_integer(Sink* sink, const Conversion& conversion, const IntegerField& field, size_t pad) {
  if (pad + field.columns() == field.num_digits) {
    return sink->write_digits(field.digits, field.num_digits);
  }
  const bool left = conversion.has(Conversion::kLeft);
  const size_t spaces = field.zero_pads ? 0 : pad;
  return sink->write_repeated(' ', left ? 0 : spaces) &&
         sink->write_ascii(field.prefix.text, field.prefix.size) &&
         sink->write_repeated('0', field.zeros + pad - spaces) &&
         sink->write_digits(field.digits, field.num_digits) &&
         sink->write_repeated(' ', left ? spaces : 0);
}

template <typename Char>
bool put_integer(Writer<Char>* out, const Conversion& conversion, const IntegerField& field) {
  const size_t pad = padding(conversion, field.columns());
  const size_t size = field.columns() + pad;
  if (size > out->room()) return draw_integer(out, conversion, field, pad);
  Pen<Char> pen = out->claim(size);
  return draw_integer(&pen, conversion, field, pad);
}

// Text of the output's own width is measured first, but no further than the room and the field.
template <typename Char>
bool put_text(Writer<Char>* out, const Conversion& conversion, const Char* text, size_t max) {
  const size_t reach = std::max(out->room() + 1, static_cast<size_t>(conversion.width));
  const size_t size = bounded_length(text, std::min(max, reach));
  return put_padded(out, conversion, size, [&] { return out->write_run(text, size); });
}

// Text of the other width is converted as it is written. Fields count its characters.
template <typename Char, typename Other>
bool put_converted_text(Writer<Char>* out, const Conversion& conversion, const Other* text,
                        size_t max) {
  const size_t reach = static_cast<size_t>(conversion.width);
  const size_t size = reach != 0 ? count_characters(text, std::min(max, reach)) : 0;
  return put_padded(out, conversion, size, [&] { return write_converted(out, text, max); });
}

// ---- Conversions: each takes its argument and writes its field; false ends the call -------------

// Apart, like a float, so that buffers weigh on no other conversion's stack.
template <typename Char>
__attribute__((noinline)) bool convert_character(Writer<Char>* out, const Conversion& conversion,
                                                 Arguments* arguments) {
  Char text[kMaxCharacterSize];
  const size_t size = take_character(conversion, arguments, text);
  return size == 0 || put_padded(out, conversion, size, [&] { return out->write_run(text, size); });
}

template <typename Char, typename TextChar>
bool convert_text_of(Writer<Char>* out, const Conversion& conversion, const TextChar* text) {
  if (text == nullptr) text = null_text(text);
  const size_t max =
      conversion.has_precision() ? static_cast<size_t>(conversion.precision) : SECURE_MEM_LIMIT;
  if constexpr (std::is_same_v<Char, TextChar>) {
    return put_text(out, conversion, text, max);
  } else {
    return put_converted_text(out, conversion, text, max);
  }
}

template <typename Char>
bool convert_text(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
  if (conversion.takes_wide_text()) {
    return convert_text_of(out, conversion, va_arg(arguments->list, const wchar_t*));
  }
  return convert_text_of(out, conversion, va_arg(arguments->list, const char*));
}

template <typename Char>
bool convert_integer(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
  return put_integer(out, conversion, format_integer(conversion, arguments));
}

template <typename Char>
bool convert_pointer(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(va_arg(arguments->list, void*));
  if (address != 0) return put_integer(out, conversion, format_pointer(conversion, address));
  constexpr char kNil[] = "(nil)";
  constexpr size_t kSize = sizeof kNil - 1;
  return put_padded(out, conversion, kSize, [&] { return out->write_ascii(kNil, kSize); });
}

template <typename Char>
__attribute__((noinline)) bool convert_float(Writer<Char>* out, const Conversion& conversion,
                                             Arguments* arguments) {
  FloatText text;
  FloatField field;
  return !text.format(conversion, arguments, &field) || put_float(out, conversion, field);
}

template <typename Char>
bool convert(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
  switch (conversion.letter) {
    case 'd':
    case 'i':
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      return convert_integer(out, conversion, arguments);
    case 's':
    case 'S':
      return convert_text(out, conversion, arguments);
    case 'c':
    case 'C':
      return convert_character(out, conversion, arguments);
    case 'p':
      return convert_pointer(out, conversion, arguments);
    default:
      return convert_float(out, conversion, arguments);
  }
}

// ---- The walk through a format ------------------------------------------------------------------

// False when the format is refused, a text does not convert, or the room has run out.
template <typename Char>
__attribute__((flatten)) bool write_formatted(Writer<Char>* out, const Char* format,
                                              Arguments* arguments) {
  const Char* literal = format;
  for (;;) {
    const Char* const percent = find_percent(format);
    if (percent != literal && !out->write_run(literal, static_cast<size_t>(percent - literal))) {
      return false;
    }
    if (*percent == 0) return true;
    literal = percent + 1;
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
inline __attribute__((always_inline)) int format_bounded(Char* dst, size_t dst_count,
                                                         const Char* format, va_list args) {
  Arguments arguments(args);
  Writer<Char> out(dst, dst_count);
  const bool is_whole = write_formatted(&out, format, &arguments);
  if (is_whole && out.room() != 0) {
    *out.position() = 0;
    return static_cast<int>(out.written());
  }
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
  const int result = format_bounded(dst, dst_count, format, args);
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
