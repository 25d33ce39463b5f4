// plxutil base64: encode, decode.
#include <fmt/core.h>
#include <plx/digest.h>
#include <string.h>

#include <algorithm>
#include <vector>

#include "commands/commands.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct Base64Options {
  std::string source;
  bool url = false;
  bool ignore_space = false;
};

// What both encoders take and still count in 32 bits.
constexpr size_t kLargestPlain = size_t{3} << 29;

void encode(const Base64Options& options) {
  const std::string data = read_whole(options.source, kLargestPlain);
  if (data.empty()) return;  // nothing to say, and the library would call it a refusal
  const auto* in = reinterpret_cast<const unsigned char*>(data.data());
  const unsigned size = static_cast<unsigned>(data.size());
  std::vector<char> text((data.size() + 2) / 3 * 4 + 1);
  const unsigned room = static_cast<unsigned>(text.size());
  const bool encoded = options.url ? PLX_base64UrlEncoder(text.data(), room, in, size) == 0
                                   : PLX_b64_encode(in, size, text.data(), room) != 0;
  if (!encoded) refuse("the library does not encode this");
  put(text.data());
  put("\n");
}

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool in_alphabet(char c, bool url) {
  const bool common = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  return common || (url ? c == '-' || c == '_' : c == '+' || c == '/' || c == '=');
}

// Why the library refused a text, as far as the text tells.
[[noreturn]] void refuse_text(const std::string& text, bool url) {
  const char* form = url ? "Base64url" : "Base64";
  const auto bad =
      std::find_if_not(text.begin(), text.end(), [&](char c) { return in_alphabet(c, url); });
  if (bad != text.end()) {
    const bool other = in_alphabet(*bad, !url);
    refuse(fmt::format("byte {} ('{}') does not belong to {}", bad - text.begin(),
                       printable({&*bad, 1}), form),
           is_space(*bad) ? "--ignore-space skips white space"
           : other        ? (url ? "leave --url out" : "try --url")
                          : "");
  }
  if (url ? text.size() % 4 == 1 : text.size() % 4 != 0) {
    refuse(fmt::format("{} characters are no whole {} text", text.size(), form),
           url ? "" : "the text may have been cut, or lost its padding; --url takes none");
  }
  refuse(fmt::format("the library does not decode this as {}", form), "see its padding");
}

void decode(const Base64Options& options) {
  std::string text = read_whole(options.source, kLargestInput - 1);
  if (options.ignore_space) {
    text.erase(std::remove_if(text.begin(), text.end(), is_space), text.end());
  } else {  // the line end that every text file has
    if (!text.empty() && text.back() == '\n') text.pop_back();
    if (!text.empty() && text.back() == '\r') text.pop_back();
  }
  if (text.empty()) return;
  if (options.url && text.find('\0') != std::string::npos) refuse_text(text, options.url);
  std::vector<unsigned char> bytes(text.size() + 1);
  const unsigned size = static_cast<unsigned>(text.size());
  const unsigned decoded =
      options.url ? PLX_base64UrlDecode(bytes.data(), static_cast<unsigned>(bytes.size()),
                                        text.data(), static_cast<int>(size))
                  : PLX_b64_decode(text.data(), size, bytes.data());
  if (decoded == 0) refuse_text(text, options.url);
  put({reinterpret_cast<const char*>(bytes.data()), decoded});
}

void add(CLI::App& base64, const char* name, const char* description, const char* input,
         void (*run)(const Base64Options&), bool decoding) {
  CLI::App& command = *base64.add_subcommand(name, description);
  const auto options = add_action<Base64Options>(command, run);
  add_input(command, &options->source, input);
  command.add_flag("--url", options->url, "Base64url: - and _ in the alphabet, no padding");
  if (decoding) {
    command.add_flag("-i,--ignore-space", options->ignore_space, "skip white space in the text");
  }
}

}  // namespace

void add_base64_commands(CLI::App& program) {
  CLI::App& base64 = *program.add_subcommand("base64", "Base64 and Base64url");
  base64.require_subcommand(1);
  add(base64, "encode", "encode bytes on one line", "the bytes; standard input when - or absent",
      encode, false);
  add(base64, "decode", "decode a text", "the text; standard input when - or absent", decode, true);
}

}  // namespace plx::tool
