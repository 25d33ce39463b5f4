// plxutil request explain.
#include <fmt/core.h>

#include "commands/request_options.h"
#include "json/tree.h"
#include "request/answer.h"
#include "request/explain.h"
#include "support/failure.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct ExplainOptions {
  RequestOptions request;
  std::string direction;
  bool show_secret = false;
  bool json = false;
};

// A request that holds a cipher text and no plain text is there to be decrypted.
bool wants_decryption(const std::string& request, const std::string& direction) {
  if (!direction.empty()) return direction == "decrypt";
  size_t start;
  const auto cut = cut_to_braces(request, &start);
  const JsonTree tree(cut ? PLX_ParseJsonString(cut->c_str()) : nullptr);
  return tree != nullptr && PLX_FindFromJsonValue(tree.get(), "plainText") == nullptr &&
         PLX_FindFromJsonValue(tree.get(), "cipherText") != nullptr;
}

const char* kind_name(Step::Kind kind) {
  return kind == Step::Kind::kPlain ? "plain" : kind == Step::Kind::kOddity ? "oddity" : "stop";
}

std::string explanation_json(const Explanation& explanation, const Answer& answer, bool agrees) {
  std::vector<std::string> steps;
  for (const Step& step : explanation.steps) {
    steps.push_back(JsonObject()
                        .text("kind", kind_name(step.kind))
                        .text("subject", step.subject)
                        .text("finding", step.finding)
                        .str());
  }
  return JsonObject()
      .text("direction", explanation.decrypting ? "decrypt" : "encrypt")
      .raw("steps", json_array(steps))
      .number("room", static_cast<long long>(explanation.room))
      .number("result", answer.result)
      .boolean("produced", answer.produced)
      .number("output", static_cast<long long>(answer.text.size()))
      .boolean("explanation_holds", agrees)
      .str();
}

void print_steps(const Explanation& explanation) {
  fmt::print("to {}\n", explanation.decrypting ? "decrypt" : "encrypt");
  for (const Step& step : explanation.steps) {
    const std::string line = fmt::format("{:<13} {}", step.subject, step.finding);
    switch (step.kind) {
      case Step::Kind::kPlain:
        fmt::print("    {}\n", line);
        break;
      case Step::Kind::kOddity:
        fmt::print("{} {}\n", paint(Tone::kWarning, "odd"), line);
        break;
      case Step::Kind::kStop:
        fmt::print("{} {}\n", paint(Tone::kBad, "end"), line);
    }
  }
}

void explain(const ExplainOptions& options) {
  const std::string request = read_request(options.request);
  const bool decrypting = wants_decryption(request, options.direction);
  const Explanation explanation = explain_request(request, decrypting, options.show_secret);
  const Answer answer = decrypting ? decrypt_request(request) : encrypt_request(request);
  const bool agrees = answer.result == explanation.result &&
                      answer.produced == explanation.produced &&
                      answer.text.size() == explanation.output;
  if (options.json) {
    put(explanation_json(explanation, answer, agrees) + "\n");
  } else {
    print_steps(explanation);
    fmt::print("    {:<13} {}, {} {}\n", "answer", answer.result, answer.text.size(),
               decrypting ? "bytes of plain text" : "hexadecimal digits");
  }
  if (!agrees) {
    refuse("the library does something else than explained",
           "this is a fault of plxutil; please report the request");
  }
  if (!answer.produced) refuse("the request produces nothing");
}

}  // namespace

void add_explain(CLI::App& request) {
  CLI::App& command =
      *request.add_subcommand("explain", "say step by step what the library makes of a request");
  const auto options = add_action<ExplainOptions>(command, explain);
  options->request.add_to(command);
  command
      .add_option("--as", options->direction,
                  "encrypt or decrypt; else decrypt where there is a cipherText and no plainText")
      ->type_name("WHAT")
      ->check(CLI::IsMember({"encrypt", "decrypt"}));
  command.add_flag("--show-secret", options->show_secret,
                   "print key prefix, work key and IV, not digests of them");
  command.add_flag("--json", options->json, "print JSON");
}

}  // namespace plx::tool
