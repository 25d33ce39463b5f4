// plxutil des3: encrypt, decrypt.
#include <fmt/core.h>

#include <map>

#include "commands/commands.h"
#include "des3/des3_stream.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

struct Des3Options {
  std::string source;
  std::string key_file;
  Des3End end = Des3End::kAsItComes;
};

Secret read_keys(const Des3Options& options) {
  require_two_sources(options.source, options.key_file);
  Secret keys;
  const bool digits = decode_hex(read_secret(options.key_file, "keys", 4096), &keys);
  if (!digits || (keys.size() != 16 && keys.size() != 24)) {
    wrong_use("the key file holds neither two nor three keys",
              "give 32 or 48 hexadecimal digits; white space between them is skipped");
  }
  return keys;
}

void encrypt(const Des3Options& options) { des3_encrypt(options.source, read_keys(options)); }

void decrypt(const Des3Options& options) {
  des3_decrypt(options.source, read_keys(options), options.end);
}

std::shared_ptr<Des3Options> add(CLI::App& des3, const char* name, const char* description,
                                 void (*run)(const Des3Options&)) {
  CLI::App& command = *des3.add_subcommand(name, description);
  const auto options = add_action<Des3Options>(command, run);
  add_input(command, &options->source, "the data; standard input when - or absent");
  command
      .add_option("--key-file", options->key_file,
                  "file with two or three keys in hexadecimal digits; - asks for it")
      ->type_name("FILE")
      ->required();
  return options;
}

}  // namespace

void add_des3_commands(CLI::App& program) {
  CLI::App& des3 = *program.add_subcommand("des3", "triple DES in ECB mode");
  des3.require_subcommand(1);
  add(des3, "encrypt", "encrypt, with the library's padding", encrypt);
  const auto options = add(des3, "decrypt", "decrypt", decrypt);
  const std::map<std::string, Des3End> ends = {{"as-is", Des3End::kAsItComes},
                                               {"padding", Des3End::kPadding},
                                               {"zero-block", Des3End::kZeroBlock},
                                               {"auto", Des3End::kEither}};
  des3.get_subcommand("decrypt")
      ->add_option("--end", options->end,
                   "as-is (default): all that the library writes; padding: strip it; zero-block: "
                   "drop it; auto: whichever is there")
      ->type_name("END")
      ->transform(CLI::CheckedTransformer(ends).description(""));
}

}  // namespace plx::tool
