// The value of decimals that need no exact arithmetic, which are most of those that people write.
#ifndef PLX_SRC_SECUREC_INPUT_SHORT_DECIMAL_H
#define PLX_SRC_SECUREC_INPUT_SHORT_DECIMAL_H

#include <stddef.h>

namespace plx::securec::input {

// Stores the double next to the number [-] digits [. digits] [e [sign] digits] in `text`, as the
// current rounding mode has it. Returns false, without a value, for what only strtod can tell.
bool convert_short_decimal(const char* text, size_t size, double* out);

}  // namespace plx::securec::input

#endif
