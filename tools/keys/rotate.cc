#include "keys/rotate.h"

#include <errno.h>
#include <fmt/core.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "keys/key_material.h"
#include "keys/key_table.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

void rename_or_fail(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) != 0) system_failure(to, errno);
}

// Gives the file a second name, in place of what had it before.
void link_over(const std::string& file, const std::string& name) {
  const std::string temporary = name + ".tmp";
  unlink(temporary.c_str());
  if (link(file.c_str(), temporary.c_str()) != 0) system_failure(name, errno);
  rename_or_fail(temporary, name);
}

void require_loads(int index, const KeyPaths& paths, const char* what) {
  const RepointedKey repointed(index, paths);
  Secret work_key;
  if (load_work_key(index, &work_key)) return;
  refuse(fmt::format("{}: {} does not load; nothing was changed", key_name(index), what),
         "see 'plxutil keys check'");
}

void require_old(int index) {
  const std::string old = old_work_key_path(index);
  if (exists(old)) return;
  refuse(fmt::format("{}: there is no {}", key_name(index), old),
         "only a rotation leaves one behind");
}

}  // namespace

std::string old_work_key_path(int index) { return key_paths(index).work_key + ".old"; }

void rotate_key(int index, KeyRecipe recipe, bool mode_given, bool owner_given) {
  const KeyPaths paths = key_paths(index);
  struct stat info;
  if (stat(paths.work_key.c_str(), &info) != 0) {
    system_failure(paths.work_key, errno, "make the key with 'plxutil keys provision' first");
  }
  if (!mode_given) recipe.access.mode = info.st_mode & 0777;
  if (!owner_given && geteuid() == 0) {
    recipe.access.user = info.st_uid;
    recipe.access.group = info.st_gid;
  }
  require_loads(index, paths, "the old work key");
  const Secret work_key = work_key_for(index, recipe);
  AtomicFile file(paths.work_key, recipe.access);
  file.write(sealed_text(work_key, derive_init_key(index), recipe.iv));
  file.finish();
  require_loads_back(index, {paths.factor, file.temporary_path()}, work_key);
  link_over(paths.work_key, old_work_key_path(index));
  file.commit();
}

void undo_rotation(int index) {
  const KeyPaths paths = key_paths(index);
  const std::string old = old_work_key_path(index), newer = paths.work_key + ".newer";
  require_old(index);
  require_loads(index, {paths.factor, old}, "the old work key");
  link_over(paths.work_key, newer);
  rename_or_fail(old, paths.work_key);
  rename_or_fail(newer, old);
  sync_folder(folder_of(old));
}

void discard_old_key(int index) {
  const std::string old = old_work_key_path(index);
  require_old(index);
  require_loads(index, key_paths(index), "the work key in use");
  if (unlink(old.c_str()) != 0) system_failure(old, errno);
  sync_folder(folder_of(old));
}

}  // namespace plx::tool
