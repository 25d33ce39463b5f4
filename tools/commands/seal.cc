// plxutil seal and plxutil open: texts sealed with AES-CBC and an IV of their own.
#include <fmt/core.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <string.h>

#include "commands/commands.h"
#include "seal/sealed_text.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct SealOptions {
  BoxOptions box;
  std::string source;
  std::string key_file;
  std::string stored;
  int bits = 128;
};

SealKey choose_key(const SealOptions& options) {
  if (options.key_file.empty() == options.stored.empty()) {
    wrong_use("give either --key-file or --stored", "the key is a file of yours, or epg or stb");
  }
  options.box.apply();
  SealKey key;
  if (!options.stored.empty()) {
    key.kind = options.stored == "epg" ? SealKey::Kind::kBox : SealKey::Kind::kProduct;
    return key;
  }
  require_two_sources(options.source, options.key_file);
  key.bits = options.bits;
  key.bytes = read_key(options.key_file, "key", static_cast<size_t>(options.bits / 8));
  return key;
}

void seal(const SealOptions& options) {
  const SealKey key = choose_key(options);
  const std::string plain = read_whole(options.source, kLargestSealed);
  const size_t nul = plain.find('\0');
  if (nul != std::string::npos) {
    fmt::print(stderr, "{} the text holds a zero byte at {}; opening it gives what stands before\n",
               paint(Tone::kWarning, "note:", stderr), nul);
  }
  const std::string text = seal_text(plain, key);
  put(text);
  if (text.empty() || text.back() != '\n') put("\n");
}

void open(const SealOptions& options) {
  const SealKey key = choose_key(options);
  const Opened opened = open_text(read_whole(options.source, kLargestInput - 64), key);
  put({reinterpret_cast<const char*>(opened.text.data()), opened.text.size()});
  put("\n");
  if (opened.text.size() < opened.length) {
    fmt::print(stderr, "{} {} bytes were sealed; the library hands out those before a zero byte\n",
               paint(Tone::kWarning, "note:", stderr), opened.length);
  }
}

void add_command(CLI::App& program, const char* name, const char* description, const char* input,
                 void (*run)(const SealOptions&)) {
  CLI::App& command = *program.add_subcommand(name, description);
  const auto options = add_action<SealOptions>(command, run);
  options->box.add_to(command);
  add_input(command, &options->source, input);
  command
      .add_option("--key-file", options->key_file,
                  "file with the key, raw or hexadecimal; - asks for it")
      ->type_name("FILE");
  command.add_option("--bits", options->bits, "size of that key: 128 (default) or 256")
      ->type_name("BITS")
      ->check(CLI::IsMember({128, 256}));
  command
      .add_option("--stored", options->stored, "take the box's key (epg) or the product's (stb)")
      ->type_name("epg|stb")
      ->check(CLI::IsMember({"epg", "stb"}));
}

}  // namespace

void add_seal_commands(CLI::App& program) {
  add_command(program, "seal", "encrypt a text into Base64 with an IV of its own",
              "the text; standard input when - or absent", seal);
  add_command(program, "open", "decrypt what seal made",
              "the sealed text; standard input when - or absent", open);
}

}  // namespace plx::tool
