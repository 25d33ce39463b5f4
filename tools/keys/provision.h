// Writes the two files of a key.
#ifndef PLX_TOOLS_KEYS_PROVISION_H
#define PLX_TOOLS_KEYS_PROVISION_H

#include <string>

#include "keys/key_table.h"
#include "support/file.h"
#include "support/secret.h"

namespace plx::tool {

struct KeyRecipe {
  Secret factor;                // empty: random
  Secret iv;                    // empty: random
  Secret work_key;              // empty: generated
  size_t generated_length = 0;  // 0: the usual one
  Access access;
  bool force = false;  // replace existing files
};

// Reads the secrets of a recipe from the files named; empty names leave them to chance.
void read_recipe(const std::string& factor_file, const std::string& iv_file,
                 const std::string& work_key_file, KeyRecipe* recipe);

struct Provisioned {
  bool factor_written = false;
  bool work_key_written = false;
};

// Makes the files of a key that are missing (all, with force), sees that the library loads the
// work key back, and only then gives them their names.
Provisioned provision_key(int index, const KeyRecipe& recipe);

// Ends the command when the library does not load `expected` from these files.
void require_loads_back(int index, const KeyPaths& paths, const Secret& expected);

// The work key of a recipe for a row: the given one or a new one.
Secret work_key_for(int index, const KeyRecipe& recipe);

}  // namespace plx::tool

#endif
