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

/* A member of a class as C sees it. */
int derive_key(const char* pass, int passLen, const unsigned char* salt, int saltLen,
               int iterations, int keyLen,
               unsigned char* out) __asm__("_ZN4TRUX6CIPHER7CCipher9deriveKeyEPKciPKhiiiPh");

static void provoke_containers(void) {
  PLX_array* array = PLX_array_create(NULL);
  PLX_hashtable* table = PLX_hashtable_create(4, PLX_stringHashValue, PLX_stringHashCompare, NULL);
  PLX_bufList* list = PLX_bufList_init(1, 8);
  char element[] = "element";
  void* buffer = NULL;
  int len = 0;
  show("PLX_array_append", PLX_array_append(NULL, element), element, 0);
  show("PLX_array_insert", PLX_array_insert(NULL, element, 1), element, 0);
  show("PLX_array_modify", PLX_array_modify(array, -1, element), element, 0);
  show("PLX_array_preAppend", PLX_array_preAppend(NULL, 5), element, 0);
  show("PLX_array_move", PLX_array_move(NULL, 0, 3), element, 0);
  show("PLX_array_getIndex", PLX_array_getIndex(array, 9) == NULL, element, 0); /* only a miss */
  show("PLX_hashtable_create", PLX_hashtable_create(7, NULL, NULL, NULL) == NULL, element, 0);
  show("PLX_hashtable_insert", PLX_hashtable_insert(NULL, element, element), element, 0);
  show("PLX_hashtable_find", PLX_hashtable_find(table, element) == NULL, element, 0); /* a miss */
  show("PLX_bufList_init", PLX_bufList_init(0, 8) == NULL, element, 0);
  show("PLX_bufList_push_back", PLX_bufList_push_back(list, element, 8), element, 0);
  show("PLX_bufList_getUseableBuf", PLX_bufList_getUseableBuf(list, &buffer), element, 0);
  show("PLX_bufList_getUseableBuf", PLX_bufList_getUseableBuf(list, &buffer), element, 0);
  show("PLX_bufList_push_back", PLX_bufList_push_back(list, buffer, 9), element, 0);
  show("PLX_bufList_pop_front", PLX_bufList_pop_front(list, &buffer, &len), element, 0); /* empty */
  show("PLX_bufList_pop_front", PLX_bufList_pop_front(list, NULL, &len), element, 0);
  PLX_bufList_realse(list);
  PLX_hashtable_destroy(table);
  PLX_array_destroy(array);
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
  show("deriveKey", derive_key("a secret", 8, bytes, 8, 1, 0, bytes), room, 0);
  provoke_containers();
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
