// Line feeds as "_", which keeps a Base64 text on one line of a file.
#ifndef PLX_SRC_CIPHER_LINE_MARKS_H
#define PLX_SRC_CIPHER_LINE_MARKS_H

namespace plx::cipher {

// Contracts of convertEOLToUnderscode and convertUnderscodeToEOL in plx/key_store.h.
void mark_line_feeds(char* text, int len);
void restore_line_feeds(char* text, int len);

}  // namespace plx::cipher

#endif
