// Digests of files and of standard input, by the library's functions.
#ifndef PLX_TOOLS_DIGEST_COMPUTE_H
#define PLX_TOOLS_DIGEST_COMPUTE_H

#include <string>

#include "support/secret.h"

namespace plx::tool {

// All return lower-case hexadecimal digits and end the command when the source cannot be read.
std::string sha256_of(const std::string& source);
std::string md5_of(const std::string& source);
std::string hmac_sha256_of(const std::string& source, const Secret& key);
std::string stun_hmac_of(const std::string& source, const Secret& key);

// The SHA-256 of bytes in memory.
std::string sha256_of_bytes(const std::string& bytes);

}  // namespace plx::tool

#endif
