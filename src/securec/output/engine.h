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

// Where the literal text at `text` ends: at a '%' or at the terminator.
inline const char* find_percent(const char* text) { return strchrnul(text, '%'); }
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

// The body of a number. The platform's text may hold a decimal point of several bytes.
inline bool write_body(Writer<char>* out, const Field& field) {
  return out->write_run(field.body, field.body_size);
}
inline bool write_body(Writer<wchar_t>* out, const Field& field) {
  if (field.columns == field.body_size + field.tail_size) {
    return out->write_ascii(field.body, field.body_size);
  }
  return write_converted(out, field.body, field.columns - field.tail_size);
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
  const bool left = conversion.has(Conversion::kLeft);
  return (left || out->write_repeated(' ', pad)) && body() &&
         (!left || out->write_repeated(' ', pad));
}

template <typename Char>
bool put_number(Writer<Char>* out, const Conversion& conversion, const Field& field) {
  const size_t pad = field.zero_pads ? padding(conversion, field.size()) : 0;
  return put_padded(out, conversion, field.size() + pad, [&] {
    return out->write_ascii(field.prefix, field.prefix_size) &&
           out->write_repeated('0', pad + field.zeros) && write_body(out, field) &&
           out->write_repeated('0', field.inner_zeros) &&
           out->write_ascii(field.body + field.body_size, field.tail_size);
  });
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

template <typename Char>
bool convert_character(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
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
  DigitBuffer digits;
  return put_number(out, conversion, format_integer(conversion, arguments, digits));
}

template <typename Char>
bool convert_pointer(Writer<Char>* out, const Conversion& conversion, Arguments* arguments) {
  DigitBuffer digits;
  return put_number(out, conversion, format_pointer(conversion, arguments, digits));
}

// Apart, so that the buffer of a float weighs on no other conversion's stack.
template <typename Char>
__attribute__((noinline)) bool convert_float(Writer<Char>* out, const Conversion& conversion,
                                             Arguments* arguments) {
  FloatText text;
  Field field;
  return !text.format(conversion, arguments, &field) || put_number(out, conversion, field);
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
bool write_formatted(Writer<Char>* out, const Char* format, Arguments* arguments) {
  const Char* search_from = format;
  for (;;) {
    const Char* const percent = find_percent(search_from);
    if (!out->write_run(format, static_cast<size_t>(percent - format))) return false;
    if (*percent == 0) return true;
    format = search_from = percent + 1;
    Conversion conversion;
    switch (read_conversion(&format, arguments, &conversion)) {
      case Reading::kConversion:
        if (!convert(out, conversion, arguments)) return false;
        search_from = format;
        break;
      case Reading::kLiteral:
        search_from = format + 1;
        break;
      case Reading::kRefused:
        return false;
    }
  }
}

// Runs a format over a stream. Returns the number of characters written, or -1.
template <typename Char>
int run_engine(BoundedStream<Char>* stream, const Char* format, va_list args) {
  Arguments arguments(args);
  Writer<Char> out(stream);
  return write_formatted(&out, format, &arguments) ? static_cast<int>(out.written()) : -1;
}

constexpr int kCut = -2;

// Formats into a buffer of `dst_count` characters and terminates the text. Returns its length,
// kCut when text or terminator did not fit (as much as fits then stands terminated in the buffer),
// or -1.
template <typename Char>
int format_bounded(Char* dst, size_t dst_count, const Char* format, va_list args) {
  BoundedStream<Char> stream = {static_cast<int32_t>(dst_count * sizeof(Char)), dst};
  const int result = run_engine(&stream, format, args);
  const bool room_left = stream.room >= static_cast<int32_t>(sizeof(Char));
  if (result >= 0 && room_left) {
    *stream.position = 0;
    return result;
  }
  dst[dst_count - 1] = 0;
  return result >= 0 || stream.room < 0 ? kCut : -1;
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
int run_exported(BoundedStream<Char>* stream, const Char* format, va_list args) {
  if (stream == nullptr || stream->position == nullptr || format == nullptr) return -1;
  return run_engine(stream, format, args);
}

}  // namespace plx::securec

#endif
