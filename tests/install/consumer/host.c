/* A C99 host: includes every header that C can and calls something of each family. */
#include <plx/container.h>
#include <plx/securec.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  char text[16];
  char* copy;
  if (strcpy_s(text, sizeof text, "plxutility") != EOK) return 1;
  copy = PLX_strdup(text);
  if (copy == NULL || strcmp(copy, "plxutility") != 0) return 2;
  PLX_free(copy);
  printf("c %s\n", PLX_VERSION);
  return 0;
}
