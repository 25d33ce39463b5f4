#ifndef PLX_SRC_SECUREC_KEEP_ERRNO_H
#define PLX_SRC_SECUREC_KEEP_ERRNO_H

#include <errno.h>

namespace plx::securec {

// The family reports by its results alone: around calls into the platform that set errno, one of
// these puts back the value that the caller had.
class KeepErrno {
 public:
  KeepErrno() = default;
  ~KeepErrno() { errno = saved_; }
  KeepErrno(const KeepErrno&) = delete;
  KeepErrno& operator=(const KeepErrno&) = delete;

 private:
  const int saved_ = errno;
};

}  // namespace plx::securec

#endif
