/* Reads settings from a JSON text. Every scalar is text in the tree; the caller converts on demand.
 */
#include <plx/json.h>
#include <stdio.h>

int main(void) {
  const char* text =
      "{\"player\": {\"volume\": 35, \"muted\": false, \"languages\": [\"de\", \"en\"]},"
      " \"server\": \"https://tv.example\"}";
  PLX_JsonValue* tree = PLX_ParseJsonString(text);
  if (tree == NULL) return 1;

  /* A find walks the whole tree; the first member of that name wins, however deep it stands. */
  double volume = 0;
  if (PLX_FindNumberFromJsonValue(tree, "volume", &volume) == 0) printf("volume %.0f\n", volume);
  printf("server %s\n", PLX_FindStringFromJsonValue(tree, "server"));
  printf("muted %d\n", PLX_GetJsonValueBoolean(PLX_FindFromJsonValue(tree, "muted")));

  const PLX_JsonArray* languages = PLX_FindArrayFromJsonValue(tree, "languages");
  for (int i = 0; i < PLX_JsonGetArrayCount(languages); ++i) {
    printf("language %s\n", PLX_GetJsonValueString(PLX_JsonArrayGetValueByIndex(languages, i)));
  }
  PLX_FreeJsonValue(tree);
  return 0;
}
