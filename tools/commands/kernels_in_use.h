// Which of the library's kernels this processor runs.
#ifndef PLX_TOOLS_COMMANDS_KERNELS_IN_USE_H
#define PLX_TOOLS_COMMANDS_KERNELS_IN_USE_H

#include <stddef.h>

#include <string>

namespace plx::tool {

struct KernelsInUse {
  std::string sha256;
  std::string base64;
  std::string des;
  size_t des_from;  // blocks; fewer go through the tables
};

KernelsInUse kernels_in_use();

}  // namespace plx::tool

#endif
