#include "fleet/seen_table.h"

#include <errno.h>
#include <fcntl.h>
#include <plx/digest.h>
#include <plx/securec.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/failure.h"

namespace plx::tool {

SeenTable::SeenTable(const std::string& folder, uint64_t most) : slots_(2 * most + 1) {
  std::string path = folder + "/.seen.XXXXXX";
  fd_ = mkostemp(path.data(), O_CLOEXEC);
  if (fd_ < 0) system_failure(folder + ": cannot write into this folder", errno);
  unlink(path.c_str());
  if (ftruncate(fd_, static_cast<off_t>(slots_ * sizeof(Slot))) != 0) {
    system_failure(folder, errno);
  }
}

SeenTable::~SeenTable() { close(fd_); }

// Open addressing: the slot that holds `id`, or the free one where it belongs. Half of them are
// free, so that the search ends soon. 16 bytes of the SHA-256 stand for the identifier.
uint64_t SeenTable::find(const std::string& id, Slot* slot) const {
  unsigned char digest[32];
  uint64_t key[2];
  sha256_get(digest, reinterpret_cast<const unsigned char*>(id.data()),
             static_cast<unsigned>(id.size()));
  memcpy_s(key, sizeof key, digest, sizeof key);
  for (uint64_t place = key[0] % slots_;; place = (place + 1) % slots_) {
    if (pread(fd_, slot, sizeof *slot, static_cast<off_t>(place * sizeof *slot)) !=
        static_cast<ssize_t>(sizeof *slot)) {
      system_failure("the table of identifiers", errno);
    }
    if (slot->row != 0 && (slot->key[0] != key[0] || slot->key[1] != key[1])) continue;
    slot->key[0] = key[0];
    slot->key[1] = key[1];
    return place;
  }
}

void SeenTable::note(const std::string& id, uint64_t row) {
  Slot slot;
  const uint64_t place = find(id, &slot);
  if (slot.row != 0) return;
  slot.row = row;
  if (pwrite(fd_, &slot, sizeof slot, static_cast<off_t>(place * sizeof slot)) !=
      static_cast<ssize_t>(sizeof slot)) {
    system_failure("the table of identifiers", errno);
  }
}

uint64_t SeenTable::first_row(const std::string& id) const {
  Slot slot;
  find(id, &slot);
  return slot.row;
}

}  // namespace plx::tool
