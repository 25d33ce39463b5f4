// The bounds-checked functions leave errno alone, and so must what they call in the C library.
#ifndef PLX_SRC_SECUREC_OUTPUT_KEEP_ERRNO_H
#define PLX_SRC_SECUREC_OUTPUT_KEEP_ERRNO_H

#include <errno.h>

namespace plx::securec {

class KeepErrno {
 public:
  KeepErrno() : saved_(errno) {}
  ~KeepErrno() { errno = saved_; }
  KeepErrno(const KeepErrno&) = delete;
  KeepErrno& operator=(const KeepErrno&) = delete;

 private:
  int saved_;
};

}  // namespace plx::securec

#endif
