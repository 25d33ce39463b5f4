/* An index over the hash table: for each word of a text, the lines it stands on. The table frees
 * its values and never its keys, so the key is a part of the value. */
#include <plx/container.h>
#include <plx/securec.h>
#include <stdio.h>

typedef struct Word {
  char text[16];
  PLX_array* lines;
} Word;

static void free_word(void* value) {
  Word* word = value;
  PLX_array_destroyWithoutClean(word->lines); /* the line numbers are not heap blocks */
  PLX_free(word);
}

static Word* add_word(PLX_hashtable* index, const char* text) {
  Word* word = PLX_malloc(sizeof *word);
  if (word == NULL) return NULL;
  word->lines = PLX_array_create(NULL);
  if (word->lines == NULL || strcpy_s(word->text, sizeof word->text, text) != EOK ||
      PLX_hashtable_insert(index, word->text, word) != 0) {
    free_word(word);
    return NULL;
  }
  return word;
}

static int index_line(PLX_hashtable* index, char* line, uintptr_t number) {
  char* context;
  const char* token = strtok_s(line, " ", &context);
  for (; token != NULL; token = strtok_s(NULL, " ", &context)) {
    Word* word = PLX_hashtable_find(index, token);
    if (word == NULL) word = add_word(index, token);
    if (word == NULL || PLX_array_append(word->lines, (void*)number) != 0) return 0;
  }
  return 1;
}

static void print_word(const PLX_hashtable* index, const char* text) {
  const Word* word = PLX_hashtable_find(index, text);
  int i;
  if (word == NULL) {
    printf("%s: not there\n", text);
    return;
  }
  printf("%s: lines", text);
  for (i = 0; i < PLX_array_getCount(word->lines); ++i) {
    printf(" %d", (int)(uintptr_t)PLX_array_getIndex(word->lines, i));
  }
  printf("\n");
}

int main(void) {
  char lines[][24] = {"set the box", "set it well", "then box clever"};
  size_t i;
  PLX_hashtable* index =
      PLX_hashtable_create(61, PLX_stringHashValue, PLX_stringHashCompare, free_word);
  if (index == NULL) return 1;
  for (i = 0; i < sizeof lines / sizeof *lines; ++i) {
    if (!index_line(index, lines[i], i + 1)) return 1;
  }
  print_word(index, "box");
  print_word(index, "set");
  print_word(index, "noon");
  printf("%u words\n", (unsigned)PLX_hashtable_getNodeCount(index));
  PLX_hashtable_destroy(index);
  return 0;
}
