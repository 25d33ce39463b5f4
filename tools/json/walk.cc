#include "json/walk.h"

#include <string.h>

#include <set>

#include "json/walk_string.h"

namespace plx::tool {
namespace {

constexpr int kDeepest = 16;
constexpr int kMostEntries = 480;

class Walk {
 public:
  explicit Walk(const char* text) : text_(text), cursor_(text) {}

  bool run() {
    if (*cursor_ != '[' && *cursor_ != '{') {
      return fail(*cursor_ == '\0' ? "the text is empty"
                                   : "the text must begin with [ or {, without space before it");
    }
    return walk_value(0);
  }

  JsonRefusal refusal() const {
    JsonRefusal refusal;
    refusal.refused = true;
    refusal.rule = fault_.rule;
    refusal.byte = static_cast<size_t>(fault_.at - text_);
    for (const char* at = text_; at < fault_.at; ++at) {
      ++refusal.column;
      if (*at != '\n') continue;
      ++refusal.line;
      refusal.column = 1;
    }
    return refusal;
  }

 private:
  bool fail(const char* rule) {
    fault_ = {cursor_, rule};
    return false;
  }

  void skip_space() {
    while (*cursor_ == ' ' || (*cursor_ >= '\t' && *cursor_ <= '\r')) ++cursor_;
  }

  bool walk_value(int depth) {
    if (depth + 1 > kDeepest) return fail("nested deeper than 16 levels");
    skip_space();
    switch (*cursor_) {
      case ',':
      case ':':
        return fail("a value is missing here");
      case '[':
        return walk_array(depth);
      case '{':
        return walk_object(depth);
      default:
        return read_scalar(&cursor_, &scalar_, &fault_);
    }
  }

  bool count_entry(int* count) {
    if (*count == kMostEntries) return fail("more than 480 entries in one array or object");
    ++*count;
    return true;
  }

  bool walk_array(int depth) {
    ++cursor_;
    skip_space();
    if (closes(']')) return true;
    for (int count = 0; *cursor_ != '\0';) {
      if (!walk_value(depth + 1) || !count_entry(&count)) return false;
      if (!passes_comma()) break;
    }
    return closes(']') || fail("a comma or ] belongs here");
  }

  bool walk_object(int depth) {
    ++cursor_;
    skip_space();
    if (closes('}')) return true;
    std::set<std::string> names;
    for (int count = 0; *cursor_ != '\0';) {
      const char* const name_at = cursor_;
      if (!walk_member(depth) || !count_entry(&count)) return false;
      if (!names.insert(name_).second) {
        fault_ = {name_at, "a second member of the same name"};
        return false;
      }
      if (!passes_comma()) break;
    }
    return closes('}') || fail("a comma or } belongs here");
  }

  bool walk_member(int depth) {
    std::string name;
    if (!read_scalar(&cursor_, &name, &fault_)) return false;
    skip_space();
    if (*cursor_ != ':') return fail("a colon belongs behind the member's name");
    ++cursor_;
    if (!walk_value(depth + 1)) return false;
    name_ = name;  // the value may have had members of its own
    return true;
  }

  bool passes_comma() {
    skip_space();
    if (*cursor_ != ',') return false;
    ++cursor_;
    skip_space();
    return true;
  }

  bool closes(char bracket) {
    skip_space();
    if (*cursor_ != bracket) return false;
    ++cursor_;
    return true;
  }

  const char* text_;
  const char* cursor_;
  std::string scalar_;
  std::string name_;
  JsonFault fault_;
};

}  // namespace

JsonRefusal walk_json(const char* text) {
  Walk walk(text);
  return walk.run() ? JsonRefusal{} : walk.refusal();
}

}  // namespace plx::tool
