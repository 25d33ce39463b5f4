/* Builds texts from parts that a stranger chose, and takes one apart again. A part that does not
 * fit is refused whole: no text is ever cut in silence. */
#include <plx/securec.h>
#include <stdio.h>
#include <string.h>

static int store_label(char* label, size_t size, const char* channel, int number) {
  if (strcpy_s(label, size, "channel ") != EOK || strcat_s(label, size, channel) != EOK) return -1;
  const size_t used = strlen(label);
  return snprintf_s(label + used, size - used, 4, "/%d", number);
}

int main(void) {
  char label[20];
  char name[8];
  int number = 0;

  if (store_label(label, sizeof label, "news", 24) < 0) return 1;
  printf("%s\n", label);

  /* Every text destination of a scan is followed by its size, as an unsigned int. */
  if (sscanf_s(label, "channel %[a-z]/%d", name, (unsigned)sizeof name, &number) != 2) return 1;
  printf("name %s, number %d\n", name, number);

  if (store_label(label, sizeof label, "a-name-far-too-long", 1) >= 0) return 1;
  printf("too long: the label is \"%s\"\n", label);
  return 0;
}
