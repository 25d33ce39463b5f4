// A sorted list of strings in StringArray, whose fields are read directly.
#include <plx/container.h>
#include <stdio.h>

int main() {
  StringArray names;
  constexpr const char* kNames[] = {"Charlie", "alpha", "Delta", "Bravo"};
  // Up to 16 entries; the growth beyond loses what is held, so a longer list is a PLX_array.
  for (const char* name : kNames) {
    if (names.push_back(name) == 0) return 1;
  }
  names.setEntry(1, "Alpha");
  names.erase(2);
  names.sort(StringArray::cmpAscendingAlpha);
  for (int i = 0; i < names.size; ++i) printf("%s\n", names.entries[i]);
  printf("%d of %zu names kept\n", names.size, sizeof kNames / sizeof *kNames);
  return 0;
}
