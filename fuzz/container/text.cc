#include <plx/container.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "programs.h"

namespace plx_fuzz {
namespace {

// The models work on whole images, so that every byte that a call leaves alone is compared too. A
// buffer of the library's is a heap block of exactly its size.
using Image = std::vector<char>;

Image image_of(const std::string& text) {
  return Image(text.c_str(), text.c_str() + text.size() + 1);
}

bool is_in(char c, const char* set) { return c != 0 && strchr(set, c) != nullptr; }

void check_trim(Program& program) {
  const std::string text = program.text(24, "  \t\r\nab\f");
  size_t lead = 0, end = text.size();
  while (lead < end && is_in(text[lead], " \t\r\n")) ++lead;
  while (end > lead && is_in(text[end - 1], " \t\r\n")) --end;
  const size_t content = end - lead;
  Image expected = image_of(text);
  for (size_t i = 0; i < content && lead > 0; ++i) {
    // A copy that would overlap clears instead.
    expected[i] = lead < content ? '\0' : text[lead + i];
  }
  expected[content] = 0;
  Image image = image_of(text);
  PLX_trim(image.data());
  CHECK(image == expected);
}

void check_remove_specified(Program& program) {
  const std::string text = program.text(24, "ab,\xE9");
  const char ch = "ab,\xE9"[program.below(4)];
  std::string kept = text;
  kept.erase(std::remove(kept.begin(), kept.end(), ch), kept.end());
  Image image(kept.size(), '?');
  PLX_RemoveSpecifiedCharacter(image_of(text).data(), image.data(), ch);
  CHECK(std::string(image.begin(), image.end()) == kept);
}

// The value behind `key`; false when there is none.
bool model_value(const std::string& text, const std::string& key, std::string* value) {
  size_t at = text.find(key);
  if (at == std::string::npos) return false;
  at = text.find_first_not_of("= \t\r\n", at + key.size());
  if (at == std::string::npos) return false;
  const bool quoted = text[at] == '"';
  if (quoted) ++at;
  const size_t end = text.find(quoted ? '"' : ',', at);
  if (end == std::string::npos) return false;
  *value = text.substr(at, end - at);
  return true;
}

void check_get_value(Program& program) {
  const std::string text = program.text(40, "kv=\",  \tx");
  const std::string key = program.text(2, "kv");
  const size_t size = program.below(12);
  Image image(size, '?'), expected(size, '?');
  std::string value;
  if (size != 0) expected[0] = 0;
  if (size != 0 && model_value(text, key, &value)) {
    std::copy_n(value.begin(), std::min(value.size(), size - 1), expected.begin());
    expected[size - 1] = 0;
  }
  PLX_getStrValue(image_of(text).data(), key.c_str(), image.data(), static_cast<unsigned>(size));
  CHECK(image == expected);
}

void check_first_word(Program& program) {
  std::string text = program.text(20, " \t\n\f\r\bab\v");
  if (program.one_in(4)) text += '\0';
  const int length =
      program.one_in(8) ? -static_cast<int>(program.byte()) : static_cast<int>(text.size());
  const int size = program.one_in(8) ? INT_MIN : static_cast<int>(program.below(12));
  Image image(static_cast<size_t>(std::max(size, 0)), '?');
  Image expected = image;
  const size_t start = std::min(text.find_first_not_of(" \t\n\f\r\b"), text.size());
  const size_t end = std::min(text.find_first_of(" \t\n\f\r\b", start), text.size());
  if (length > 0 && size > 1 && end > start) {
    const size_t n = std::min(end - start, image.size() - 1);
    std::copy_n(text.begin() + static_cast<long>(start), n, expected.begin());
    expected[n] = 0;
  }
  const Image exact(text.begin(), text.end());
  CHECK(PLX_getFirstString(text.empty() ? "" : exact.data(), length, image.data(), size) ==
        image.data());
  CHECK(image == expected);
}

// What strncat_s leaves behind: characters are stored while there is room, and a text that does
// not fit is emptied.
void model_append(Image* image, const std::string& piece) {
  const auto end = std::find(image->begin(), image->end(), '\0');
  if (end == image->end()) {
    (*image)[0] = 0;
    return;
  }
  auto out = end;
  for (size_t i = 0; i <= piece.size(); ++i, ++out) {
    if (out == image->end()) {
      (*image)[0] = 0;
      return;
    }
    *out = i < piece.size() ? piece[i] : '\0';
  }
}

void check_remove_character(Program& program) {
  const std::string text = program.text(16, "abc,,");
  const char ch = program.one_in(4) ? 'x' : ',';
  Image image(1 + program.below(16), '?');
  if (!program.one_in(8)) image[program.below(image.size())] = 0;
  Image expected = image;
  if (text.find(ch) == std::string::npos) {
    expected[0] = 0;
    if (text.size() < image.size()) std::copy_n(text.c_str(), text.size() + 1, expected.begin());
  } else {
    size_t start = 0;
    for (size_t at; (at = text.find(ch, start)) != std::string::npos; start = at + 1) {
      model_append(&expected, text.substr(start, at - start));
    }
    model_append(&expected, text.substr(start));
  }
  CHECK(removeCharacter(image_of(text).data(), image.data(), static_cast<unsigned>(image.size()),
                        ch) == 0);
  CHECK(image == expected);
}

std::string lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return text;
}

void check_search(Program& program) {
  const Image haystack = image_of(program.text(20, "aAbB@`[{"));
  const Image needle = image_of(program.text(4, "aAbB@`[{"));
  const size_t at = lower(haystack.data()).find(lower(needle.data()));
  const char* const found = strstrcase(haystack.data(), needle.data());
  CHECK(found == (at == std::string::npos ? nullptr : haystack.data() + at));
}

}  // namespace

void run_text(Program& program) {
  constexpr void (*kChecks[])(Program&) = {
      check_trim,       check_remove_specified, check_get_value,
      check_first_word, check_remove_character, check_search};
  while (!program.done()) kChecks[program.below(6)](program);
}

}  // namespace plx_fuzz
