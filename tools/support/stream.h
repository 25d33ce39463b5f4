// Input read piece by piece, with its progress shown where it is long.
#ifndef PLX_TOOLS_SUPPORT_STREAM_H
#define PLX_TOOLS_SUPPORT_STREAM_H

#include <stddef.h>

#include <memory>
#include <string>

#include "support/progress.h"

namespace plx::tool {

class InputStream {
 public:
  explicit InputStream(const std::string& source);  // "-" is standard input
  ~InputStream();
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;

  // Fills `buffer` as far as the input goes and returns how far; less than `size` at its end only.
  size_t read(unsigned char* buffer, size_t size);

 private:
  std::string name_;
  int fd_;
  uint64_t done_ = 0;
  std::unique_ptr<Progress> progress_;
};

constexpr size_t kPiece = size_t{1} << 18;

}  // namespace plx::tool

#endif
