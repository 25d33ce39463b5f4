// The argument list of one call, and how an integer of each size is taken from it.
#ifndef PLX_SRC_SECUREC_OUTPUT_ARGUMENTS_H
#define PLX_SRC_SECUREC_OUTPUT_ARGUMENTS_H

#include <stdarg.h>
#include <stdint.h>

#include <type_traits>

#include "securec/output/conversion.h"

namespace plx::securec {

// A caller's list that can be handed on by reference. Where a va_list is an array, a parameter of
// that type is a pointer to the caller's own, and so is `list`: a copy would have to wait for what
// the caller has just stored.
struct Arguments {
  explicit Arguments(va_list caller) : list(caller) {}
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  std::decay_t<va_list> list;
};

// The value of a 'd' or 'i', sign-extended from its size.
inline int64_t take_signed(const Conversion& conversion, Arguments* arguments) {
  if (!conversion.has(Conversion::kAnySize)) return va_arg(arguments->list, int);
  if (conversion.has(Conversion::k64)) return va_arg(arguments->list, int64_t);
  if (conversion.has(Conversion::kChar)) {
    return static_cast<signed char>(va_arg(arguments->list, int));
  }
  if (conversion.has(Conversion::kShort)) return static_cast<short>(va_arg(arguments->list, int));
  return va_arg(arguments->list, long);
}

// The value of any other integer conversion, cut to its size.
inline uint64_t take_unsigned(const Conversion& conversion, Arguments* arguments) {
  if (!conversion.has(Conversion::kAnySize)) return va_arg(arguments->list, unsigned);
  if (conversion.has(Conversion::k64)) return va_arg(arguments->list, uint64_t);
  if (conversion.has(Conversion::kChar)) {
    return static_cast<unsigned char>(va_arg(arguments->list, unsigned));
  }
  if (conversion.has(Conversion::kShort)) {
    return static_cast<unsigned short>(va_arg(arguments->list, unsigned));
  }
  return va_arg(arguments->list, unsigned long);
}

}  // namespace plx::securec

#endif
