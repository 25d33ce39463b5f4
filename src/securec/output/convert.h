// The conversions: each takes its argument and prints its field. False ends the call: the room has
// run out, or a text does not convert.
#ifndef PLX_SRC_SECUREC_OUTPUT_CONVERT_H
#define PLX_SRC_SECUREC_OUTPUT_CONVERT_H

#include <plx/securec.h>
#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include <type_traits>

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/emit.h"
#include "securec/output/floating.h"
#include "securec/output/integer.h"
#include "securec/output/stream.h"
#include "securec/output/transcode.h"

namespace plx::securec {

inline const char* null_text(const char*) { return "(null)"; }
inline const wchar_t* null_text(const wchar_t*) { return L"(null)"; }

// Takes the argument of a 'c' or 'C' and returns how many characters of output it makes; 0 when it
// does not convert.
inline size_t take_character(const Conversion& conversion, Arguments* arguments,
                             char (&text)[kMaxCharacterSize]) {
  if (conversion.takes_wide_text()) {
    return wctomb_fresh(static_cast<wchar_t>(va_arg(arguments->list, wint_t)), text);
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
  return mbtowc_fresh(static_cast<unsigned char>(va_arg(arguments->list, int)), text) ? 1 : 0;
}

// Apart, like a float, so that buffers weigh on no other conversion's stack.
template <typename Char>
__attribute__((noinline)) bool convert_character(Writer<Char>* out, const Conversion& conversion,
                                                 Arguments* arguments) {
  Char text[kMaxCharacterSize];
  const size_t size = take_character(conversion, arguments, text);
  return size == 0 ||
         put_padded(out, conversion, size, [&] { return out->write_string(text, size); });
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
__attribute__((noinline)) bool convert_pointer(Writer<Char>* out, const Conversion& conversion,
                                               Arguments* arguments) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(va_arg(arguments->list, void*));
  if (address != 0) return put_integer(out, conversion, format_pointer(conversion, address));
  constexpr char kNil[] = "(nil)";
  constexpr size_t kSize = sizeof kNil - 1;
  return put_padded(out, conversion, kSize, [&] { return out->write_ascii(kNil, kSize); });
}

template <typename Char>
__attribute__((noinline)) bool convert_float(Writer<Char>* out, const Conversion& conversion,
                                             Arguments* arguments) {
  FloatText number;
  if (!number.print(conversion, arguments)) return true;
  if (number.is_whole(conversion)) {
    return write_multibyte(out, number.text(), number.size(), number.size());
  }
  return put_float(out, conversion, number.frame(conversion));
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

}  // namespace plx::securec

#endif
