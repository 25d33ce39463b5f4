/* Calls that a compiler can see to be wrong, and some that it must not complain of. Compiled as C99
 * and as C++17 by gcc and by clang; caller_checks.py holds the warnings against the remarks:
 *   WARNS        both compilers warn at this line
 *   WARNS clang  clang alone does, or gcc alone
 *   WARNS typed  both do, but not clang in C, where the function has an assembler label
 * Every other line stays quiet, and all do with PLX_NO_CALLER_CHECKS. */
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/key_store.h>
#include <plx/securec.h>

char g_text[8];
wchar_t g_wide[8];

void copy(const char* src, const wchar_t* wide_src) {
  memset_s(g_text, 9, 0, 1);                     /* WARNS */
  memcpy_s(g_text, 16, src, 1);                  /* WARNS */
  memcpy_s(g_text, sizeof g_text, "ab", 8);      /* WARNS gcc */
  wmemcpy_s(g_wide, sizeof g_wide, wide_src, 1); /* WARNS */
  strcpy_s(g_text, 9, src);                      /* WARNS */
  strcpy_s(g_text, sizeof g_text, "12345678");   /* WARNS clang */
  strcat_s(g_text, 9, src);                      /* WARNS */
  strcat_s(g_text, sizeof g_text, "12345678");   /* WARNS clang */
  wcscpy_s(g_wide, 9, wide_src);                 /* WARNS */
  wcscpy_s(g_wide, 8, L"12345678");              /* WARNS clang */
}

void quiet_copies(const char* src, const wchar_t* wide_src, size_t size) {
  memset_s(g_text, sizeof g_text, 0, sizeof g_text);
  memset_s(NULL, 0, 0, 0);
  memcpy_s(g_text, sizeof g_text, "ab", 3);
  memcpy_s(g_text, size, src, size);
  memcpy_s(NULL, 8, src, 8); /* WARNS gcc */ /* the false alarm that caller_checks.h tells of */
  wmemcpy_s(g_wide, 8, wide_src, 8);
  strcpy_s(g_text, sizeof g_text, "1234567");
  strcpy_s(g_text, sizeof g_text, src);
  strcpy_s(NULL, size, NULL);
  strncpy_s(g_text, sizeof g_text, "12345678", 4);
  wcscpy_s(g_wide, 8, L"1234567");
}

void allocate(size_t size) {
  PLX_malloc(size);   /* WARNS */
  PLX_strdup(g_text); /* WARNS */
  PLX_free(PLX_malloc(size));
}

void format(const char* text, long number) {
  sprintf_s(g_text, sizeof g_text, "%d", text);        /* WARNS */
  snprintf_s(g_text, sizeof g_text, 7, "%s %s", text); /* WARNS */
  sprintf_s(g_text, 16, "%s", text);                   /* WARNS */
  sprintf_s(g_text, sizeof g_text, "%ld %s", number, text);
  swprintf_s(g_wide, 9, L"%d", 1); /* WARNS */
  swprintf_s(g_wide, 8, L"%d", 1);
}

void formats_beyond_the_compiler(long long number) {
  sprintf_s(g_text, sizeof g_text, "%I64d", number); /* WARNS */
  sprintf_s(g_text, sizeof g_text, "%5-d", 1);       /* WARNS */
}

void refusals(const unsigned char* bytes, PLX_array* array, tagAes* aes) {
  unsigned char digest[32];
  PLX_b64_encode(bytes, 3, g_text, sizeof g_text);               /* WARNS */
  if (PLX_b64_encode(bytes, 3, g_text, 9) == 0) return;          /* WARNS */
  if (PLX_sha256_encoder_buf(bytes, 3, g_text, 65) != 0) return; /* WARNS */
  sha256_get(digest, digest, 33);                                /* WARNS */
  PLX_array_append(array, g_text);                               /* WARNS */
  PLX_ParseJsonString("{}");                                     /* WARNS */
  PLX_AesEncryByMode(aes, g_text, sizeof g_text);                /* WARNS */
  if (PLX_AesEncryByMode(aes, g_text, 16) < 1) return;           /* WARNS typed */
  if (DeriveInitKeyByIndex(0, digest, sizeof digest) == 0) getInitVector(digest, 33); /* WARNS */
  if (PLX_AesEncryByMode(aes, g_text, sizeof g_text) < 1) return;
  sha256_get(digest, bytes, 1000000);
}
