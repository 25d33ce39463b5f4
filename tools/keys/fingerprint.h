// The fingerprint of the secrets that a library was built with.
#ifndef PLX_TOOLS_KEYS_FINGERPRINT_H
#define PLX_TOOLS_KEYS_FINGERPRINT_H

#include <string>

namespace plx::tool {

// A SHA-256, as hexadecimal digits, over what the secrets of the loaded library do: its seven
// vectors for an empty box identifier, and the cipher texts of requests that depend on both
// suffixes and on the default IV prefix. Two libraries with equal fingerprints read the same key
// files and the same cipher texts; the secrets do not follow from it.
std::string secrets_fingerprint();

}  // namespace plx::tool

#endif
