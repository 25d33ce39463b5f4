// plxutil: provisions and checks key files, runs and explains requests, and puts the library's
// other families at hand on the command line.
#include <fmt/core.h>
#include <plx/version.h>
#include <signal.h>

#include <new>
#include <system_error>

#include "commands/commands.h"
#include "support/failure.h"
#include "support/output.h"

namespace plx {
namespace tool {
namespace {

const char kExitCodes[] =
    "Exit codes: 0 done, 1 refused by the library or a difference found, 2 wrong use, "
    "3 system error.\n"
    "Each group has a manual page: plxutil-keys(1), plxutil-request(1), plxutil-digest(1), ...";

void add_all(CLI::App& program) {
  program.require_subcommand(1);
  program.set_version_flag("-V,--version", "plxutil " PLX_VERSION);
  program.footer(kExitCodes);
  add_keys_commands(program);
  add_request_commands(program);
  add_seal_commands(program);
  add_digest_commands(program);
  add_base64_commands(program);
  add_des3_commands(program);
  add_json_commands(program);
  add_version_command(program);
}

int report(const std::string& message, const std::string& advice, Exit exit) {
  fflush(stdout);
  fmt::print(stderr, "{} {}\n", paint(Tone::kBad, "plxutil:", stderr), message);
  if (!advice.empty()) fmt::print(stderr, "  {}\n", advice);
  return static_cast<int>(exit);
}

int report_wrong_use(const CLI::App& program, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {  // --help and --version
    program.exit(error);
    return fflush(stdout) == 0 ? 0 : static_cast<int>(Exit::kSystemError);
  }
  std::string command = "plxutil";
  for (const CLI::App* at = &program; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    command += ' ' + at->get_name();
  }
  return report(error.what(), fmt::format("see '{} --help'", command), Exit::kWrongUse);
}

int run(int argc, char** argv) {
  signal(SIGPIPE, SIG_IGN);  // a closed pipe is reported as any other failed write
  CLI::App program("Keys, requests and digests of the box's utility library.", "plxutil");
  add_all(program);
  try {
    program.parse(argc, argv);
    flush_output();
    return static_cast<int>(Exit::kDone);
  } catch (const CLI::ParseError& error) {
    return report_wrong_use(program, error);
  } catch (const Failure& failure) {
    return report(failure.what(), failure.advice(), failure.exit());
  } catch (const std::bad_alloc&) {
    return report("not enough memory", "give the input in smaller pieces", Exit::kSystemError);
  } catch (const std::system_error& error) {
    return report(error.what(), "", Exit::kSystemError);
  }
}

}  // namespace
}  // namespace tool
}  // namespace plx

int main(int argc, char** argv) { return plx::tool::run(argc, argv); }
