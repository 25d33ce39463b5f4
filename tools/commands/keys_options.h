// What the subcommands of plxutil keys share.
#ifndef PLX_TOOLS_COMMANDS_KEYS_OPTIONS_H
#define PLX_TOOLS_COMMANDS_KEYS_OPTIONS_H

#include <vector>

#include "commands/commands.h"
#include "keys/provision.h"

namespace plx::tool {

void add_provision(CLI::App& keys);
void add_check(CLI::App& keys);
void add_rotate(CLI::App& keys);
void add_table(CLI::App& keys);

void add_key_names(CLI::App& command, std::vector<std::string>* names);

// Where the secrets of new files come from, and whose the files become.
struct RecipeOptions {
  std::string factor, iv, work_key, mode = "0600", owner;
  CLI::Option* mode_option = nullptr;
  size_t length = 0;

  void add_to(CLI::App& command);
  KeyRecipe read() const;
};

// Ends the command when the box identifier is needed and was not given.
void require_box_where_needed(const std::vector<int>& indexes, const BoxOptions& box);

}  // namespace plx::tool

#endif
