// Finding a second member of the same name in an object that is being read.
#ifndef PLX_SRC_JSON_NAME_INDEX_H
#define PLX_SRC_JSON_NAME_INDEX_H

#include <stddef.h>
#include <stdint.h>

#include "json/pending.h"
#include "json/text.h"

namespace plx::json {

// The members of one object, which are the pending entries from `first` on. A few names are
// compared one by one. Where there are more, chains run through the entries from the buckets here,
// so that even the largest object needs no memory but its stack frame.
class NameIndex {
 public:
  NameIndex(PendingEntries& entries, size_t first) : entries_(entries), first_(first) {}

  // Makes `name` that of `entry`, the next one; false when a member has it already.
  bool add(Text name, PendingEntry* entry);

 private:
  static constexpr size_t kIndexedFrom = 8;
  static constexpr size_t kBucketBits = 7;

  static size_t bucket_of(const PendingEntry& entry);
  void link(PendingEntry* entry, size_t place);
  void build(size_t count);

  PendingEntries& entries_;
  size_t first_;
  uint16_t buckets_[1 << kBucketBits];  // a member's place in the object plus 1, or 0
};

}  // namespace plx::json

#endif
