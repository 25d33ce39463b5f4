// Whether the library loads a key, and if not, which file and which step is to blame.
#ifndef PLX_TOOLS_KEYS_VERDICT_H
#define PLX_TOOLS_KEYS_VERDICT_H

#include <stddef.h>

#include <string>
#include <string_view>
#include <vector>

namespace plx::tool {

// One thing that is wrong with a key file.
struct Finding {
  std::string file;
  std::string problem;  // the step that fails: "missing", "unreadable", "not Base64", ...
  std::string detail;
  std::string advice;
  bool found() const { return !problem.empty(); }
};

struct KeyVerdict {
  int index;
  bool loads = false;                 // the library's own answer
  size_t length = 0;                  // of the work key, in characters
  Finding finding;                    // why it does not load
  std::vector<std::string> warnings;  // it loads, but perhaps not as meant
};

KeyVerdict judge_key(int index, bool box_given);

// Where a text stops being what the key files' Base64 decoder takes.
struct Base64Fault {
  bool found = false;
  size_t byte = 0;  // offset from 0
  std::string what;
};
Base64Fault find_base64_fault(std::string_view text);

}  // namespace plx::tool

#endif
