// Integers and pointers.
#ifndef PLX_SRC_SECUREC_OUTPUT_INTEGER_H
#define PLX_SRC_SECUREC_OUTPUT_INTEGER_H

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/digits.h"
#include "securec/output/field.h"

namespace plx::securec {

using DigitBuffer = char[kMaxDigits];

// Takes the argument of a 'd', 'i', 'u', 'o', 'x' or 'X'. The field's body stands in `buffer`.
Field format_integer(const Conversion& conversion, Arguments* arguments, DigitBuffer& buffer);

// The same for a 'p'.
Field format_pointer(const Conversion& conversion, Arguments* arguments, DigitBuffer& buffer);

}  // namespace plx::securec

#endif
