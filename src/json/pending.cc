#include "json/pending.h"

#include "container/alloc.h"
#include "json/tree.h"
#include "securec/memory.h"

namespace plx::json {

PendingEntries::~PendingEntries() {
  while (size_ > 0) {
    const PendingEntry& entry = entries_[--size_];
    release_block(entry.name);
    release(entry.value, texts_);
  }
  if (entries_ != inline_entries_) release_block(entries_);
}

bool PendingEntries::grow() {
  // The limits on depth and entries keep this far from any overflow.
  const size_t old_size = capacity_ * sizeof(PendingEntry);
  void* grown = allocate_block(2 * old_size);
  if (grown == nullptr) return false;
  securec::copy_memory(grown, 2 * old_size, entries_, old_size);
  if (entries_ != inline_entries_) release_block(entries_);
  entries_ = static_cast<PendingEntry*>(grown);
  capacity_ *= 2;
  return true;
}

}  // namespace plx::json
