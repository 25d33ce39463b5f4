// Integers and pointers.
#ifndef PLX_SRC_SECUREC_OUTPUT_INTEGER_H
#define PLX_SRC_SECUREC_OUTPUT_INTEGER_H

#include <stdint.h>

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/field.h"

namespace plx::securec {

// Takes the argument of a 'd', 'i', 'u', 'o', 'x' or 'X'.
IntegerField format_integer(const Conversion& conversion, Arguments* arguments);

// The address of a 'p', other than null.
IntegerField format_pointer(const Conversion& conversion, uintptr_t address);

}  // namespace plx::securec

#endif
