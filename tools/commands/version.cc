// plxutil version.
#include <fmt/core.h>
#include <openssl/crypto.h>
#include <plx/securec.h>
#include <plx/version.h>

#include "commands/commands.h"
#include "commands/kernels_in_use.h"
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
  const KernelsInUse kernels = kernels_in_use();
  if (options.json) {
    JsonObject object;
    object.text("plxutility", PLX_VERSION)
        .text("bounds_checked", text)
        .text("bounds_checked_number", fmt::format("0x{:04x}", number))
        .text("openssl", openssl)
        .text("secrets", secrets)
        .raw("kernels", JsonObject()
                            .text("sha256", kernels.sha256)
                            .text("base64", kernels.base64)
                            .text("des", kernels.des)
                            .number("des_from_blocks", static_cast<long long>(kernels.des_from))
                            .str());
    put(object.str() + "\n");
    return;
  }
  fmt::print("plxutility      {}\n", PLX_VERSION);
  fmt::print("bounds-checked  {} (0x{:04x})\n", text, number);
  fmt::print("openssl         {}\n", openssl);
  fmt::print("secrets         {}\n", secrets);
  fmt::print("kernels         sha256 {}, base64 {}, des {}", kernels.sha256, kernels.base64,
             kernels.des);
  if (kernels.des_from != 0) fmt::print(" (from {} blocks on)", kernels.des_from);
  fmt::print("\n");
}

}  // namespace

void add_version_command(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "version", "versions, the secrets' fingerprint, and the kernels in use");
  const auto options = add_action<VersionOptions>(command, version);
  command.add_flag("--json", options->json, "print JSON");
}

}  // namespace plx::tool
