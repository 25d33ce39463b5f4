#include <plx/securec.h>

namespace plx::securec {
namespace {

template <typename Char>
bool is_delimiter(Char c, const Char* delimiters) {
  for (; *delimiters != 0; ++delimiters) {
    if (*delimiters == c) return true;
  }
  return false;
}

template <typename Char>
Char* next_token(Char* str, const Char* delimiters, Char** context) {
  if (delimiters == nullptr || context == nullptr) return nullptr;
  Char* p = str != nullptr ? str : *context;
  if (p == nullptr) return nullptr;

  while (is_delimiter(*p, delimiters)) ++p;
  if (*p == 0) {
    *context = p;
    return nullptr;
  }
  Char* token = p;
  do {
    ++p;
  } while (*p != 0 && !is_delimiter(*p, delimiters));
  // At the end the context stays on the terminator, so that the next call finds nothing.
  if (*p != 0) *p++ = 0;
  *context = p;
  return token;
}

}  // namespace
}  // namespace plx::securec

extern "C" {

char* strtok_s(char* str, const char* delim, char** context) {
  return plx::securec::next_token(str, delim, context);
}

wchar_t* wcstok_s(wchar_t* str, const wchar_t* delim, wchar_t** context) {
  return plx::securec::next_token(str, delim, context);
}

}  // extern "C"
