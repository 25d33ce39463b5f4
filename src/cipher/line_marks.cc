#include "cipher/line_marks.h"

#include <plx/key_store.h>

#include <algorithm>

namespace plx::cipher {
namespace {

void replace(char* text, int len, char old_char, char new_char) {
  if (text == nullptr || len <= 0) return;
  std::replace(text, text + len, old_char, new_char);
}

}  // namespace

void mark_line_feeds(char* text, int len) { replace(text, len, '\n', '_'); }
void restore_line_feeds(char* text, int len) { replace(text, len, '_', '\n'); }

}  // namespace plx::cipher

void convertEOLToUnderscode(char* s, int len) { plx::cipher::mark_line_feeds(s, len); }
void convertUnderscodeToEOL(char* s, int len) { plx::cipher::restore_line_feeds(s, len); }
