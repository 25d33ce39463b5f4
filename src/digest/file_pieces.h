// Whole files in pieces of 1024 bytes, for the digests of files.
#ifndef PLX_SRC_DIGEST_FILE_PIECES_H
#define PLX_SRC_DIGEST_FILE_PIECES_H

#include <stdint.h>
#include <stdio.h>

#include "internal/owned.h"
#include "internal/wipe.h"

namespace plx::digest {

// Opens the file, or says on standard error that it cannot be opened and returns null.
OwnedFile open_or_report(const char* path);

// Calls `take(piece, size)` for each piece. A read error ends the file silently.
template <typename Take>
void for_each_piece(FILE* file, Take take) {
  SecretBytes<1024> piece;  // the file may be one of keys
  while (const size_t size = fread(piece.data(), 1, piece.size(), file)) take(piece.data(), size);
}

}  // namespace plx::digest

#endif
