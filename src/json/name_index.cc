#include "json/name_index.h"

#include <string.h>

namespace plx::json {
namespace {

// Any even spread will do: equal hashes cost time, never a wrong answer, and the bound on members
// bounds the time.
uint32_t hash_name(const char* name, size_t length) {
  uint32_t hash = static_cast<uint32_t>(length);
  const auto mix = [&hash](uint32_t word) {
    hash = (hash ^ word) * 0x9E3779B1u;
    hash ^= hash >> 15;
  };
  for (; length >= sizeof(uint32_t); name += sizeof(uint32_t), length -= sizeof(uint32_t)) {
    uint32_t word;
    memcpy(&word, name, sizeof word);
    mix(word);
  }
  uint32_t rest = 0;
  for (; length > 0; --length) rest = rest << 8 | static_cast<unsigned char>(*name++);
  mix(rest);
  return hash;
}

bool same_name(const PendingEntry& a, const PendingEntry& b) {
  return a.name_hash == b.name_hash && a.name_length == b.name_length &&
         memcmp(a.name, b.name, a.name_length) == 0;
}

}  // namespace

bool NameIndex::add(const Text& name, PendingEntry* entry) {
  entry->name = name.data.get();
  entry->name_length = name.length;
  entry->name_hash = hash_name(entry->name, name.length);
  const size_t count = entries_.size() - first_;
  if (count < kIndexedFrom) {
    for (size_t place = 0; place < count; ++place) {
      if (same_name(entries_[first_ + place], *entry)) return false;
    }
    return true;
  }
  if (count == kIndexedFrom) build(count);
  for (unsigned next = buckets_[entry->name_hash % kBuckets]; next != 0;) {
    const PendingEntry& member = entries_[first_ + next - 1];
    if (same_name(member, *entry)) return false;
    next = member.next;
  }
  link(entry, count);
  return true;
}

void NameIndex::link(PendingEntry* entry, size_t place) {
  uint16_t* bucket = &buckets_[entry->name_hash % kBuckets];
  entry->next = *bucket;
  *bucket = static_cast<uint16_t>(place + 1);
}

void NameIndex::build(size_t count) {
  memset(buckets_, 0, sizeof buckets_);
  for (size_t place = 0; place < count; ++place) link(&entries_[first_ + place], place);
}

}  // namespace plx::json
