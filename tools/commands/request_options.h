// What the subcommands of plxutil request share.
#ifndef PLX_TOOLS_COMMANDS_REQUEST_OPTIONS_H
#define PLX_TOOLS_COMMANDS_REQUEST_OPTIONS_H

#include "commands/commands.h"

namespace plx::tool {

struct RequestOptions {
  BoxOptions box;
  std::string source;
  void add_to(CLI::App& command);
};

// The request as the library takes it: up to its first zero byte.
std::string read_request(const RequestOptions& options);

void add_explain(CLI::App& request);

}  // namespace plx::tool

#endif
