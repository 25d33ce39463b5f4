// plxutil keys check.
#include <fmt/core.h>

#include "commands/keys_options.h"
#include "keys/fingerprint.h"
#include "keys/key_table.h"
#include "keys/verdict.h"
#include "support/failure.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct CheckOptions {
  BoxOptions box;
  std::vector<std::string> names;
  bool json = false;
};

std::string verdict_json(const KeyVerdict& verdict) {
  const KeyPaths paths = key_paths(verdict.index);
  JsonObject object;
  object.text("key", key_name(verdict.index))
      .boolean("loads", verdict.loads)
      .text("factor_file", paths.factor)
      .text("work_key_file", paths.work_key);
  if (verdict.loads) {
    object.number("length", static_cast<long long>(verdict.length));
  } else {
    object.text("file", verdict.finding.file)
        .text("problem", verdict.finding.problem)
        .text("detail", verdict.finding.detail)
        .text("advice", verdict.finding.advice);
  }
  std::vector<std::string> warnings;
  for (const std::string& warning : verdict.warnings) warnings.push_back(json_quote(warning));
  return object.raw("warnings", json_array(warnings)).str();
}

void print_verdict(const KeyVerdict& verdict) {
  fmt::print("{:<16} ", key_name(verdict.index));
  if (verdict.loads) {
    fmt::print("{}  {} characters\n", paint(Tone::kGood, "loads"), verdict.length);
  } else {
    const Finding& finding = verdict.finding;
    fmt::print("{}  {}: {} ({})\n{:<16} next:  {}\n", paint(Tone::kBad, "fails"), finding.file,
               finding.problem, finding.detail, "", finding.advice);
  }
  for (const std::string& warning : verdict.warnings) {
    fmt::print("{:<16} {}  {}\n", "", paint(Tone::kWarning, "note:"), warning);
  }
}

void check(const CheckOptions& options) {
  options.box.apply();
  const std::vector<int> indexes = key_indexes(options.names);
  const std::string fingerprint = secrets_fingerprint();
  std::vector<std::string> verdicts;
  size_t failed = 0;
  if (!options.json) fmt::print("{:<16} {}\n", "secrets", fingerprint);
  for (const int index : indexes) {
    const KeyVerdict verdict = judge_key(index, options.box.box_given());
    failed += verdict.loads ? 0 : 1;
    if (options.json) {
      verdicts.push_back(verdict_json(verdict));
    } else {
      print_verdict(verdict);
    }
  }
  if (options.json) {
    JsonObject object;
    object.text("secrets", fingerprint).boolean("all_load", failed == 0);
    put(object.raw("keys", json_array(verdicts)).str() + "\n");
  }
  if (failed != 0) refuse(fmt::format("{} of {} keys do not load", failed, indexes.size()));
}

}  // namespace

void add_check(CLI::App& keys) {
  CLI::App& command = *keys.add_subcommand("check", "say whether each key loads, and why not");
  const auto options = add_action<CheckOptions>(command, check);
  options->box.add_to(command);
  add_key_names(command, &options->names);
  command.add_flag("--json", options->json, "print JSON");
}

}  // namespace plx::tool
