// plxutil keys rotate and plxutil keys table.
#include <fmt/core.h>

#include "commands/keys_options.h"
#include "keys/key_table.h"
#include "keys/rotate.h"
#include "support/failure.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct RotateOptions {
  BoxOptions box;
  RecipeOptions recipe;
  std::vector<std::string> names;
  bool undo = false;
  bool discard_old = false;
};

void rotate(const RotateOptions& options) {
  if (options.names.empty()) {
    wrong_use("--key is missing", "name the keys to rotate; there is no way to rotate all at once");
  }
  options.box.apply();
  const std::vector<int> indexes = key_indexes(options.names);
  require_box_where_needed(indexes, options.box);
  const KeyRecipe recipe = options.recipe.read();
  for (const int index : indexes) {
    if (options.undo) {
      undo_rotation(index);
      fmt::print("{:<16} the old work key is back; the newer one is {}\n", key_name(index),
                 old_work_key_path(index));
    } else if (options.discard_old) {
      discard_old_key(index);
      fmt::print("{:<16} {} is gone\n", key_name(index), old_work_key_path(index));
    } else {
      rotate_key(index, recipe, options.recipe.mode_option->count() != 0,
                 !options.recipe.owner.empty());
      fmt::print("{:<16} new work key; the old one is {}\n", key_name(index),
                 old_work_key_path(index));
    }
  }
}

struct TableOptions {
  BoxOptions box;
  bool json = false;
};

void table(const TableOptions& options) {
  options.box.apply();
  std::vector<std::string> rows;
  for (int index = 0; index < kKeyCount; ++index) {
    const KeyPaths paths = key_paths(index);
    if (options.json) {
      rows.push_back(JsonObject()
                         .number("index", index)
                         .text("key", key_name(index))
                         .text("factor_file", paths.factor)
                         .text("work_key_file", paths.work_key)
                         .boolean("differs_by_box", index == kBoxKey)
                         .str());
    } else {
      fmt::print("{}  {:<16} {}  {}{}\n", index, key_name(index), paths.factor, paths.work_key,
                 index == kBoxKey ? "  (differs by box)" : "");
    }
  }
  if (options.json) put(json_array(rows) + "\n");
}

}  // namespace

void add_rotate(CLI::App& keys) {
  CLI::App& command =
      *keys.add_subcommand("rotate", "replace a work key under its factor; undo that");
  const auto options = add_action<RotateOptions>(command, rotate);
  options->box.add_to(command);
  add_key_names(command, &options->names);
  options->recipe.add_to(command);
  CLI::Option* undo = command.add_flag("--undo", options->undo, "put the old work key back");
  command.add_flag("--discard-old", options->discard_old, "remove the old work key for good")
      ->excludes(undo);
}

void add_table(CLI::App& keys) {
  CLI::App& command = *keys.add_subcommand("table", "list the keys and their files");
  const auto options = add_action<TableOptions>(command, table);
  options->box.add_to(command);
  command.add_flag("--json", options->json, "print JSON");
}

}  // namespace plx::tool
