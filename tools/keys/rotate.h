// Replaces a work key under its old factor, with a way back.
#ifndef PLX_TOOLS_KEYS_ROTATE_H
#define PLX_TOOLS_KEYS_ROTATE_H

#include "keys/provision.h"

namespace plx::tool {

// Where the work-key file before the last rotation stands.
std::string old_work_key_path(int index);

// Writes a new work key, sees that it loads, keeps the old file under its other name, and puts the
// new one in its place. Mode and owner are those of the old file unless the recipe says otherwise.
// At every moment the work-key file is a complete one, the old or the new.
void rotate_key(int index, KeyRecipe recipe, bool mode_given, bool owner_given);

// Puts the old file back, once it is seen to load; the newer one then stands under the other name.
void undo_rotation(int index);

// Removes the old file, once the new one is seen to load.
void discard_old_key(int index);

}  // namespace plx::tool

#endif
