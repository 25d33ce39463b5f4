// plxutil digest: sha256, md5, hmac, stun.
#include <fmt/core.h>

#include <optional>
#include <sstream>

#include "commands/commands.h"
#include "digest/check_list.h"
#include "digest/compute.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"

namespace plx::tool {
namespace {

// What sha256 and md5 differ in.
struct Algorithm {
  const char* tag;
  size_t digits;
  std::string (*compute)(const std::string& source);
};
constexpr Algorithm kSha256 = {"SHA256", 64, sha256_of};
constexpr Algorithm kMd5 = {"MD5", 32, md5_of};

struct DigestOptions {
  std::vector<std::string> sources;
  std::string key_file;
  bool hex_key = false;
  bool check = false;
  bool quiet = false;
  bool json = false;
};

struct Tally {
  size_t lines = 0, malformed = 0, unreadable = 0, different = 0;
};

// Every source is tried; the first that cannot be read decides the exit code.
template <typename Compute>
void print_digests(const DigestOptions& options, Compute compute) {
  std::vector<std::string> sources = options.sources;
  if (sources.empty()) sources.push_back("-");
  std::vector<std::string> objects;
  std::optional<Failure> first;
  for (const std::string& source : sources) {
    try {
      const std::string digest = compute(source);
      if (options.json) {
        objects.push_back(JsonObject().text("file", source).text("digest", digest).str());
      } else {
        put(list_line(digest, source));
      }
    } catch (const Failure& failure) {
      if (!first) {
        first = failure;
      } else {
        fmt::print(stderr, "plxutil: {}\n", failure.what());
      }
    }
  }
  if (options.json) put(json_array(objects) + "\n");
  if (first) throw *first;
}

void check_line(const ListedDigest& listed, const Algorithm& algorithm, bool quiet, Tally* tally) {
  std::string verdict = "OK";
  try {
    if (algorithm.compute(listed.name) != listed.digest) {
      ++tally->different;
      verdict = "FAILED";
    }
  } catch (const Failure& failure) {
    ++tally->unreadable;
    fmt::print(stderr, "plxutil: {}\n", failure.what());
    verdict = "FAILED open or read";
  }
  if (verdict != "OK" || !quiet) fmt::print("{}: {}\n", listed.name, verdict);
}

void check_list(const std::string& source, const Algorithm& algorithm, bool quiet, Tally* tally) {
  std::istringstream lines(read_whole(source, kLargestInput));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    const auto listed = parse_list_line(line, algorithm.digits, algorithm.tag);
    if (!listed) {
      ++tally->malformed;
      continue;
    }
    ++tally->lines;
    check_line(*listed, algorithm, quiet, tally);
  }
}

void check_lists(const DigestOptions& options, const Algorithm& algorithm) {
  std::vector<std::string> sources = options.sources;
  if (sources.empty()) sources.push_back("-");
  Tally tally;
  for (const std::string& source : sources) {
    check_list(source, algorithm, options.quiet, &tally);
  }
  if (tally.malformed != 0) {
    fmt::print(stderr, "plxutil: {} of {} lines are no line of a list\n", tally.malformed,
               tally.malformed + tally.lines);
  }
  if (tally.lines == 0) {
    refuse(fmt::format("no {} line found", algorithm.tag),
           fmt::format("lists are made by 'plxutil digest' or by the coreutils"));
  }
  if (tally.different + tally.unreadable != 0) {
    refuse(fmt::format("{} of {} digests differ, {} files could not be read", tally.different,
                       tally.lines, tally.unreadable));
  }
}

void digest(const DigestOptions& options, const Algorithm& algorithm) {
  if (options.check && options.json) wrong_use("--check prints no JSON", "look at the exit code");
  if (options.check) {
    check_lists(options, algorithm);
  } else {
    print_digests(options, algorithm.compute);
  }
}

void sha256(const DigestOptions& options) { digest(options, kSha256); }
void md5(const DigestOptions& options) { digest(options, kMd5); }

void keyed(const DigestOptions& options,
           std::string (*compute)(const std::string& source, const Secret& key)) {
  if (options.sources.empty()) require_two_sources("-", options.key_file);
  for (const std::string& source : options.sources) require_two_sources(source, options.key_file);
  Secret key = read_secret(options.key_file, "key", 1 << 20);
  if (options.hex_key) {
    Secret bytes;
    if (!decode_hex(key, &bytes)) wrong_use("the key is no even number of hexadecimal digits");
    key = bytes;
  }
  print_digests(options, [&](const std::string& source) { return compute(source, key); });
}

void hmac(const DigestOptions& options) { keyed(options, hmac_sha256_of); }
void stun(const DigestOptions& options) { keyed(options, stun_hmac_of); }

std::shared_ptr<DigestOptions> add_digest(CLI::App& digest, const char* name,
                                          const char* description,
                                          void (*run)(const DigestOptions&)) {
  CLI::App& command = *digest.add_subcommand(name, description);
  const auto options = add_action<DigestOptions>(command, run);
  command.add_option("files", options->sources, "files; standard input when - or absent")
      ->type_name("FILE");
  command.add_flag("--json", options->json, "print JSON");
  return options;
}

void add_plain(CLI::App& digest, const char* name, const char* description,
               void (*run)(const DigestOptions&)) {
  const auto options = add_digest(digest, name, description, run);
  CLI::App& command = *digest.get_subcommand(name);
  command.add_flag("-c,--check", options->check, "read lists of digests and check the files");
  command.add_flag("--quiet", options->quiet, "with --check: print no OK lines");
}

void add_keyed(CLI::App& digest, const char* name, const char* description,
               void (*run)(const DigestOptions&)) {
  const auto options = add_digest(digest, name, description, run);
  CLI::App& command = *digest.get_subcommand(name);
  command
      .add_option("--key-file", options->key_file,
                  "file whose bytes are the key, its line end included; - asks for it")
      ->type_name("FILE")
      ->required();
  command.add_flag("--hex", options->hex_key, "the file holds the key in hexadecimal digits");
}

}  // namespace

void add_digest_commands(CLI::App& program) {
  CLI::App& digest = *program.add_subcommand("digest", "digests of files, printed and checked");
  digest.require_subcommand(1);
  add_plain(digest, "sha256", "SHA-256, as sha256sum prints and checks it", sha256);
  add_plain(digest, "md5", "MD5, as md5sum prints and checks it", md5);
  add_keyed(digest, "hmac", "HMAC-SHA-256", hmac);
  add_keyed(digest, "stun", "the HMAC-SHA1 of STUN messages", stun);
}

}  // namespace plx::tool
