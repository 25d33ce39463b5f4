#include "support/output.h"

#include <errno.h>
#include <fmt/core.h>
#include <stdint.h>
#include <stdlib.h>
#include <unistd.h>

#include "support/failure.h"

namespace plx::tool {
namespace {

// Bytes that begin no valid UTF-8 sequence become U+FFFD, so that the JSON is always valid.
size_t utf8_length(std::string_view text) {
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const unsigned char first = static_cast<unsigned char>(text[0]);
  const size_t length = first < 0x80             ? 1
                        : (first & 0xE0) == 0xC0 ? 2
                        : (first & 0xF0) == 0xE0 ? 3
                        : (first & 0xF8) == 0xF0 ? 4
                                                 : 0;
  if (length == 0 || length > text.size()) return 0;
  uint32_t value = length == 1 ? first : first & 0x7Fu >> length;
  for (size_t i = 1; i < length; ++i) {
    const unsigned char byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return 0;
    value = value << 6 | (byte & 0x3F);
  }
  const bool is_surrogate = value >= 0xD800 && value <= 0xDFFF;
  return value < kLeast[length] || is_surrogate || value > 0x10FFFF ? 0 : length;
}

const char* escape_of(Tone tone) {
  switch (tone) {
    case Tone::kGood:
      return "\033[32m";
    case Tone::kBad:
      return "\033[31m";
    case Tone::kWarning:
      return "\033[33m";
    case Tone::kFaint:
      return "\033[2m";
    case Tone::kStrong:
      return "\033[1m";
  }
  return "";
}

bool has_colour(FILE* stream) {
  const char* off = getenv("NO_COLOR");
  return (off == nullptr || *off == '\0') && isatty(fileno(stream)) != 0;
}

}  // namespace

std::string paint(Tone tone, const std::string& text, FILE* stream) {
  if (!has_colour(stream)) return text;
  return fmt::format("{}{}\033[0m", escape_of(tone), text);
}

void put(std::string_view data) {
  if (!data.empty() && fwrite(data.data(), 1, data.size(), stdout) != data.size()) {
    system_failure("standard output", errno);
  }
}

void flush_output() {
  if (fflush(stdout) != 0 || ferror(stdout) != 0) system_failure("standard output", errno);
}

std::string to_hex(std::string_view bytes) {
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{:02x}", byte);
  return text;
}

std::string printable(std::string_view bytes, size_t limit) {
  std::string text;
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i >= limit) return text + "...";
    const unsigned char byte = static_cast<unsigned char>(bytes[i]);
    if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && utf8_length(bytes.substr(i)) == 0)) {
      text += fmt::format("\\x{:02x}", byte);
      continue;
    }
    const size_t length = utf8_length(bytes.substr(i));
    text += bytes.substr(i, length);
    i += length - 1;
  }
  return text;
}

std::string json_quote(std::string_view text) {
  std::string quoted = "\"";
  while (!text.empty()) {
    const size_t length = utf8_length(text);
    const unsigned char c = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      quoted += "\xEF\xBF\xBD";
    } else if (c == '"' || c == '\\') {
      quoted += {'\\', static_cast<char>(c)};
    } else if (c < 0x20) {
      quoted += fmt::format("\\u{:04x}", c);
    } else {
      quoted += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return quoted + '"';
}

JsonObject& JsonObject::raw(std::string_view name, const std::string& json) {
  if (!members_.empty()) members_ += ", ";
  members_ += json_quote(name) + ": " + json;
  return *this;
}

JsonObject& JsonObject::text(std::string_view name, std::string_view value) {
  return raw(name, json_quote(value));
}

JsonObject& JsonObject::number(std::string_view name, long long value) {
  return raw(name, std::to_string(value));
}

JsonObject& JsonObject::boolean(std::string_view name, bool value) {
  return raw(name, value ? "true" : "false");
}

std::string json_array(const std::vector<std::string>& elements) {
  std::string text = "[";
  for (const std::string& element : elements) text += (text.size() > 1 ? ", " : "") + element;
  return text + "]";
}

}  // namespace plx::tool
