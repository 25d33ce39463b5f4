// The JSON reader and its queries against the naive model.
//
// An input is a text, up to its first NUL, in which the byte 0x1F repeats: the two bytes behind it
// say how many of the bytes before it and how often. That brings the limits on entries and depth
// within reach of short inputs.
//
// What must hold:
//  - the tree, or the refusal, is the model's, and the tree has as many heap blocks;
//  - nothing is read behind the terminator, nor behind the bracket that closes the root;
//  - every query answers as the model does, for every name in the tree and for names beside these;
//  - the tree, written down with escapes, parses to the same tree.
#include <plx/json.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "json/tree_text.h"
#include "json_model.h"
#include "support/leaks.h"

namespace {

using plx_test::Model;
using plx_test::ModelValue;
using plx_test::tree_text;

constexpr size_t kMaxText = 1 << 13;

#define CHECK(condition) \
  ((condition) ? (void)0 : (fprintf(stderr, "line %d: %s\n", __LINE__, #condition), abort()))

std::string expand(const uint8_t* data, size_t size) {
  std::string text;
  for (size_t i = 0; i < size && data[i] != 0 && text.size() < kMaxText; ++i) {
    if (data[i] == 0x1F && i + 2 < size) {
      const std::string piece =
          text.substr(text.size() - std::min<size_t>(text.size(), data[i + 1]));
      for (int times = 2 * data[i + 2]; times > 0 && text.size() < kMaxText; --times) text += piece;
      i += 2;
    } else {
      text += static_cast<char>(data[i]);
    }
  }
  return text;
}

// Parses a copy of `text` in a block of exactly its size, with or without a terminator.
PLX_JsonValue* parse(const std::string& text, bool terminated) {
  const std::vector<char> input(text.c_str(), text.c_str() + text.size() + (terminated ? 1 : 0));
  return PLX_ParseJsonString(input.data());
}

// What a value is to its caller, as text; the model's wording is the same.
std::string answer(const PLX_JsonValue* value) { return tree_text(value); }
std::string answer(const ModelValue* value) { return value != nullptr ? value->tree_text() : "-"; }

int modelled_boolean(const std::string& text) {
  for (const char* word : {"false", "False", "FALSE"}) {
    if (text.compare(0, 5, word) == 0) return 0;
  }
  for (const char* word : {"true", "True", "TRUE"}) {
    if (text.compare(0, 4, word) == 0) return 1;
  }
  return -1;
}

bool same_number(double a, double b) { return memcmp(&a, &b, sizeof a) == 0; }

void check_conversions(const PLX_JsonValue* value, const ModelValue& model) {
  const bool is_text = model.kind == 's';
  const char* text = PLX_GetJsonValueString(value);
  CHECK((text != nullptr) == is_text);
  CHECK(!is_text || text == model.text);
  CHECK((PLX_GetJsonValueObject(value) != nullptr) == (model.kind == '{'));
  CHECK((PLX_GetJsonValueArray(value) != nullptr) == (model.kind == '['));
  CHECK(same_number(PLX_GetJsonValueNumber(value),
                    is_text ? strtod(model.text.c_str(), nullptr) : 0.0));
  CHECK(PLX_GetJsonValueBoolean(value) == (is_text ? modelled_boolean(model.text) : -1));
}

// Every value of the tree by every way that leads to it.
void check_bodies(const PLX_JsonValue* value, const ModelValue& model) {
  check_conversions(value, model);
  const PLX_JsonObject* object = PLX_GetJsonValueObject(value);
  const PLX_JsonArray* array = PLX_GetJsonValueArray(value);
  const int count = static_cast<int>(model.values.size());
  CHECK(PLX_JsonGetObjectCount(object) + PLX_JsonGetArrayCount(array) == count);
  for (int i : {-1, count}) {
    CHECK(PLX_JsonArrayGetValueByIndex(array, i) == nullptr);
    CHECK(PLX_JsonObjectGetValueByIndex(object, i) == nullptr);
    CHECK(PLX_JsonObjectGetStringByIndex(object, i) == nullptr);
  }
  for (int i = 0; i < count; ++i) {
    const PLX_JsonValue* entry = PLX_JsonArrayGetValueByIndex(array, i);
    if (object != nullptr) {
      entry = PLX_JsonObjectGetValueByIndex(object, i);
      CHECK(model.names[i] == PLX_JsonObjectGetStringByIndex(object, i));
      CHECK(PLX_JsonObjectGetValueByName(object, model.names[i].c_str()) == entry);
    }
    CHECK(entry != nullptr);
    check_bodies(entry, model.values[i]);
  }
}

void check_searches(const PLX_JsonValue* root, const ModelValue& model, const std::string& name) {
  const char* wanted = name.c_str();
  const PLX_JsonValue* found = PLX_FindFromJsonValue(root, wanted);
  CHECK(answer(found) == answer(model.find(wanted, false)));
  CHECK(answer(PLX_FindFromJsonValueiCase(root, wanted)) == answer(model.find(wanted, true)));
  CHECK(PLX_FindStringFromJsonValue(root, wanted) == PLX_GetJsonValueString(found));
  CHECK(PLX_FindObjectFromJsonValue(root, wanted) == PLX_GetJsonValueObject(found));
  CHECK(PLX_FindArrayFromJsonValue(root, wanted) == PLX_GetJsonValueArray(found));
  double number = -7;
  const int result = PLX_FindNumberFromJsonValue(root, wanted, &number);
  CHECK(result == (PLX_GetJsonValueString(found) != nullptr ? 0 : -1));
  CHECK(same_number(number, result == 0 ? PLX_GetJsonValueNumber(found) : -7));
}

// A few names of the tree, and others that differ from them by little.
void collect_names(const ModelValue& model, std::vector<std::string>* out) {
  for (size_t i = 0; i < model.values.size() && out->size() < 32; ++i) {
    if (model.kind == '{') {
      const std::string& name = model.names[i];
      out->insert(out->end(), {name, name + "x", name.substr(0, name.size() / 2)});
      out->push_back(name);
      for (char& c : out->back()) c ^= c >= 'A' ? 0x20 : 0;
    }
    collect_names(model.values[i], out);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = expand(data, size);
  const Model model(text);
  PLX_JsonValue* root;
  if (model.leaked() > 0) {
    const plx_test::LeaksExpected leaks;
    root = parse(text, true);
  } else {
    root = parse(text, true);
  }
  CHECK(tree_text(root) == model.tree_text());
  if (root == nullptr) return 0;

  check_bodies(root, model.root());
  std::vector<std::string> names = {""};
  collect_names(model.root(), &names);
  for (const std::string& name : names) check_searches(root, model.root(), name);
  PLX_FreeJsonValue(root);

  for (const std::string& same : {text.substr(0, model.length()), model.root().written()}) {
    PLX_JsonValue* again = parse(same, false);
    CHECK(tree_text(again) == model.tree_text());
    PLX_FreeJsonValue(again);
  }
  return 0;
}
