// The contents of key files: factors, work keys, and the sealed form in which they lie on disk.
#ifndef PLX_TOOLS_KEYS_KEY_MATERIAL_H
#define PLX_TOOLS_KEYS_KEY_MATERIAL_H

#include <stddef.h>

#include <string>

#include "support/secret.h"

namespace plx::tool {

constexpr size_t kFactorSize = 16;
constexpr size_t kIvSize = 16;
constexpr size_t kInitKeySize = 16;

Secret random_bytes(size_t count);
// A work key of `length` printable characters.
Secret random_work_key(size_t length);
// How long a generated work key is, and how long one may be for its readers in the library.
size_t usual_work_key_length(int index);
size_t longest_work_key(int index);
// Ends the command when the library could not load or use this work key.
void require_work_key(int index, const Secret& work_key);

// The text of a factor file.
std::string factor_text(const Secret& factor);
// The text of a work-key file: `work_key` sealed under `init_key`, with `iv` or, for an empty one,
// a random one.
std::string sealed_text(const Secret& work_key, const Secret& init_key, const Secret& iv);

// Whether the text of a work-key file opens to this work key.
bool opens_to(const std::string& sealed, const Secret& init_key, const Secret& work_key);

// The init key of a row, from its factor file. Ends the command when the library refuses.
Secret derive_init_key(int index);
// The work key that the library loads from a row's files; false when it refuses.
bool load_work_key(int index, Secret* out);

}  // namespace plx::tool

#endif
