#include <gtest/gtest.h>
#include <limits.h>
#include <plx/json.h>

#include <string>

#include "json/tree_text.h"

namespace {

using plx_test::tree_text;

// A tree that frees itself.
struct Tree {
  explicit Tree(const std::string& text) : root(PLX_ParseJsonString(text.c_str())) {}
  ~Tree() { PLX_FreeJsonValue(root); }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  PLX_JsonValue* const root;
};

// The typed searches see the first match and no other, so all follow from that one.
void expect_typed_searches(const PLX_JsonValue* value, const char* name,
                           const PLX_JsonValue* first) {
  EXPECT_EQ(PLX_GetJsonValueString(first), PLX_FindStringFromJsonValue(value, name));
  EXPECT_EQ(PLX_GetJsonValueObject(first), PLX_FindObjectFromJsonValue(value, name));
  EXPECT_EQ(PLX_GetJsonValueArray(first), PLX_FindArrayFromJsonValue(value, name));
  double number = -7;
  const int result = PLX_FindNumberFromJsonValue(value, name, &number);
  EXPECT_EQ(PLX_GetJsonValueString(first) != nullptr ? 0 : -1, result);
  EXPECT_EQ(result == 0 ? PLX_GetJsonValueNumber(first) : -7, number);
}

TEST(JsonQuery, Search) {
  const struct {
    const char *text, *name, *found, *found_any_case;  // "-" for nothing
  } kRows[] = {
      {"{a:{b:1},b:2}", "b", R"("1")", R"("1")"},
      {"{a:[b,{x:1},[{b:2}]],b:3}", "b", R"("2")", R"("2")"},
      {"{k:{x:1},y:{k:v}}", "k", R"({"x":"1"})", R"({"x":"1"})"},
      {"{Key:1,KEY:2}", "KEY", R"("2")", R"("1")"},
      {"{'[az':1,'{AZ':2,'{Az':3}", "{Az", R"("3")", R"("2")"},
      {"{'@':1,'[':2,'\\u00c9':3}", "`", "-", "-"},
      {"{'[':2}", "{", "-", "-"},
      {"{'\\u00c9':3}", "\xc3\xa9", "-", "-"},
      {"{key:1,'':2}", "", R"("2")", R"("2")"},
      {"[1,{b:5},2,3,{b:6}]", "b", R"("5")", R"("5")"},
      {"{e:{},a_long_name:1}", "a_long_name", R"("1")", R"("1")"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.name << " in " << row.text);
    const Tree tree(row.text);
    const PLX_JsonValue* found = PLX_FindFromJsonValue(tree.root, row.name);
    EXPECT_EQ(row.found, tree_text(found));
    EXPECT_EQ(row.found_any_case, tree_text(PLX_FindFromJsonValueiCase(tree.root, row.name)));
    expect_typed_searches(tree.root, row.name, found);
  }
  const Tree tree("[{a:1}]");
  const PLX_JsonValue object = {PLX_JSON_OBJECT, nullptr}, array = {PLX_JSON_ARRAY, nullptr};
  const PLX_JsonValue* const kNothing[] = {nullptr, PLX_FindFromJsonValue(tree.root, "a"), &object,
                                           &array, tree.root};
  for (const PLX_JsonValue* value : kNothing) {
    const char* name = value == tree.root ? nullptr : "a";
    EXPECT_EQ(nullptr, PLX_FindFromJsonValue(value, name));
    EXPECT_EQ(nullptr, PLX_FindFromJsonValueiCase(value, name));
    expect_typed_searches(value, name, nullptr);
  }
}

// Names that differ in one character, whichever it is, or in their length by one.
TEST(JsonQuery, AlmostTheName) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (size_t length = 1; length <= letters.size(); ++length) {
    const std::string wanted = letters.substr(0, length);
    std::string others = "'" + wanted + "x':1,'" + wanted.substr(1) + "':1";
    if (length > 2) others += ",'" + wanted.substr(0, length - 1) + "':1";
    for (size_t i = 0; i < length; ++i) {
      std::string other = wanted;
      other[i] = '-';
      others += ",'" + other + "':1";
    }
    EXPECT_EQ(nullptr, PLX_FindFromJsonValue(Tree("{" + others + "}").root, wanted.c_str()));
    const Tree tree("{" + others + ",'" + wanted + "':2}");
    EXPECT_EQ(2.0, PLX_GetJsonValueNumber(PLX_FindFromJsonValue(tree.root, wanted.c_str())));
  }
}

TEST(JsonQuery, Conversions) {
  const struct {
    const char* text;  // of an array's one element
    double number;
    int boolean;
  } kRows[] = {
      {"1e3", 1000, -1},   {"-2.5kg", -2.5, -1}, {"' 7'", 7, -1},    {"abc", 0, -1},
      {"''", 0, -1},       {"0x10", 16, -1},     {"fALSE", 0, -1},   {"tRUE", 0, -1},
      {"yes", 0, -1},      {"1", 1, -1},         {"0", 0, -1},       {"[true]", 0, -1},
      {"{true:1}", 0, -1}, {"'true'", 0, 1},     {"' true'", 0, -1},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    const Tree tree(std::string("[") + row.text + " ]");
    const PLX_JsonValue* value = PLX_JsonArrayGetValueByIndex(PLX_GetJsonValueArray(tree.root), 0);
    ASSERT_NE(nullptr, value);
    EXPECT_EQ(row.number, PLX_GetJsonValueNumber(value));
    EXPECT_EQ(row.boolean, PLX_GetJsonValueBoolean(value));
    const void* by_kind[] = {nullptr, PLX_GetJsonValueString(value), PLX_GetJsonValueObject(value),
                             PLX_GetJsonValueArray(value)};
    for (uint32_t kind : {PLX_JSON_STRING, PLX_JSON_OBJECT, PLX_JSON_ARRAY}) {
      EXPECT_EQ(kind == value->type ? value->data : nullptr, by_kind[kind]);
    }
  }
  // Booleans are told by their prefix.
  for (const std::string word : {"false", "False", "FALSE", "true", "True", "TRUE"}) {
    const Tree tree("{all:" + word + ",more:" + word +
                    "hood,less:" + word.substr(0, word.size() - 1) + "}");
    const int expected = word.size() == 4;
    EXPECT_EQ(expected, PLX_GetJsonValueBoolean(PLX_FindFromJsonValue(tree.root, "all"))) << word;
    EXPECT_EQ(expected, PLX_GetJsonValueBoolean(PLX_FindFromJsonValue(tree.root, "more"))) << word;
    EXPECT_EQ(-1, PLX_GetJsonValueBoolean(PLX_FindFromJsonValue(tree.root, "less"))) << word;
  }
  EXPECT_EQ(0.0, PLX_GetJsonValueNumber(nullptr));
  EXPECT_EQ(-1, PLX_GetJsonValueBoolean(nullptr));
}

// fuzz/fuzz_json.cc reaches every entry of its trees by every way.
TEST(JsonQuery, NoBodyAndNoEntry) {
  for (int index : {-1, 0, INT_MIN, INT_MAX}) {
    EXPECT_EQ(nullptr, PLX_JsonObjectGetStringByIndex(nullptr, index));
    EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByIndex(nullptr, index));
  }
  // By name: the object's own members only.
  const Tree tree("{n:{x:1},m:c}");
  const PLX_JsonObject* object = PLX_GetJsonValueObject(tree.root);
  EXPECT_EQ(object->values[1], PLX_JsonObjectGetValueByName(object, "m"));
  for (const char* absent : {"x", "M", "", "nn", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByName(object, absent));
  }
  for (int index : {INT_MIN, INT_MAX}) {
    EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByIndex(object, index));
  }
  const PLX_JsonObject negative = {-1, 0, nullptr, nullptr};
  EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByName(&negative, "m"));
  EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByName(nullptr, "m"));
  EXPECT_EQ(0, PLX_JsonGetObjectCount(nullptr));
  char name[] = "n";
  char* names[] = {name};
  PLX_JsonValue behind = {PLX_JSON_STRING, name};
  PLX_JsonValue* values[] = {&behind, &behind};
  const PLX_JsonObject one = {1, 1, names, values};
  for (const char* absent : {"m", "a_long_name"}) {
    EXPECT_EQ(nullptr, PLX_JsonObjectGetValueByName(&one, absent));
  }

  // Either name of the two shared functions has the one address.
  using Address = void*;
  const volatile Address addresses[] = {reinterpret_cast<Address>(&PLX_JsonGetArrayCount),
                                        reinterpret_cast<Address>(&PLX_JsonGetObjectCount),
                                        reinterpret_cast<Address>(&PLX_JsonArrayGetValueByIndex),
                                        reinterpret_cast<Address>(&PLX_JsonObjectGetStringByIndex)};
  EXPECT_EQ(addresses[0], addresses[1]);
  EXPECT_EQ(addresses[2], addresses[3]);
}

}  // namespace
