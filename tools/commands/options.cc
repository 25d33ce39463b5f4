// Options that several groups share.
#include "commands/commands.h"
#include "keys/key_table.h"
#include "support/failure.h"

namespace plx::tool {

void BoxOptions::add_to(CLI::App& command) {
  command
      .add_option("--root", root, "folder that takes the place of / before the key files' paths")
      ->type_name("DIR");
  stb_id_option = command.add_option("--stb-id", stb_id, "identifier of the box, at most 63 bytes")
                      ->type_name("ID");
}

void BoxOptions::apply() const {
  use_root(root);
  if (box_given()) use_box(stb_id);
}

void add_input(CLI::App& command, std::string* source, const char* description) {
  *source = "-";
  command.add_option("file", *source, description)->type_name("FILE");
}

void require_two_sources(const std::string& data, const std::string& secret) {
  if (data == "-" && secret == "-") {
    wrong_use("standard input cannot bring both the data and the secret",
              "give one of them as a file");
  }
}

}  // namespace plx::tool
