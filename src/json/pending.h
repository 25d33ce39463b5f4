// The entries of all containers that are still open, those of the innermost last. A container
// takes its entries from here when it closes, into slot arrays of their exact size, so nothing has
// to be trimmed; and when a parse fails, here is all that has to be released.
#ifndef PLX_SRC_JSON_PENDING_H
#define PLX_SRC_JSON_PENDING_H

#include <plx/json.h>
#include <stddef.h>
#include <stdint.h>

#include "json/tree.h"

namespace plx::json {

// A member, or an element, which has no name.
struct PendingEntry {
  PLX_JsonValue* value;
  char* name;
  uint32_t name_hash;
  uint16_t next;  // see NameIndex
};

class PendingEntries {
 public:
  explicit PendingEntries(Texts texts) : entries_(inline_entries_), texts_(texts) {}
  ~PendingEntries();
  PendingEntries(const PendingEntries&) = delete;
  PendingEntries& operator=(const PendingEntries&) = delete;

  size_t size() const { return size_; }
  PendingEntry& operator[](size_t i) { return entries_[i]; }

  // The place of the next entry, to be filled and then taken over; null when memory is short.
  PendingEntry* next() { return size_ != capacity_ || grow() ? entries_ + size_ : nullptr; }
  void take_next() { ++size_; }
  // Forgets the entries from `first` on: they have a new owner.
  void drop_from(size_t first) { size_ = first; }

 private:
  bool grow();

  // On the stack, so that a container of any size needs no other block before it closes: a large
  // block in the midst of small ones makes the platform's allocator tidy up, at some cost.
  static constexpr size_t kInline = 512;

  PendingEntry* entries_;
  const Texts texts_;
  size_t size_ = 0;
  size_t capacity_ = kInline;
  PendingEntry inline_entries_[kInline];
};

}  // namespace plx::json

#endif
