/* A C99 host: includes every header that C can and calls something of each family, the functions
 * with a typed symbol among them. */
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  char text[16], hex[65], out[64] = "";
  int number = 0;
  char* copy;
  PLX_JsonValue* tree;
  if (strcpy_s(text, sizeof text, " plxutility") != EOK) return 1;
  PLX_trim(text + 1);
  copy = PLX_strdup(text + 1);
  if (copy == NULL || strcmp(copy, "plxutility") != 0) return 2;
  PLX_free(copy);
  if (sscanf_s("volume 35", "%*s %d", &number) != 1 || number != 35) return 3;
  if (PLX_sha256_encoder_buf((const unsigned char*)"abc", 3, hex, sizeof hex) != 0) return 4;
  if (strncmp(hex, "ba7816bf", 8) != 0) return 5;
  tree = PLX_ParseJsonString("{\"a\": 1}");
  if (tree == NULL || strcmp(PLX_FindStringFromJsonValue(tree, "a"), "1") != 0) return 6;
  PLX_FreeJsonValue(tree);
  if (PLX_AesEncry("{\"cipherSize\": 128, \"paddingMode\": \"PKCS5Padding\","
                   " \"cipherPrefix\": \"twelve-chars\", \"plainText\": \"hello\"}",
                   out) != 1 ||
      strlen(out) != 32) {
    return 7;
  }
  if (strcmp(g_stKeyMap[1].pszKeyName, "aes_prefix_key") != 0) return 8;
  printf("c %s\n", PLX_VERSION);
  return 0;
}
