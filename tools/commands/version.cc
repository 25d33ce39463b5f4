// plxutil version.
#include <fmt/core.h>
#include <openssl/crypto.h>
#include <plx/securec.h>
#include <plx/version.h>

#include "commands/commands.h"
#include "keys/fingerprint.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct VersionOptions {
  bool json = false;
};

void version(const VersionOptions& options) {
  char text[64] = {};
  unsigned short number = 0;
  getQxSecureCVersion(text, sizeof text, &number);
  const std::string openssl = OpenSSL_version(OPENSSL_VERSION);
  const std::string secrets = secrets_fingerprint();
  if (options.json) {
    JsonObject object;
    object.text("plxutility", PLX_VERSION)
        .text("bounds_checked", text)
        .text("bounds_checked_number", fmt::format("0x{:04x}", number))
        .text("openssl", openssl)
        .text("secrets", secrets);
    put(object.str() + "\n");
    return;
  }
  fmt::print("plxutility      {}\n", PLX_VERSION);
  fmt::print("bounds-checked  {} (0x{:04x})\n", text, number);
  fmt::print("openssl         {}\n", openssl);
  fmt::print("secrets         {}\n", secrets);
}

}  // namespace

void add_version_command(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("version", "versions, and the secrets' fingerprint");
  const auto options = add_action<VersionOptions>(command, version);
  command.add_flag("--json", options->json, "print JSON");
}

}  // namespace plx::tool
