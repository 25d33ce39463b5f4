#include "fleet/box.h"

#include <errno.h>
#include <fmt/core.h>
#include <sys/stat.h>

#include "digest/compute.h"
#include "keys/key_material.h"
#include "keys/key_table.h"
#include "support/failure.h"
#include "support/file.h"

namespace plx::tool {
namespace {

bool is_file(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0;
}

BoxResult find_box(const std::string& folder) {
  if (!is_file(folder + "/f") || !is_file(folder + "/w")) {
    return {Report::kBadRow, "", "",
            fmt::format("{} is there without both of its files; move it away", folder)};
  }
  return {Report::kKept, sha256_of(folder + "/f"), sha256_of(folder + "/w"), ""};
}

// Throws what is the row's own fault.
Secret work_key_of(const FleetPlan& plan, const Device& device) {
  if (device.work_key_file.empty()) return work_key_for(kBoxKey, plan.recipe);
  KeyRecipe recipe;
  recipe.work_key = read_secret(device.work_key_file, "work key", 4096);
  drop_line_end(&recipe.work_key);
  require_work_key(kBoxKey, recipe.work_key);
  return recipe.work_key;
}

BoxResult write_box(const FleetPlan& plan, const std::string& folder, const Secret& work_key) {
  const KeyRecipe& recipe = plan.recipe;
  if (mkdir(folder.c_str(), 0755) != 0) system_failure(folder, errno);
  const KeyPaths paths = {folder + "/f", folder + "/w"};
  const std::string factor =
      factor_text(recipe.factor.empty() ? random_bytes(kFactorSize) : recipe.factor);
  write_new_file(paths.factor, factor, recipe.access);
  const RepointedKey repointed(kBoxKey, paths);
  const Secret init_key = derive_init_key(kBoxKey);
  const std::string sealed = sealed_text(work_key, init_key, recipe.iv);
  if (!opens_to(sealed, init_key, work_key)) refuse("a sealed work key does not open again");
  write_new_file(paths.work_key, sealed, recipe.access);
  return {Report::kMade, sha256_of_bytes(factor), sha256_of_bytes(sealed), ""};
}

}  // namespace

BoxResult make_box(const FleetPlan& plan, const Device& device) {
  const std::string folder = plan.box_folder(device.id);
  Secret work_key;
  try {
    if (exists(folder)) return find_box(folder);
    use_box(device.id);
    work_key = work_key_of(plan, device);
  } catch (const Failure& failure) {
    return {Report::kBadRow, "", "", failure.what()};
  }
  if (plan.dry_run) return {Report::kMade, "", "", ""};
  try {
    return write_box(plan, unfinished_box(plan, device.row), work_key);
  } catch (const Failure& failure) {
    return {Report::kStopped, "", "", failure.what()};
  }
}

}  // namespace plx::tool
