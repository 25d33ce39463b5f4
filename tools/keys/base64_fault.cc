#include <fmt/core.h>

#include "keys/verdict.h"
#include "support/output.h"

namespace plx::tool {
namespace {

bool is_space(unsigned char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool in_alphabet(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
         c == '/';
}

Base64Fault fault_at(size_t byte, std::string what) { return {true, byte, std::move(what)}; }

}  // namespace

Base64Fault find_base64_fault(std::string_view text) {
  size_t characters = 0, padding = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (is_space(c)) continue;
    if (c == '=') {
      ++padding;
      if (padding > 2 || characters % 4 < 2) return fault_at(i, "an '=' where none belongs");
    } else if (!in_alphabet(c)) {
      return fault_at(i, fmt::format("the byte '{}'", printable(text.substr(i, 1))));
    } else if (padding != 0) {
      return fault_at(i, "text behind the padding");
    } else {
      ++characters;
    }
  }
  if ((characters + padding) % 4 != 0)
    return fault_at(text.size(), "the end of an unfinished group");
  return {};
}

}  // namespace plx::tool
