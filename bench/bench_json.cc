// Parsing and freeing against cJSON; finding against the loop that a caller would write.
#include <cjson/cJSON.h>
#include <plx/json.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "bench/support.h"
#include "sample_documents.h"

namespace {

void compare_parse(const std::string& row, const std::string& text) {
  const auto ours = [text] { PLX_FreeJsonValue(PLX_ParseJsonString(text.c_str())); };
  const auto peer = [text] { cJSON_Delete(cJSON_Parse(text.c_str())); };
  PLX_JsonValue* tree = PLX_ParseJsonString(text.c_str());
  if (tree == nullptr) abort();
  PLX_FreeJsonValue(tree);
  plx_bench::compare(row, ours, peer, text.size());
}

// The last of `count` members, in a tree that lives as long as the program.
void compare_find(const std::string& row, size_t count) {
  PLX_JsonValue* tree = PLX_ParseJsonString(plx_test::sample_object(count).c_str());
  const PLX_JsonObject* object = PLX_GetJsonValueObject(tree);
  const std::string name = "member_" + std::to_string(count - 1);
  const auto ours = [=] { benchmark::DoNotOptimize(PLX_FindFromJsonValue(tree, name.c_str())); };
  const auto direct = [=] {
    benchmark::DoNotOptimize(PLX_JsonObjectGetValueByName(object, name.c_str()));
  };
  const auto peer = [=] {
    const PLX_JsonValue* found = nullptr;
    for (int i = 0; i < object->count; ++i) {
      if (strcmp(object->names[i], name.c_str()) == 0) {
        found = object->values[i];
        break;
      }
    }
    benchmark::DoNotOptimize(found);
  };
  plx_bench::compare("json-find/" + row, ours, peer);
  plx_bench::add("json-find/" + row, "plx:by-name", direct);
}

// How the cost grows with members, nodes and depth, up to what the dialect allows.
void compare_growth() {
  for (size_t count : {1, 4, 8, 16, 64, 128, 240, 480}) {
    compare_parse("json-members/" + std::to_string(count), plx_test::sample_object(count));
  }
  for (size_t rows : {1, 4, 16, 64}) {
    compare_parse("json-objects/" + std::to_string(rows * 480),
                  plx_test::sample_small_objects(rows));
  }
  std::string nested = "1";
  for (size_t depth = 1; depth < 16; ++depth) {
    nested = depth % 2 == 0 ? '[' + nested + ']' : "{\"in\":" + nested + '}';
    compare_parse("json-depth/" + std::to_string(depth), nested);
  }
}

}  // namespace

void plx_bench::register_benchmarks() {
  compare_parse("json-parse/request-200", plx_test::sample_request());
  compare_parse("json-parse/object-400", plx_test::sample_object(400));
  compare_parse("json-parse/configuration-19K", plx_test::sample_configuration());
  compare_parse("json-parse/small-objects-1M", plx_test::sample_small_objects(38));
  compare_find("last-of-400", 400);
  for (size_t count : {10, 50, 200, 480}) compare_find(std::to_string(count), count);
  compare_growth();
}
