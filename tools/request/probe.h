// Requests of the tool's own, put to the library to learn what only it knows. The suffixes stay
// inside the library; what they do can be asked of it.
#ifndef PLX_TOOLS_REQUEST_PROBE_H
#define PLX_TOOLS_REQUEST_PROBE_H

#include <string>

#include "support/secret.h"

namespace plx::tool {

// The 16 bytes of the IV that a CBC request with this prefix gets.
Secret probe_iv(const std::string& iv_prefix);

// A value by which two keys can be compared: the first 16 hexadecimal digits of the SHA-256 of a
// fixed text encrypted under the key of a request with this prefix (empty: the stored one).
std::string probe_key(const std::string& key_prefix, int bits);

// The plain text of a request with all its padding: one that is the same but for the padding.
Secret probe_raw_plain_text(unsigned mode, int bits, const std::string& key_prefix,
                            const std::string& iv_prefix, const std::string& cipher_text);

}  // namespace plx::tool

#endif
