// Finds pieces of secrets that a call has left behind: on its stack, in heap blocks as they are
// freed, and in those that it loses. What libcrypto leaves is told apart: the stack is searched as
// each of its functions is entered, and searched and swept as it returns.
#ifndef PLX_TESTS_SECRETS_DETECTOR_H
#define PLX_TESTS_SECRETS_DETECTOR_H

#include <stddef.h>

#include <functional>
#include <string>
#include <vector>

namespace plx_test {

// Any eight consecutive bytes of these are a finding: of the bytes themselves, of their words with
// the bytes reversed, and of their hexadecimal and Base64 texts.
void add_secret(const std::string& name, const void* data, size_t size);

struct Finding {
  const std::string* secret;
  const char* where;
  size_t bytes;
};

struct Findings {
  std::vector<Finding> ours;
  size_t libcrypto = 0;   // how many of its functions left something
  size_t stack_used = 0;  // by our frames and those below them
};

// Runs `call` on a stack of its own. `call` keeps no secret in its own frame.
Findings watch(const std::function<void()>& call);

// Says that the caller got `block`, which the call thus did not lose.
void hand_out(const void* block);

// Puts libcrypto's blocks under watch. To be called before anything of it is used.
void watch_libcrypto_blocks();

}  // namespace plx_test

#endif
