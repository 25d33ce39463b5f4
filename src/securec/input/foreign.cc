#include "securec/input/foreign.h"

#include "securec/keep_errno.h"

namespace plx::securec::input {

wchar_t convert_byte(char byte) {
  const KeepErrno keep_errno;
  mbstate_t state = {};
  wchar_t wide;
  const size_t length = mbrtowc(&wide, &byte, 1, &state);
  // Both an invalid byte and the first of a longer character give a huge length.
  return length <= 1 ? wide : L'?';
}

size_t convert_wide(wchar_t c, char (&out)[MB_LEN_MAX]) {
  const KeepErrno keep_errno;
  mbstate_t state = {};
  const size_t length = wcrtomb(out, c, &state);
  if (length <= MB_LEN_MAX) return length;
  out[0] = '?';
  return 1;
}

}  // namespace plx::securec::input
