/* Prints a file's SHA-256, its HMAC under a key, and the HMAC as Base64url: what a server and a box
 * compare to see that they hold the same file. */
#include <plx/digest.h>
#include <stdio.h>
#include <string.h>

static int print_digests(const char* path, const char* key) {
  char hex[65];
  if (PLX_sha256_encoder_file(path, hex, sizeof hex) != 0) return -1;
  printf("sha256     %s\n", hex);

  FILE* file = fopen(path, "rb");
  if (file == NULL) return -1;
  HmacSha256Ctx hmac;
  hmac_sha256_initialize(&hmac, (const unsigned char*)key, (int)strlen(key));
  unsigned char piece[256];
  size_t got;
  while ((got = fread(piece, 1, sizeof piece, file)) > 0) {
    hmac_sha256_update(&hmac, piece, (unsigned int)got);
  }
  fclose(file);
  hmac_sha256_finalize(&hmac, NULL, 0);

  char text[44];
  if (PLX_base64UrlEncoder(text, sizeof text, hmac.digest, sizeof hmac.digest) != 0) return -1;
  printf("hmac       %s\n", text);
  return 0;
}

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "digest_file.txt";
  if (argc < 2) { /* without a file it makes one of its own */
    FILE* file = fopen(path, "wb");
    if (file == NULL || fputs("abc", file) < 0 || fclose(file) != 0) return 1;
  }
  const int result = print_digests(path, "a key for the example");
  if (argc < 2) remove(path);
  return result == 0 ? 0 : 1;
}
