#include "digest/file_pieces.h"

#include <string.h>

namespace plx::digest {

OwnedFile open_or_report(const char* path) {
  OwnedFile file(fopen(path, "rb"));
  if (file == nullptr) {
    const char* slash = strrchr(path, '/');
    if (slash != nullptr && slash[1] != '\0') {
      (void)fprintf(stderr, "***%s can't be opened\n", slash + 1);
    } else {
      (void)fprintf(stderr, "%s can't be opened\n", path);
    }
  }
  return file;
}

}  // namespace plx::digest
