// plxutil request: encrypt and decrypt.
#include <fmt/core.h>

#include "commands/request_options.h"
#include "request/answer.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"

namespace plx::tool {
namespace {

const char kExplain[] = "'plxutil request explain' on the same request tells why";

void print_answer(const Answer& answer, const char* verb) {
  if (answer.result != 1) {
    refuse(fmt::format("the library refuses the request (result {})", answer.result), kExplain);
  }
  if (!answer.produced) {
    refuse(fmt::format("the library answers 1, but {} nothing", verb), kExplain);
  }
  put({reinterpret_cast<const char*>(answer.text.data()), answer.text.size()});
  put("\n");
}

void encrypt(const RequestOptions& options) {
  print_answer(encrypt_request(read_request(options)), "encrypted");
}

void decrypt(const RequestOptions& options) {
  print_answer(decrypt_request(read_request(options)), "decrypted");
}

void add_run(CLI::App& request, const char* name, const char* description,
             void (*run)(const RequestOptions&)) {
  CLI::App& command = *request.add_subcommand(name, description);
  const auto options = add_action<RequestOptions>(command, run);
  options->add_to(command);
}

}  // namespace

void RequestOptions::add_to(CLI::App& command) {
  box.add_to(command);
  add_input(command, &source, "the request; standard input when - or absent");
}

std::string read_request(const RequestOptions& options) {
  options.box.apply();
  std::string request = read_whole(options.source, kLargestInput);
  const size_t nul = request.find('\0');
  if (nul != std::string::npos) {
    fmt::print(stderr, "{} {}: a zero byte at {} ends the request\n",
               paint(Tone::kWarning, "note:", stderr), name_of(options.source), nul);
    request.resize(nul);
  }
  return request;
}

void add_request_commands(CLI::App& program) {
  CLI::App& request = *program.add_subcommand("request", "JSON requests: run and explain them");
  request.require_subcommand(1);
  add_run(request, "encrypt", "encrypt the request's plainText; prints hexadecimal digits",
          encrypt);
  add_run(request, "decrypt", "decrypt the request's cipherText; prints the plain text", decrypt);
  add_explain(request);
}

}  // namespace plx::tool
