// The narrow string functions as the rest of the library calls them: hidden, so that no call
// leaves through an exported name. Contracts as in plx/securec.h.
#ifndef PLX_SRC_SECUREC_STRING_H
#define PLX_SRC_SECUREC_STRING_H

#include <plx/securec.h>
#include <stddef.h>

namespace plx::securec {

errno_t copy_string(char* dst, size_t dst_size, const char* src);
errno_t copy_string(char* dst, size_t dst_size, const char* src, size_t count);
errno_t append_string(char* dst, size_t dst_size, const char* src);
errno_t append_string(char* dst, size_t dst_size, const char* src, size_t count);

}  // namespace plx::securec

#endif
