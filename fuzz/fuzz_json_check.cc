// The walk by which plxutil explains a refused JSON text gives the library's verdict on every text,
// and points into the text.
#include <plx/json.h>
#include <stdint.h>
#include <string.h>

#include <string>

#include "json/walk.h"
#include "support/leaks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const plx_test::LeaksExpected an_element_too_many_is_lost;
  PLX_JsonValue* tree = PLX_ParseJsonString(text.c_str());
  const bool taken = tree != nullptr;
  PLX_FreeJsonValue(tree);
  const plx::tool::JsonRefusal refusal = plx::tool::walk_json(text.c_str());
  if (refusal.refused == taken) __builtin_trap();
  if (refusal.refused && (refusal.rule.empty() || refusal.byte > strlen(text.c_str()))) {
    __builtin_trap();
  }
  return 0;
}
