/* Seals a text under a key of the caller's: AES-256 in CBC mode with a fresh random vector, as
 * Base64. A seal hides; it does not prove that nobody changed it. Add an HMAC where that matters.
 */
#include <plx/cipher.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  const unsigned char key[32] = "a key of 32 bytes for an example";
  const char* secret = "the parental code is 4711";
  char sealed[128];
  char opened[64];

  const int sealed_size = PLX_aesCbcEncryptByKey((const unsigned char*)secret, (int)strlen(secret),
                                                 sealed, sizeof sealed, key, AES_CBC_256);
  if (sealed_size < 0) return 1;
  /* The result is rounded up: the text itself ends at its terminator. */
  const int length =
      PLX_aesCbcDecryptByKey(sealed, (int)strlen(sealed), opened, sizeof opened, key, AES_CBC_256);
  if (length < 0) return 1;
  printf("opened: %s (%d characters)\n", opened, length);
  return strcmp(opened, secret) == 0 ? 0 : 1;
}
