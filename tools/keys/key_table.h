// The library's table of keys, as the tool points it at the files below a root folder.
#ifndef PLX_TOOLS_KEYS_KEY_TABLE_H
#define PLX_TOOLS_KEYS_KEY_TABLE_H

#include <stddef.h>

#include <string>
#include <vector>

namespace plx::tool {

constexpr int kKeyCount = 5;
constexpr int kPrefixKey = 1;  // completes the JSON requests that bring no key
constexpr int kBoxKey = 4;     // the one whose vector takes in the box identifier
constexpr size_t kBoxIdLimit = 64;

struct KeyPaths {
  std::string factor;
  std::string work_key;
};

const char* key_name(int index);
// Ends the command when no key has this name.
int key_index(const std::string& name);
// The indexes of the named keys, each once; all five for no name.
std::vector<int> key_indexes(const std::vector<std::string>& names);

// Lets `root` take the place of "/" before the paths of the table, for the library and for
// key_paths(). Ends the command when `root` is no folder.
void use_root(const std::string& root);
KeyPaths key_paths(int index);

// Sets the box identifier; ends the command when it has 64 bytes or more.
void use_box(const std::string& id);

// Points one row of the table at other files for as long as the object lives.
class RepointedKey {
 public:
  RepointedKey(int index, KeyPaths paths);
  ~RepointedKey();
  RepointedKey(const RepointedKey&) = delete;
  RepointedKey& operator=(const RepointedKey&) = delete;

 private:
  int index_;
  KeyPaths paths_;
  const char* factor_before_;
  const char* work_key_before_;
};

}  // namespace plx::tool

#endif
