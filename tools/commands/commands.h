// The groups of subcommands. Each adds itself to the program.
#ifndef PLX_TOOLS_COMMANDS_COMMANDS_H
#define PLX_TOOLS_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace plx::tool {

void add_keys_commands(CLI::App& program);
void add_request_commands(CLI::App& program);
void add_seal_commands(CLI::App& program);
void add_digest_commands(CLI::App& program);
void add_base64_commands(CLI::App& program);
void add_des3_commands(CLI::App& program);
void add_json_commands(CLI::App& program);
void add_version_command(CLI::App& program);

// Where the key files are, and whose box they belong to.
struct BoxOptions {
  std::string root;
  std::string stb_id;
  CLI::Option* stb_id_option = nullptr;

  void add_to(CLI::App& command);
  bool box_given() const { return stb_id_option->count() != 0; }
  // Points the library at the root and sets the identifier.
  void apply() const;
};

// A subcommand whose options live as long as it does: `run` is called with them.
template <typename Options>
std::shared_ptr<Options> add_action(CLI::App& command, void (*run)(const Options&)) {
  auto options = std::make_shared<Options>();
  command.callback([options, run] { run(*options); });
  return options;
}

// The FILE argument of a command that reads data: standard input when it is not given.
void add_input(CLI::App& command, std::string* source, const char* description);

// Ends the command when data and a secret would both be read from standard input.
void require_two_sources(const std::string& data, const std::string& secret);

}  // namespace plx::tool

#endif
