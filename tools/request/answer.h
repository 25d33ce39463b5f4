// One request put to the library, and what came of it.
#ifndef PLX_TOOLS_REQUEST_ANSWER_H
#define PLX_TOOLS_REQUEST_ANSWER_H

#include <stddef.h>

#include <string>

#include "support/secret.h"

namespace plx::tool {

struct Answer {
  int result = 0;         // what the call returned
  bool produced = false;  // whether it wrote a result: the call says 1 as well when it did not
  Secret text;            // the hexadecimal cipher text, or the plain text
};

Answer encrypt_request(const std::string& request);
Answer decrypt_request(const std::string& request);

}  // namespace plx::tool

#endif
