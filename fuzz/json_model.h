// The dialect once more, as naively as it can be put: texts are copied and unescaped, names are
// compared in pairs. It also foretells how many heap blocks a refused parse loses.
#ifndef PLX_FUZZ_JSON_MODEL_H
#define PLX_FUZZ_JSON_MODEL_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "json/tree_text.h"

namespace plx_test {

struct ModelValue {
  char kind = 's';  // or '{' or '['
  std::string text;
  std::vector<std::string> names;
  std::vector<ModelValue> values;

  std::string tree_text() const {
    if (kind == 's') return quoted(text);
    std::string out(1, kind);
    for (size_t i = 0; i < values.size(); ++i) {
      out +=
          (i > 0 ? "," : "") + (kind == '{' ? quoted(names[i]) + ':' : "") + values[i].tree_text();
    }
    return out + (kind == '{' ? '}' : ']');
  }

  // The first member of that name, depth-first, with letters of either case taken as equal or not.
  const ModelValue* find(const std::string& name, bool any_case) const {
    for (size_t i = 0; i < values.size(); ++i) {
      if (kind == '{' && same_name(names[i], name, any_case)) return &values[i];
      if (const ModelValue* found = values[i].find(name, any_case)) return found;
    }
    return nullptr;
  }

  static bool same_name(const std::string& a, const std::string& b, bool any_case) {
    const auto same = [any_case](char x, char y) {
      const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
      };
      return any_case ? lower(x) == lower(y) : x == y;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
  }

  // The value written in the dialect, whatever its texts hold.
  std::string written() const {
    if (kind == 's') return written_text(text);
    std::string out(1, kind);
    for (size_t i = 0; i < values.size(); ++i) {
      if (i > 0) out += ',';
      if (kind == '{') out += written_text(names[i]) + ':';
      out += values[i].written();
    }
    return out + (kind == '{' ? '}' : ']');
  }

  static std::string written_text(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
      char unit[8];
      const bool is_plain = static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
      if (!is_plain) snprintf(unit, sizeof unit, "\\u%04X", static_cast<unsigned char>(c));
      out += is_plain ? std::string(1, c) : unit;
    }
    return out + '"';
  }

  // Heap blocks of the tree: record and text, or record, body, slot arrays, names and values.
  long blocks() const {
    long count = 2 + (values.empty() ? 0 : kind == '{' ? 2 : 1) + static_cast<long>(names.size());
    for (const ModelValue& value : values) count += value.blocks();
    return count;
  }
};

class Model {
 public:
  explicit Model(const std::string& text) : p_(text.c_str()) {
    accepted_ = (*p_ == '[' || *p_ == '{') && read_value(&root_, 0);
    length_ = static_cast<size_t>(p_ - text.c_str());
  }
  // Of an accepted text: how much of it was read.
  size_t length() const { return length_; }
  bool accepted() const { return accepted_; }
  const ModelValue& root() const { return root_; }
  long leaked() const { return leaked_; }
  std::string tree_text() const { return accepted_ ? root_.tree_text() : "-"; }

 private:
  void skip_space() { p_ += strspn(p_, " \t\n\v\f\r"); }

  bool read_value(ModelValue* out, int depth) {
    if (depth > 15) return false;
    skip_space();
    if (*p_ == ',' || *p_ == ':') return false;
    if (*p_ != '[' && *p_ != '{') return read_text(&out->text);
    out->kind = *p_++;
    const bool is_object = out->kind == '{';
    const char closing = is_object ? '}' : ']';
    skip_space();
    while (*p_ != closing || !out->values.empty()) {
      ModelValue value;
      std::string name;
      if (is_object) {
        if (!read_text(&name)) return false;
        skip_space();
        if (*p_++ != ':') return false;
      }
      if (!read_value(&value, depth + 1)) return false;
      if (out->values.size() == 480) {
        leaked_ = is_object ? 0 : value.blocks() - 1;
        return false;
      }
      if (is_object) {
        if (std::count(out->names.begin(), out->names.end(), name) != 0) return false;
        out->names.push_back(name);
      }
      out->values.push_back(value);
      skip_space();
      if (*p_ != ',') break;
      ++p_;
      skip_space();
    }
    return *p_++ == closing;
  }

  bool read_text(std::string* out) {
    if (*p_ == '"' || *p_ == '\'') {
      const char* end = p_ + 1;
      while (*end != *p_) {
        if (*end == '\\') ++end;
        if (*end++ == '\0') return false;
      }
      const std::string raw(p_ + 1, end);
      p_ = end + 1;
      if (*p_ == '\0') return false;
      if (unescape(raw, out)) return true;
    }
    const std::string raw(p_, strcspn(p_, ", :'\"{}[]"));
    p_ += raw.size();
    return !raw.empty() && unescape(raw, out);
  }

  static bool unescape(const std::string& raw, std::string* out) {
    static const char kLetters[] = "\"'/\\bfnrt", kMeanings[] = "\"'/\\\b\f\n\r\t";
    std::string full;
    for (size_t i = 0; i < raw.size(); ++i) {
      if (static_cast<unsigned char>(raw[i]) < 0x20) return false;
      if (raw[i] != '\\') {
        full += raw[i];
        continue;
      }
      if (++i == raw.size()) return false;
      if (raw[i] == 'u') {
        const std::string digits = raw.substr(i + 1, 4);
        if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return false;
        if (digits.size() != 4) return false;
        full += utf8(strtoul(digits.c_str(), nullptr, 16));
        i += 4;
      } else if (const char* letter = strchr(kLetters, raw[i])) {
        full += kMeanings[letter - kLetters];
      } else {
        return false;
      }
    }
    *out = full.c_str();  // up to the first NUL
    return true;
  }

  static std::string utf8(unsigned long v) {
    const auto tail = [v](int shift) { return static_cast<char>(0x80 | (v >> shift & 0x3F)); };
    if (v < 0x80) return {static_cast<char>(v)};
    if (v < 0x800) return {static_cast<char>(0xC0 | v >> 6), tail(0)};
    return {static_cast<char>(0xE0 | v >> 12), tail(6), tail(0)};
  }

  const char* p_;
  bool accepted_;
  size_t length_;
  long leaked_ = 0;
  ModelValue root_;
};

}  // namespace plx_test

#endif
