// Triple DES over a stream, with the ends that the library's padding leaves.
#ifndef PLX_TOOLS_DES3_DES3_STREAM_H
#define PLX_TOOLS_DES3_DES3_STREAM_H

#include <string>

#include "support/secret.h"

namespace plx::tool {

// How a decrypted text ends.
enum class Des3End {
  kAsItComes,  // all that the library writes: padding, and the block that it appends itself
  kPadding,    // 1 to 7 bytes of padding are stripped
  kZeroBlock,  // the block of zeros behind a whole number of blocks is dropped
  kEither,     // whichever of the two is there
};

// `keys` are 16 or 24 bytes. Both write to standard output as they go.
void des3_encrypt(const std::string& source, const Secret& keys);
void des3_decrypt(const std::string& source, const Secret& keys, Des3End end);

}  // namespace plx::tool

#endif
