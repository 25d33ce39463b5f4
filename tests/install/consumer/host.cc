// A C++17 host: includes every header and calls something of each family.
#include <plx/container.h>
#include <plx/securec.h>

#include <cstdio>
#include <cstring>

int main() {
  char text[16];
  if (strcpy_s(text, sizeof text, "plxutility") != EOK) return 1;
  char* copy = PLX_strdup(text);
  if (copy == nullptr || std::strcmp(copy, "plxutility") != 0) return 2;
  PLX_free(copy);
  std::printf("c++ %s\n", PLX_VERSION);
  return 0;
}
