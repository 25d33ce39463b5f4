#include <plx/securec.h>

#include "securec/string.h"

extern "C" intptr_t getQxSecureCVersion(char* buf, int bufSize, unsigned short* verNumber) {
  // Without a buffer to fill, the first argument is handed back; callers depend on it.
  auto result = reinterpret_cast<intptr_t>(buf);
  if (buf != nullptr && bufSize > 0) {
    result = plx::securec::copy_string(buf, static_cast<size_t>(bufSize), SECURE_C_VERSION_TEXT);
  }
  if (verNumber != nullptr) *verNumber = SECURE_C_VERSION_NUMBER;
  return result;
}
