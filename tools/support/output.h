// What the tool prints: text for people, JSON for scripts.
#ifndef PLX_TOOLS_SUPPORT_OUTPUT_H
#define PLX_TOOLS_SUPPORT_OUTPUT_H

#include <stdio.h>

#include <string>
#include <string_view>
#include <vector>

namespace plx::tool {

enum class Tone { kGood, kBad, kWarning, kFaint, kStrong };

// `text` in the tone's colour, when `stream` is a terminal and NO_COLOR is not set.
std::string paint(Tone tone, const std::string& text, FILE* stream = stdout);

// Writes all of `data` to standard output as it is.
void put(std::string_view data);
// Ends the command when something printed did not arrive (a full disk, a closed pipe).
void flush_output();

// Bytes as lower-case hexadecimal digits.
std::string to_hex(std::string_view bytes);
// Bytes of a file or a request as they may stand on a terminal: control bytes as \xNN, long texts
// cut after `limit` bytes.
std::string printable(std::string_view bytes, size_t limit = 60);

std::string json_quote(std::string_view text);

// One JSON object on one line, members in the order in which they were added.
class JsonObject {
 public:
  JsonObject& text(std::string_view name, std::string_view value);
  JsonObject& number(std::string_view name, long long value);
  JsonObject& boolean(std::string_view name, bool value);
  JsonObject& raw(std::string_view name, const std::string& json);
  std::string str() const { return "{" + members_ + "}"; }

 private:
  std::string members_;
};

std::string json_array(const std::vector<std::string>& elements);

}  // namespace plx::tool

#endif
