#include "keys/provision.h"

#include <fmt/core.h>

#include <optional>

#include "keys/key_material.h"
#include "keys/key_table.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

Secret read_exactly(const std::string& source, const char* what, size_t size) {
  Secret bytes = read_secret(source, what, 4096);
  if (bytes.size() != size) {
    wrong_use(fmt::format("{}: holds {} bytes", name_of(source), bytes.size()),
              fmt::format("the {} is a file of {} raw bytes", what, size));
  }
  return bytes;
}

// A work-key file whose factor file is gone opens with that very factor alone.
void require_factor_opens(int index, const KeyPaths& paths) {
  const RepointedKey repointed(index, paths);
  Secret loaded;
  if (load_work_key(index, &loaded)) return;
  refuse(fmt::format("{}: {} is there, but not the factor file that opens it", key_name(index),
                     paths.work_key),
         "give the old factor with --factor, or make both files anew with --force");
}

}  // namespace

void read_recipe(const std::string& factor_file, const std::string& iv_file,
                 const std::string& work_key_file, KeyRecipe* recipe) {
  if ((factor_file == "-") + (iv_file == "-") + (work_key_file == "-") > 1) {
    wrong_use("standard input can bring only one of factor, IV and work key");
  }
  if (!factor_file.empty()) recipe->factor = read_exactly(factor_file, "factor", kFactorSize);
  if (!iv_file.empty()) recipe->iv = read_exactly(iv_file, "IV", kIvSize);
  if (work_key_file.empty()) return;
  recipe->work_key = read_secret(work_key_file, "work key", 4096);
  drop_line_end(&recipe->work_key);
  if (recipe->work_key.empty()) {
    wrong_use(fmt::format("{}: holds no work key", name_of(work_key_file)),
              "the file holds the text of the key");
  }
}

void require_loads_back(int index, const KeyPaths& paths, const Secret& expected) {
  const RepointedKey repointed(index, paths);
  Secret loaded;
  if (load_work_key(index, &loaded) && loaded == expected) return;
  refuse(fmt::format("{}: the library does not load the new work key back; nothing was changed",
                     key_name(index)),
         "see that 'plxutil version' shows the secrets that you expect");
}

Secret work_key_for(int index, const KeyRecipe& recipe) {
  Secret work_key = recipe.work_key;
  if (work_key.empty()) {
    work_key = random_work_key(recipe.generated_length != 0 ? recipe.generated_length
                                                            : usual_work_key_length(index));
  }
  require_work_key(index, work_key);
  return work_key;
}

Provisioned provision_key(int index, const KeyRecipe& recipe) {
  const KeyPaths paths = key_paths(index);
  Provisioned made;
  made.factor_written = recipe.force || !exists(paths.factor);
  made.work_key_written = recipe.force || !exists(paths.work_key);
  if (!made.factor_written && !made.work_key_written) return made;

  make_folders(folder_of(paths.factor));
  make_folders(folder_of(paths.work_key));
  KeyPaths fresh = paths;
  std::optional<AtomicFile> factor_file, work_key_file;
  if (made.factor_written) {
    factor_file.emplace(paths.factor, recipe.access);
    factor_file->write(
        factor_text(recipe.factor.empty() ? random_bytes(kFactorSize) : recipe.factor));
    factor_file->finish();
    fresh.factor = factor_file->temporary_path();
  }
  if (made.work_key_written) {
    const Secret work_key = work_key_for(index, recipe);
    Secret init_key;
    {
      const RepointedKey repointed(index, fresh);
      init_key = derive_init_key(index);
    }
    work_key_file.emplace(paths.work_key, recipe.access);
    work_key_file->write(sealed_text(work_key, init_key, recipe.iv));
    work_key_file->finish();
    fresh.work_key = work_key_file->temporary_path();
    require_loads_back(index, fresh, work_key);
  } else {
    require_factor_opens(index, fresh);
  }
  if (factor_file) factor_file->commit();
  if (work_key_file) work_key_file->commit();
  return made;
}

}  // namespace plx::tool
