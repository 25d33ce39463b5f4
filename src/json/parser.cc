// A recursive reader: one function per kind of value, each entered with the cursor at the value and
// left with it behind. The depth is bounded, so the recursion is.
#include "json/parser.h"

#include <algorithm>

#include "container/alloc.h"
#include "internal/wipe.h"
#include "json/characters.h"
#include "json/name_index.h"
#include "json/pending.h"
#include "json/text.h"
#include "json/tree.h"

namespace plx::json {
namespace {

constexpr int kMaxDepth = 16;
// Containers have always grown by doubling from 15, with nothing granted above 500.
constexpr size_t kMaxEntries = 480;

class Parser {
 public:
  Parser(const char* text, Texts texts) : cursor_(text), texts_(texts), entries_(texts) {}

  // The value at the cursor, or null when the parse fails. The root's depth is 0.
  PLX_JsonValue* parse_value(int depth);

  // The greatest depth that was entered.
  int deepest() const { return deepest_; }

 private:
  PLX_JsonValue* parse_array(int depth);
  bool parse_element(int depth, size_t first);
  PLX_JsonValue* close_array(size_t first);

  PLX_JsonValue* parse_object(int depth);
  bool parse_member(int depth, size_t first, NameIndex* names);
  PLX_JsonValue* close_object(size_t first);

  PLX_JsonValue* parse_scalar();

  // The place of the next entry of the container whose entries start at `first`; null when it may
  // not have any more.
  PendingEntry* next_entry(size_t first) {
    return entries_.size() - first < kMaxEntries ? entries_.next() : nullptr;
  }

  void skip_white_space() {
    while (is_white_space(*cursor_)) ++cursor_;
  }
  bool skip(char c);
  bool skip_comma();

  const char* cursor_;
  const Texts texts_;
  int deepest_ = 0;
  PendingEntries entries_;
};

PLX_JsonValue* Parser::parse_value(int depth) {
  if (depth + 1 > kMaxDepth) return nullptr;
  deepest_ = std::max(deepest_, depth);
  skip_white_space();
  if (*cursor_ == '[') return parse_array(depth);
  if (*cursor_ == '{') return parse_object(depth);
  // A misplaced comma, colon or closing bracket makes an empty token there, which fails.
  return parse_scalar();
}

// Steps past `c` if it is next, white space apart.
bool Parser::skip(char c) {
  if (*cursor_ != c) {
    skip_white_space();
    if (*cursor_ != c) return false;
  }
  ++cursor_;
  return true;
}

// Steps past a comma and the white space around it.
bool Parser::skip_comma() {
  if (!skip(',')) return false;
  skip_white_space();
  return true;
}

PLX_JsonValue* Parser::parse_array(int depth) {
  const size_t first = entries_.size();
  ++cursor_;
  if (skip(']')) return close_array(first);
  do {
    if (!parse_element(depth + 1, first)) return nullptr;
  } while (skip_comma());
  return skip(']') ? close_array(first) : nullptr;
}

bool Parser::parse_element(int depth, size_t first) {
  PLX_JsonValue* element = parse_value(depth);
  if (element == nullptr) return false;
  PendingEntry* entry = next_entry(first);
  if (entry == nullptr) {
    // Of a refused element only the record is released, what hangs below it is not: callers depend
    // on it. What is lost need not be readable.
    if (texts_ == Texts::kSecret) wipe_texts(element);
    release_block(element);
    return false;
  }
  entry->name = nullptr;
  entry->value = element;
  entries_.take_next();
  return true;
}

PLX_JsonValue* Parser::close_array(size_t first) {
  PLX_JsonArray* array = make_array(entries_.size() - first);
  if (array == nullptr) return nullptr;
  PLX_JsonValue* value = make_value(PLX_JSON_ARRAY, array);
  if (value == nullptr) {
    release_body(array);
    return nullptr;
  }
  for (int32_t i = 0; i < array->count; ++i) array->items[i] = entries_[first + i].value;
  entries_.drop_from(first);
  return value;
}

PLX_JsonValue* Parser::parse_object(int depth) {
  const size_t first = entries_.size();
  NameIndex names(entries_, first);
  ++cursor_;
  if (skip('}')) return close_object(first);
  do {
    if (!parse_member(depth + 1, first, &names)) return nullptr;
  } while (skip_comma());
  return skip('}') ? close_object(first) : nullptr;
}

bool Parser::parse_member(int depth, size_t first, NameIndex* names) {
  const Text name = read_text(&cursor_);
  if (name.data == nullptr) return false;
  PLX_JsonValue* value = skip(':') ? parse_value(depth) : nullptr;
  PendingEntry* entry = value != nullptr ? next_entry(first) : nullptr;
  if (entry == nullptr || !names->add(name, entry)) {
    release_block(name.data);
    release(value, texts_);
    return false;
  }
  entry->value = value;
  entries_.take_next();
  return true;
}

PLX_JsonValue* Parser::close_object(size_t first) {
  PLX_JsonObject* object = make_object(entries_.size() - first);
  if (object == nullptr) return nullptr;
  PLX_JsonValue* value = make_value(PLX_JSON_OBJECT, object);
  if (value == nullptr) {
    release_body(object);
    return nullptr;
  }
  for (int32_t i = 0; i < object->count; ++i) {
    object->names[i] = entries_[first + i].name;
    object->values[i] = entries_[first + i].value;
  }
  entries_.drop_from(first);
  return value;
}

PLX_JsonValue* Parser::parse_scalar() {
  const Text text = read_text(&cursor_);
  if (text.data == nullptr) return nullptr;
  PLX_JsonValue* value = make_value(PLX_JSON_STRING, text.data);
  if (value == nullptr) release_text(text.data, texts_);
  return value;
}

}  // namespace

PLX_JsonValue* parse(const char* text, Texts texts) {
  if (text == nullptr || (*text != '[' && *text != '{')) return nullptr;
  Parser parser(text, texts);
  PLX_JsonValue* root = parser.parse_value(0);
  if (texts == Texts::kSecret) {
    // The frames of six levels are smaller than the first, those of all sixteen than the second.
    if (parser.deepest() < 6) {
      wipe_stack<4096>();
    } else {
      wipe_stack<8192>();
    }
  }
  return root;
}

}  // namespace plx::json

extern "C" {

PLX_JsonValue* PLX_ParseJsonString(const char* text) { return plx::json::parse(text); }

}  // extern "C"
