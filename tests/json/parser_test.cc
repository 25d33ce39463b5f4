#include <gtest/gtest.h>
#include <malloc.h>
#include <plx/json.h>
#include <pthread.h>

#include <fstream>
#include <string>
#include <vector>

#include "bench/sample_documents.h"
#include "fuzz/json_model.h"
#include "json/tree_text.h"
#include "support/allocation.h"
#include "support/guarded.h"
#include "support/leaks.h"

namespace {

using plx_test::AllocationFault;
using plx_test::container;
using plx_test::Guarded;
using plx_test::Model;
using plx_test::tree_text;

struct Outcome {
  std::string tree;
  long blocks;  // allocated and not freed by the parse
  long leaked;  // still there when the tree is freed
};

// Parses `text` where it ends at an inaccessible page.
Outcome parse(const std::string& text) {
  Guarded<char> input(text.c_str(), text.size() + 1);
  PLX_JsonValue* root;
  Outcome outcome;
  {
    const plx_test::LeaksExpected leaks;
    const AllocationFault count;
    root = PLX_ParseJsonString(input.data());
    outcome.blocks = count.live_blocks();
  }
  outcome.tree = tree_text(root);
  const AllocationFault count;
  PLX_FreeJsonValue(root);
  outcome.leaked = outcome.blocks + count.live_blocks();
  return outcome;
}

void expect_as_modelled(const std::string& text) {
  const Model model(text);
  const Outcome outcome = parse(text);
  ASSERT_EQ(model.tree_text(), outcome.tree) << text;
  ASSERT_EQ(model.accepted() ? model.root().blocks() : model.leaked(), outcome.blocks) << text;
  ASSERT_EQ(model.leaked(), outcome.leaked) << text;
}

struct Document {
  std::string name, text, tree;
};

// The documents of documents.txt, which tells how it is to be read.
std::vector<Document> documents() {
  std::vector<Document> all;
  std::ifstream file(PLX_JSON_DOCUMENTS);
  std::string name;
  for (std::string line; std::getline(file, line);) {
    std::string rest = line.size() > 2 ? line.substr(2) : "";
    if (line[0] == '#') name = rest;
    if (line[0] == '<') {
      for (size_t at; (at = rest.find('<')) != std::string::npos;) {
        rest.replace(at, 4, 1, static_cast<char>(std::stoi(rest.substr(at + 1, 2), nullptr, 16)));
      }
      all.push_back({name, rest, ""});
    }
    if (line[0] == '>') all.back().tree = rest;
  }
  EXPECT_GT(all.size(), 80u);
  return all;
}

TEST(JsonParser, Documents) {
  for (const Document& document : documents()) {
    SCOPED_TRACE(document.name);
    EXPECT_EQ(document.tree, parse(document.text).tree);
    EXPECT_EQ(document.tree, Model(document.text).tree_text()) << "the model is wrong";
  }
  EXPECT_EQ(nullptr, PLX_ParseJsonString(nullptr));
  PLX_FreeJsonValue(nullptr);
}

// What ends or interrupts a text, at every place of a vector and up to the end of a page.
TEST(JsonParser, LongTextsEndAnywhere) {
  for (size_t length = 0; length <= 80; ++length) {
    for (const char* special : {"", "\\n", "\x01", "\x1f", " ", "!", "\x7f", "\x80", "\xff", "'"}) {
      const std::string text = "{\"k\":\"" + std::string(length, 'x') + special;
      expect_as_modelled(text + std::string(length % 37, 'y') + "\"}");
      expect_as_modelled(text);
    }
  }
}

// Nothing behind the root is read, not even a terminator.
TEST(JsonParser, StopsAtTheClosingBracket) {
  for (const std::string text : {"[]", "{}", "{a:[1,{}]}"}) {
    Guarded<char> input(text.c_str(), text.size());
    PLX_JsonValue* root = PLX_ParseJsonString(input.data());
    EXPECT_NE(nullptr, root) << text;
    PLX_FreeJsonValue(root);
  }
}

TEST(JsonParser, EntriesOfOneContainer) {
  for (bool is_object : {false, true}) {
    for (size_t count : {7, 8, 9, 15, 16, 240, 479, 480, 481, 2000}) {
      std::string text = container(count, "\"x\"", is_object);
      expect_as_modelled(text);
      EXPECT_EQ(count <= 480, parse(text).tree != "-");
      text.pop_back();  // now a string ends the input: it is no entry any more, not even a refused
                        // one
      expect_as_modelled(text);
    }
  }
  std::string nested = "[]";  // whose entries are all kept until the last one is read
  for (int level = 0; level < 8; ++level) {
    std::string outer = container(400, "1", level % 2 != 0);
    nested = outer.insert(outer.size() - 1, (level % 2 != 0 ? ",last:" : ",") + nested);
  }
  expect_as_modelled(nested);
}

// Of the element that an array refuses everything is lost but the record; nothing of a member.
TEST(JsonParser, RefusedEntries) {
  const struct {
    const char* entry;
    long lost;
  } kRows[] = {{"1", 1}, {"[]", 1}, {"{}", 1}, {"[1]", 4}, {"{a:1}", 6}, {"{a:[1,[]]}", 11}};
  for (const auto& row : kRows) {
    for (bool is_object : {false, true}) {
      std::string text = container(480, "1", is_object);
      text.insert(text.size() - 1, (is_object ? ",last:" : ",") + std::string(row.entry));
      EXPECT_EQ(is_object ? 0 : row.lost, parse("[[" + text + "]]").leaked) << row.entry;
      EXPECT_EQ(is_object ? 0 : row.lost, parse("{a:1,b:" + text + "}").leaked) << row.entry;
    }
  }
}

// Whichever two of many names are equal, the second is seen.
TEST(JsonParser, DuplicateAmongManyNames) {
  for (size_t count : {2, 8, 9, 10, 100, 480}) {
    for (size_t second = 1; second < count; second += 1 + count / 50) {
      for (size_t first : {size_t{0}, second / 2, second - 1}) {
        std::string text = container(count, "1", true);
        const std::string name = "\"k" + std::to_string(second) + '"';
        text.replace(text.find(name), name.size(), "k" + std::to_string(first));
        ASSERT_EQ("-", parse("[0," + text + "]").tree)
            << count << ": " << first << " and " << second;
      }
    }
  }
}

// A failed allocation fails the parse and loses nothing, but the text of the element that made an
// array grow.
TEST(JsonParser, ShortMemory) {
  const plx_test::LeaksExpected leaks;
  std::vector<Document> all = documents();
  for (bool is_object : {false, true}) {
    std::string text = container(400, "x", true);
    text.insert(text.size() - 1, ",in:" + container(200, "x", is_object));
    all.push_back({is_object ? "object that grows" : "array that grows", text, ""});
  }
  for (const Document& document : all) {
    for (bool all_later : {false, true}) {
      const bool accepted = Model(document.text).accepted();
      long lost = 0;
      for (size_t n = 1, hit = 1; hit != 0; ++n) {
        const AllocationFault fault(n, all_later);
        PLX_JsonValue* root = PLX_ParseJsonString(document.text.c_str());
        hit = fault.hit();
        ASSERT_EQ(accepted && !hit, root != nullptr) << document.name;
        PLX_FreeJsonValue(root);
        lost += fault.live_blocks();
      }
      EXPECT_EQ(document.name == "array that grows" ? 1 : 0, lost) << document.name;
    }
  }
}

TEST(JsonParser, ReleasesTheLastEntriesFirst) {
  PLX_JsonValue* root = PLX_ParseJsonString("{a:[x,y],b:z}");
  ASSERT_NE(nullptr, root);
  auto* object = PLX_GetJsonValueObject(root);
  auto* array = PLX_GetJsonValueArray(object->values[0]);
  const std::vector<void*> order = {object->names[1],
                                    object->values[1]->data,
                                    object->values[1],
                                    object->names[0],
                                    array->items[1]->data,
                                    array->items[1],
                                    array->items[0]->data,
                                    array->items[0],
                                    array->items,
                                    array,
                                    object->values[0],
                                    object->names,
                                    object->values,
                                    object,
                                    root};
  std::vector<void*> freed(order.size());
  {
    AllocationFault watch;
    watch.record_frees(freed.data(), freed.size());
    PLX_FreeJsonValue(root);
  }
  EXPECT_EQ(order, freed);
}

// Texts and slot arrays have no slack, whatever the input took.
TEST(JsonParser, BlocksOfExactSize) {
  constexpr size_t kRounding = 64;  // what an allocator may add
  std::string text = "{\"\":" + container(200, "1", false) + "}";
  for (int i = 0; i < 1000; ++i) text.insert(2, "\\u0061");
  PLX_JsonValue* root = PLX_ParseJsonString(text.c_str());
  ASSERT_NE(nullptr, root);
  const PLX_JsonObject* object = PLX_GetJsonValueObject(root);
  EXPECT_LT(malloc_usable_size(object->names[0]), 1001 + kRounding);
  EXPECT_LT(malloc_usable_size(object->values), sizeof(void*) + kRounding);
  const PLX_JsonArray* array = PLX_GetJsonValueArray(object->values[0]);
  EXPECT_LT(malloc_usable_size(array->items), 200 * sizeof(void*) + kRounding);
  PLX_FreeJsonValue(root);
}

TEST(JsonParser, SixteenLevelsOnASmallStack) {
  std::string text = "1";
  for (int level = 0; level < 15; ++level) {
    text = container(100, "1", true).insert(1, "\"in\":" + text + ",");
  }
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 64 * 1024));
  const auto body = [](void* argument) -> void* {
    PLX_JsonValue* root = PLX_ParseJsonString(static_cast<const char*>(argument));
    const bool done = root != nullptr && PLX_FindFromJsonValueiCase(root, "absent") == nullptr;
    PLX_FreeJsonValue(root);
    return done ? argument : nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(0, pthread_create(&thread, &attributes, body, &text[0]));
  void* result = nullptr;
  pthread_join(thread, &result);
  EXPECT_EQ(&text[0], result);
  pthread_attr_destroy(&attributes);
}

}  // namespace
