#include "digest/check_list.h"

#include <ctype.h>
#include <fmt/core.h>

#include <algorithm>

namespace plx::tool {
namespace {

std::optional<std::string> unescape(const std::string& name) {
  std::string plain;
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '\\') {
      plain += name[i];
      continue;
    }
    const char next = ++i < name.size() ? name[i] : '\0';
    if (next != '\\' && next != 'n' && next != 'r') return {};
    plain += next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
  }
  return plain;
}

std::optional<std::string> digest_text(std::string text, size_t digits) {
  const bool valid = text.size() == digits && std::all_of(text.begin(), text.end(), [](char c) {
                       return isxdigit(static_cast<unsigned char>(c)) != 0;
                     });
  if (!valid) return {};
  for (char& c : text) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

std::string list_line(const std::string& digest, const std::string& name) {
  std::string escaped;
  for (const char c : name) {
    if (c == '\\') {
      escaped += "\\\\";
    } else if (c == '\n') {
      escaped += "\\n";
    } else if (c == '\r') {
      escaped += "\\r";
    } else {
      escaped += c;
    }
  }
  return fmt::format("{}{}  {}\n", escaped == name ? "" : "\\", digest, escaped);
}

std::optional<ListedDigest> parse_list_line(std::string line, size_t digits, const char* tag) {
  const bool escaped = !line.empty() && line[0] == '\\';
  if (escaped) line.erase(0, 1);
  std::string digest, name;
  const std::string opening = fmt::format("{} (", tag);
  const size_t closing = line.rfind(") = ");
  if (line.compare(0, opening.size(), opening) == 0 && closing != std::string::npos &&
      closing >= opening.size()) {
    name = line.substr(opening.size(), closing - opening.size());
    digest = line.substr(closing + 4);
  } else {
    if (line.size() < digits + 3 || line[digits] != ' ') return {};
    if (line[digits + 1] != ' ' && line[digits + 1] != '*') return {};
    digest = line.substr(0, digits);
    name = line.substr(digits + 2);
  }
  const auto valid = digest_text(digest, digits);
  if (!valid || name.empty()) return {};
  if (!escaped) return ListedDigest{*valid, name};
  const auto plain = unescape(name);
  if (!plain) return {};
  return ListedDigest{*valid, *plain};
}

}  // namespace plx::tool
