#include <gtest/gtest.h>
#include <plx/json.h>

namespace {

TEST(JsonQuery, FindsInTheOrderOfTheText) {
  PLX_JsonValue* root = PLX_ParseJsonString("{\"a\":{\"b\":1},\"b\":2}");
  ASSERT_NE(nullptr, root);
  EXPECT_STREQ("1", PLX_FindStringFromJsonValue(root, "b"));
  EXPECT_EQ(nullptr, PLX_FindStringFromJsonValue(root, "a"));
  PLX_FreeJsonValue(root);
}

}  // namespace
