// What the library makes of a request, step by step.
#ifndef PLX_TOOLS_REQUEST_EXPLAIN_H
#define PLX_TOOLS_REQUEST_EXPLAIN_H

#include <stddef.h>

#include <string>
#include <vector>

#include "request/members.h"

namespace plx::tool {

struct Step {
  enum class Kind { kPlain, kOddity, kStop };
  Kind kind;
  std::string subject;
  std::string finding;
};

struct Explanation {
  bool decrypting;
  bool show_secret;
  std::vector<Step> steps;

  // What the steps foretell. `produced` says that a result of 1 comes with an output.
  int result = 1;
  bool produced = true;
  size_t output = 0;  // hexadecimal digits, or bytes of plain text
  size_t room = 0;    // bytes that the caller's buffer needs

  // What the request asks for, as far as it has been read.
  unsigned mode = 0;  // 0 ECB, 1 CBC
  int bits = 0;
  int padding = 0;         // 1 PKCS#5, 2 none
  std::string key_prefix;  // empty when the key store brings it
  std::string iv_prefix;

  void say(const char* subject, std::string finding);
  void odd(const char* subject, std::string finding);
  // The request is refused with 0 here. Returns false for the caller to pass on.
  bool stop(const char* subject, std::string finding);
  // The call answers 1 and writes nothing.
  void come_to_nothing(const char* subject, std::string finding);
};

Explanation explain_request(const std::string& request, bool decrypting, bool show_secret);

// The steps, each a function of a file of its own where it is more than a table. They return false
// when the request stops there.
bool explain_mode(const PLX_JsonValue* tree, Explanation* out);
bool explain_key(const PLX_JsonValue* tree, Explanation* out);
bool explain_iv(const PLX_JsonValue* tree, Explanation* out);
void explain_encryption(const PLX_JsonValue* tree, Explanation* out);
void explain_decryption(const PLX_JsonValue* tree, Explanation* out);

// Tells that a member was cut, lies deep in the tree, or is a container.
void note_member(const char* name, const Member& member, Explanation* out);

}  // namespace plx::tool

#endif
