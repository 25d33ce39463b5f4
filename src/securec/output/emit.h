// Fields as they are printed: the padding around a converted argument, and where it goes.
#ifndef PLX_SRC_SECUREC_OUTPUT_EMIT_H
#define PLX_SRC_SECUREC_OUTPUT_EMIT_H

#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "securec/output/conversion.h"
#include "securec/output/field.h"
#include "securec/output/stream.h"
#include "securec/output/transcode.h"

namespace plx::securec {

inline size_t bounded_length(const char* text, size_t max) { return strnlen(text, max); }
inline size_t bounded_length(const wchar_t* text, size_t max) { return wcsnlen(text, max); }

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
  return (left || out->write_multi_char(' ', pad)) && body() &&
         (!left || out->write_multi_char(' ', pad));
}

// Writes multibyte text of `size` bytes and at most `max` characters.
inline bool write_multibyte(Writer<char>* out, const char* text, size_t size, size_t) {
  return out->write_string(text, size);
}
inline bool write_multibyte(Writer<wchar_t>* out, const char* text, size_t, size_t max) {
  return write_converted(out, text, max);
}

// Apart, for few floats are padded.
template <typename Char>
__attribute__((noinline)) bool put_float(Writer<Char>* out, const Conversion& conversion,
                                         const FloatField& field) {
  const size_t zeros = field.zero_pads ? padding(conversion, field.columns()) : 0;
  return put_padded(out, conversion, field.columns() + zeros, [&] {
    return out->write_ascii(field.prefix.text, field.prefix.size) &&
           out->write_multi_char('0', zeros) &&
           write_multibyte(out, field.body, field.body_size,
                           field.text_columns - field.tail_size) &&
           out->write_multi_char('0', field.zeros) &&
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
  return sink->write_multi_char(' ', left ? 0 : spaces) &&
         sink->write_ascii(field.prefix.text, field.prefix.size) &&
         sink->write_multi_char('0', field.zeros + pad - spaces) &&
         sink->write_digits(field.digits, field.num_digits) &&
         sink->write_multi_char(' ', left ? spaces : 0);
}

// Apart, for it is large and few numbers run out of room.
template <typename Char>
__attribute__((noinline)) bool draw_cut_integer(Writer<Char>* out, const Conversion& conversion,
                                                const IntegerField& field, size_t pad) {
  return draw_integer(out, conversion, field, pad);
}

template <typename Char>
bool put_integer(Writer<Char>* out, const Conversion& conversion, const IntegerField& field) {
  const size_t pad = padding(conversion, field.columns());
  const size_t size = field.columns() + pad;
  if (size > out->room()) return draw_cut_integer(out, conversion, field, pad);
  Pen<Char> pen = out->claim(size);
  return draw_integer(&pen, conversion, field, pad);
}

// Text of the output's own width is measured first, but no further than the room and the field.
template <typename Char>
bool put_text(Writer<Char>* out, const Conversion& conversion, const Char* text, size_t max) {
  const size_t reach = std::max(out->room() + 1, static_cast<size_t>(conversion.width));
  const size_t size = bounded_length(text, std::min(max, reach));
  return put_padded(out, conversion, size, [&] { return out->write_string(text, size); });
}

// Text of the other width is converted as it is written. Fields count its characters.
template <typename Char, typename Other>
__attribute__((noinline)) bool put_converted_text(Writer<Char>* out, const Conversion& conversion,
                                                  const Other* text, size_t max) {
  const size_t reach = static_cast<size_t>(conversion.width);
  const size_t size = reach != 0 ? count_characters(text, std::min(max, reach)) : 0;
  return put_padded(out, conversion, size, [&] { return write_converted(out, text, max); });
}

}  // namespace plx::securec

#endif
