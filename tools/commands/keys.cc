// plxutil keys: the group, and the options that its subcommands share.
#include <fmt/core.h>

#include "commands/keys_options.h"
#include "keys/key_table.h"
#include "support/failure.h"

namespace plx::tool {

void add_key_names(CLI::App& command, std::vector<std::string>* names) {
  command.add_option("--key", *names, "this key alone; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
}

void RecipeOptions::add_to(CLI::App& command) {
  command.add_option("--iv", iv, "file with the IV, 16 raw bytes; else random")->type_name("FILE");
  command
      .add_option("--work-key", work_key,
                  "file with the text of the work key, - asks for it; else generated")
      ->type_name("FILE");
  command.add_option("--length", length, "characters of a generated work key")
      ->type_name("N")
      ->check(CLI::Range(1, 511));
  mode_option =
      command.add_option("--mode", mode, "mode of new files, octal (0600)")->type_name("MODE");
  command.add_option("--owner", owner, "owner of new files")->type_name("USER:GROUP");
}

KeyRecipe RecipeOptions::read() const {
  KeyRecipe recipe;
  recipe.generated_length = length;
  recipe.access.mode = parse_mode(mode);
  if (!owner.empty()) parse_owner(owner, &recipe.access);
  read_recipe(factor, iv, work_key, &recipe);
  return recipe;
}

void require_box_where_needed(const std::vector<int>& indexes, const BoxOptions& box) {
  if (indexes.back() != kBoxKey || box.box_given()) return;
  wrong_use(
      fmt::format("{} differs from box to box, and no identifier was given", key_name(kBoxKey)),
      "give it with --stb-id, or name the other keys with --key");
}

void add_keys_commands(CLI::App& program) {
  CLI::App& keys = *program.add_subcommand("keys", "key files: make, check, rotate, list");
  keys.require_subcommand(1);
  add_provision(keys);
  add_check(keys);
  add_rotate(keys);
  add_table(keys);
}

}  // namespace plx::tool
