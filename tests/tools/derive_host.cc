// A host that does nothing but derive keys: derive_host COUNT.
#include <plx/cipher.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  const long count = argc == 2 ? strtol(argv[1], nullptr, 10) : 0;
  const char factor[16] = {};
  const unsigned char vector[16] = {};
  unsigned char init_key[16];
  for (long i = 0; i < count; ++i) {
    if (!TRUX::CIPHER::CCipher::deriveKey(factor, 16, vector, 16, 10000, 16, init_key)) return 1;
  }
  return count > 0 ? 0 : 2;
}
