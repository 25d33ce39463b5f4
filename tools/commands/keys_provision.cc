// plxutil keys provision: the key files of one box, or of a fleet.
#include <fmt/core.h>

#include "commands/keys_options.h"
#include "fleet/fleet.h"
#include "keys/key_material.h"
#include "keys/key_table.h"
#include "keys/provision.h"
#include "support/failure.h"
#include "support/file.h"

namespace plx::tool {
namespace {

struct ProvisionOptions {
  BoxOptions box;
  RecipeOptions recipe;
  std::vector<std::string> names;
  bool force = false;
  std::string devices, out, shard = "1/1";
  unsigned jobs = 1;
  bool dry_run = false;
};

const char* describe(const Provisioned& made) {
  if (made.factor_written && made.work_key_written) return "written";
  if (made.factor_written) return "factor file written, work-key file kept";
  if (made.work_key_written) return "work-key file written, factor file kept";
  return "kept (--force replaces both files)";
}

void provision_box(const ProvisionOptions& options) {
  if (options.box.root.empty()) {
    wrong_use("--root is missing", "give the folder below which the key files are made");
  }
  const std::vector<int> indexes = key_indexes(options.names);
  require_box_where_needed(indexes, options.box);
  KeyRecipe recipe = options.recipe.read();
  recipe.force = options.force;
  if (!recipe.work_key.empty()) {
    for (const int index : indexes) require_work_key(index, recipe.work_key);
  }
  make_folders(options.box.root);
  options.box.apply();
  for (const int index : indexes) {
    const Provisioned made = provision_key(index, recipe);
    fmt::print("{:<16} {}\n", key_name(index), describe(made));
  }
}

void provision_devices(const ProvisionOptions& options) {
  if (options.out.empty()) wrong_use("--out is missing", "give the folder for the fleet's files");
  if (!options.box.root.empty() || options.box.box_given() || !options.names.empty()) {
    wrong_use("--root, --key and --stb-id are for one box, --devices is for many",
              "leave them out; the list brings the identifiers");
  }
  if (options.devices == "-") {
    wrong_use("the list cannot come from standard input", "it is read more than once; give a file");
  }
  FleetPlan plan;
  plan.list = options.devices;
  plan.out = options.out;
  while (plan.out.size() > 1 && plan.out.back() == '/') plan.out.pop_back();
  plan.shard = parse_shard(options.shard);
  plan.jobs = options.jobs;
  plan.dry_run = options.dry_run;
  plan.recipe = options.recipe.read();
  if (!plan.recipe.work_key.empty()) require_work_key(kPrefixKey, plan.recipe.work_key);
  provision_fleet(plan);
}

void provision(const ProvisionOptions& options) {
  if (options.devices.empty()) {
    provision_box(options);
  } else {
    provision_devices(options);
  }
}

}  // namespace

void add_provision(CLI::App& keys) {
  CLI::App& command =
      *keys.add_subcommand("provision", "make the key files of one box, or of a fleet");
  const auto options = add_action<ProvisionOptions>(command, provision);
  options->box.add_to(command);
  add_key_names(command, &options->names);
  command
      .add_option("--factor", options->recipe.factor,
                  "file with the factor, 16 raw bytes; else random")
      ->type_name("FILE");
  options->recipe.add_to(command);
  CLI::Option* force = command.add_flag("--force", options->force, "replace existing files");
  CLI::Option* devices =
      command.add_option("--devices", options->devices, "CSV list of a fleet's boxes")
          ->type_name("CSV")
          ->excludes(force);
  const auto add = [&](const char* name, auto& value, const char* description) {
    return command.add_option(name, value, description)->needs(devices);
  };
  add("--out", options->out, "folder for the fleet's files")->type_name("DIR");
  add("--jobs", options->jobs, "processes that work at once (1)")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  add("--shard", options->shard, "only part i of n of the list")->type_name("i/n");
  command
      .add_flag("--dry-run", options->dry_run, "read and judge the list; derive and write nothing")
      ->needs(devices);
}

}  // namespace plx::tool
