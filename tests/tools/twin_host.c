/* A host that provokes refusals. It prints every result, so that a run under the debugging twin can
 * be compared with one without it. */
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/securec.h>
#include <stdio.h>
#include <string.h>

static void show(const char* what, long result, const char* bytes, size_t size) {
  size_t i;
  printf("%s %ld", what, result);
  for (i = 0; i < size; ++i) printf(" %02x", (unsigned)(unsigned char)bytes[i]);
  printf("\n");
}

static void provoke(void) {
  char room[16] = "text";
  unsigned char bytes[8];
  show("memcpy_s", memcpy_s(room, sizeof room, "0123456789", 20), room, sizeof room);
  show("memset_s", memset_s(NULL, 4, 0, 4), room, 0);
  show("strcpy_s", strcpy_s(room, 4, "too long"), room, 4);
  show("strcat_s", strcat_s(room, 0, "x"), room, 4);
  show("sprintf_s", sprintf_s(room, sizeof room, "%s", "seventeen letters"), room, sizeof room);
  show("sscanf_s", sscanf_s("", "%15s", room, (unsigned)sizeof room), room, 1);
  show("PLX_malloc", PLX_malloc(0) == NULL, room, 0);
  show("PLX_ParseJsonString", PLX_ParseJsonString("[1,") == NULL, room, 0);
  show("PLX_b64_decode", (long)PLX_b64_decode("Zm9v!", 5, bytes), room, 0);
}

/* What succeeds, with capacities that are larger than what is used. */
static void succeed(void) {
  char room[16] = "................";
  show("memcpy_s", memcpy_s(room, sizeof room, "abc", 4), room, sizeof room);
  show("strcpy_s", strcpy_s(room, sizeof room, "abcd"), room, sizeof room);
  show("sprintf_s", sprintf_s(room, sizeof room, "%d", 42), room, sizeof room);
  show("PLX_md5_encoder_buf", PLX_md5_encoder_buf("abc", 3, room, 6), room, sizeof room);
}

int main(int argc, char** argv) {
  if (argc > 1 && strcmp(argv[1], "provoke") == 0) {
    provoke();
  } else {
    succeed();
  }
  return 0;
}
