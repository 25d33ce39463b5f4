// Secrets in the tool's memory: wiped wherever they stood, read from anywhere but the command line.
#ifndef PLX_TOOLS_SUPPORT_SECRET_H
#define PLX_TOOLS_SUPPORT_SECRET_H

#include <stddef.h>

#include <new>
#include <string>
#include <vector>

#include "internal/wipe.h"

namespace plx::tool {

// Wipes every block before it is given back, those of a growing vector included.
template <typename T>
struct WipingAllocator {
  using value_type = T;
  WipingAllocator() = default;
  template <typename U>
  WipingAllocator(const WipingAllocator<U>&) {}
  T* allocate(size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
  void deallocate(T* block, size_t count) {
    wipe(block, count * sizeof(T));
    ::operator delete(block);
  }
  template <typename U>
  bool operator==(const WipingAllocator<U>&) const {
    return true;
  }
  template <typename U>
  bool operator!=(const WipingAllocator<U>&) const {
    return false;
  }
};

using Secret = std::vector<unsigned char, WipingAllocator<unsigned char>>;

// Reads a secret of at most `limit` bytes from a file, or for "-" from standard input, where a
// terminal is asked for it under the name `what`, without echo.
Secret read_secret(const std::string& source, const char* what, size_t limit);

// Removes one line end, which an editor or `echo` leaves behind a text.
void drop_line_end(Secret* secret);

// Turns hexadecimal digits into bytes. White space between them is skipped. Returns false when
// another character or an odd number of digits is met.
bool decode_hex(const Secret& digits, Secret* out);

// A key of exactly `size` bytes: as raw bytes, or as 2 * `size` hexadecimal digits.
Secret read_key(const std::string& source, const char* what, size_t size);

}  // namespace plx::tool

#endif
