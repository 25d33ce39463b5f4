// The walk that explains refusals: its verdict is the library's, and it points at the right place.
#include "json/walk.h"

#include <gtest/gtest.h>
#include <plx/json.h>

#include <string>

#include "support/leaks.h"

namespace plx::tool {
namespace {

bool library_takes(const std::string& text) {
  const plx_test::LeaksExpected an_element_too_many_is_lost;
  PLX_JsonValue* tree = PLX_ParseJsonString(text.c_str());
  PLX_FreeJsonValue(tree);
  return tree != nullptr;
}

std::string nested(int levels, char open, char close) {
  return std::string(levels, open) + std::string(levels, close);
}

std::string array_of(int count) {
  std::string text = "[";
  for (int i = 0; i < count; ++i) text += i == 0 ? "1" : ",1";
  return text + "]";
}

struct Refusal {
  const char* text;
  size_t byte, line, column;
  const char* rule;  // a part of it
};

const Refusal kRefusals[] = {
    {"", 0, 1, 1, "empty"},
    {" []", 0, 1, 1, "begin with"},
    {"[1,]", 3, 1, 4, "no value or name"},
    {"[1", 2, 1, 3, "comma or ]"},
    {"[,1]", 1, 1, 2, "value is missing"},
    {"{\"a\" 1}", 5, 1, 6, "colon"},
    {"{\"a\":1,}", 7, 1, 8, "no value or name"},
    {"{\n \"a\": 'x' ,\n \"a\": 'y' }", 15, 3, 2, "same name"},
    {"{\"n\": 1\n}", 7, 1, 8, "control byte"},
    {"[\"a\nb\"]", 3, 1, 4, "control byte"},
    {"[\"\\x\"]", 2, 1, 3, "escape"},
    {"[\"\\u12g4\"]", 2, 1, 3, "hexadecimal"},
    {"[\"abc]", 1, 1, 2, "closing quote"},
    {"[\"abc\"", 5, 1, 6, "ends with the closing quote"},
    {"[1 2]", 3, 1, 4, "comma or ]"},
    {"{'a':1 'b':2}", 7, 1, 8, "comma or }"},
};

TEST(JsonWalk, NamesByteLineAndRule) {
  for (const Refusal& row : kRefusals) {
    SCOPED_TRACE(row.text);
    EXPECT_FALSE(library_takes(row.text));
    const JsonRefusal refusal = walk_json(row.text);
    ASSERT_TRUE(refusal.refused);
    EXPECT_EQ(refusal.byte, row.byte);
    EXPECT_EQ(refusal.line, row.line);
    EXPECT_EQ(refusal.column, row.column);
    EXPECT_NE(refusal.rule.find(row.rule), std::string::npos) << refusal.rule;
  }
}

// What is longer than the inputs of fuzz_json_check, which compares all verdicts.
TEST(JsonWalk, VerdictIsTheLibrarysAtTheLimits) {
  for (const std::string& text : {nested(16, '[', ']'), nested(17, '[', ']'), nested(16, '{', '}'),
                                  array_of(480), array_of(481)}) {
    EXPECT_EQ(walk_json(text.c_str()).refused, !library_takes(text)) << text;
  }
}

}  // namespace
}  // namespace plx::tool
