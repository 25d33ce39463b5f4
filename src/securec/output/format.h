// Formatted output as the rest of the library calls it: hidden, so that no call leaves through an
// exported name. Contracts as in plx/securec.h.
#ifndef PLX_SRC_SECUREC_OUTPUT_FORMAT_H
#define PLX_SRC_SECUREC_OUTPUT_FORMAT_H

#include <plx/securec.h>
#include <stddef.h>

namespace plx::securec {

// As snprintf_s.
int format_text(char* dst, size_t dst_size, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

}  // namespace plx::securec

#endif
