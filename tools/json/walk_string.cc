#include "json/walk_string.h"

#include <string.h>

namespace plx::tool {
namespace {

const char kControl[] =
    "a control byte (below 0x20) inside a string or bare value; a bare value ends at a comma, a "
    "space, a colon, a quote or a bracket, not at a line end";
const char kEscape[] = "no escape of JSON";
const char kUnicode[] = "\\u takes four hexadecimal digits";

bool is_hex(unsigned char c) {
  return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
}

void append_utf8(unsigned unit, std::string* text) {
  if (unit < 0x80) {
    text->push_back(static_cast<char>(unit));
  } else if (unit < 0x800) {
    text->push_back(static_cast<char>(0xC0 | unit >> 6));
    text->push_back(static_cast<char>(0x80 | (unit & 0x3F)));
  } else {
    text->push_back(static_cast<char>(0xE0 | unit >> 12));
    text->push_back(static_cast<char>(0x80 | (unit >> 6 & 0x3F)));
    text->push_back(static_cast<char>(0x80 | (unit & 0x3F)));
  }
}

bool read_unicode(const char* digits, const char* end, std::string* text) {
  unsigned unit = 0;
  for (int i = 0; i < 4; ++i) {
    if (digits + i >= end || !is_hex(static_cast<unsigned char>(digits[i]))) return false;
    const unsigned char c = static_cast<unsigned char>(digits[i]);
    unit = unit * 16 + (c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10u);
  }
  append_utf8(unit, text);
  return true;
}

// The byte that an escape letter stands for, or -1.
int simple_escape(char letter) {
  static const char kLetters[] = "\"'/\\bfnrt";
  static const char kBytes[] = "\"'/\\\b\f\n\r\t";
  const char* at = letter == '\0' ? nullptr : strchr(kLetters, letter);
  return at == nullptr ? -1 : kBytes[at - kLetters];
}

bool unescape(const char* at, const char* end, std::string* text, JsonFault* fault) {
  text->clear();
  while (at < end) {
    const unsigned char c = static_cast<unsigned char>(*at);
    if (c < 0x20) {
      *fault = {at, kControl};
      return false;
    }
    if (c != '\\') {
      text->push_back(*at++);
      continue;
    }
    const char letter = at + 1 < end ? at[1] : '\0';
    if (letter == 'u') {
      if (!read_unicode(at + 2, end, text)) {
        *fault = {at, kUnicode};
        return false;
      }
      at += 6;
      continue;
    }
    const int byte = simple_escape(letter);
    if (byte < 0) {
      *fault = {at, kEscape};
      return false;
    }
    text->push_back(static_cast<char>(byte));
    at += 2;
  }
  // An escaped zero ends the text there, once all of it has been looked at.
  text->resize(strlen(text->c_str()));
  return true;
}

bool ends_token(char c) { return c == '\0' || strchr(", :'\"{}[]", c) != nullptr; }

bool read_quoted(const char** cursor, std::string* text, JsonFault* fault) {
  const char quote = **cursor;
  const char* begin = *cursor + 1;
  const char* at = begin;
  for (; *at != quote; ++at) {
    if (*at == '\\' && at[1] != '\0') ++at;
    if (*at == '\0' || (*at == '\\' && at[1] == '\0')) {
      *fault = {*cursor, "a string without its closing quote"};
      return false;
    }
  }
  *cursor = at + 1;
  if (**cursor == '\0') {
    *fault = {at, "the text ends with the closing quote of a string"};
    return false;
  }
  return unescape(begin, at, text, fault);
}

bool read_bare(const char** cursor, std::string* text, JsonFault* fault) {
  const char* begin = *cursor;
  const char* end = begin;
  while (!ends_token(*end)) ++end;
  if (end == begin) {
    *fault = {begin, *begin == '\0' ? "the text ends where a value or name belongs"
                                    : "no value or name starts with this byte"};
    return false;
  }
  *cursor = end;
  return unescape(begin, end, text, fault);
}

}  // namespace

bool read_scalar(const char** cursor, std::string* text, JsonFault* fault) {
  if (**cursor != '"' && **cursor != '\'') return read_bare(cursor, text, fault);
  const char* const start = *cursor;
  if (read_quoted(cursor, text, fault)) return true;
  if (*cursor == start) return false;
  // The string was rejected behind its closing quote; only a bare token right there saves it.
  JsonFault second;
  return read_bare(cursor, text, &second);
}

}  // namespace plx::tool
