#include <plx/securec.h>
#include <stdio.h>
#include <string.h>

#include "securec/keep_errno.h"

extern "C" char* gets_s(char* buffer, int size) {
  if (buffer == nullptr || size <= 0) return nullptr;
  const plx::securec::KeepErrno keep_errno;
  if (fgets(buffer, size, stdin) == nullptr) return nullptr;
  size_t length = strlen(buffer);
  while (length > 0 && (buffer[length - 1] == '\n' || buffer[length - 1] == '\r')) --length;
  buffer[length] = '\0';
  return buffer;
}
