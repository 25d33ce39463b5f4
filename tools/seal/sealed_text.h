// Texts sealed with AES-CBC: by a key of the caller's or by a stored one.
#ifndef PLX_TOOLS_SEAL_SEALED_TEXT_H
#define PLX_TOOLS_SEAL_SEALED_TEXT_H

#include <stddef.h>

#include <string>

#include "support/secret.h"

namespace plx::tool {

struct SealKey {
  enum class Kind { kGiven, kBox, kProduct };
  Kind kind = Kind::kGiven;
  int bits = 128;
  Secret bytes;  // of a given key
};

struct Opened {
  Secret text;
  size_t length;  // of what was sealed; the text ends at its first zero byte
};

// The Base64 text and its line ends must stay below 2 GiB.
constexpr size_t kLargestSealed = size_t{1} << 30;

// Both end the command when the library refuses; opening also when the padding shows that the key
// is another or the text was changed, which the library lets pass.
std::string seal_text(const std::string& plain, const SealKey& key);
Opened open_text(const std::string& sealed, const SealKey& key);

}  // namespace plx::tool

#endif
