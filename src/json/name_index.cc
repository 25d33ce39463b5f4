#include "json/name_index.h"

#include <string.h>

namespace plx::json {
namespace {

template <typename Word>
uint64_t load(const char* p) {
  Word word;
  memcpy(&word, p, sizeof word);
  return word;
}

// Any even spread will do: equal hashes cost time, never a wrong answer, and the bound on members
// bounds the time. Most names are covered by two words that may overlap. Of a product the upper
// bits depend on all bits of its factors.
uint32_t hash_name(const char* name, size_t length) {
  constexpr uint64_t kFirstFactor = 0x9E3779B97F4A7C15, kLastFactor = 0xD6E8FEB86659FD93;
  const char* end = name + length;
  uint64_t first = length, last = 0;
  if (length >= 8) {
    for (; end - name > 16; name += 8) first = (first ^ load<uint64_t>(name)) * kLastFactor;
    first ^= load<uint64_t>(name) ^ first >> 32;
    last = load<uint64_t>(end - 8);
  } else if (length >= 4) {
    first ^= load<uint32_t>(name);
    last = load<uint32_t>(end - 4);
  } else if (length > 0) {
    first ^= load<uint8_t>(name) << 8 | load<uint8_t>(name + length / 2) << 16;
    last = load<uint8_t>(end - 1);
  }
  return static_cast<uint32_t>((first * kFirstFactor ^ last * kLastFactor) >> 32);
}

bool same_name(const PendingEntry& a, const PendingEntry& b) {
  return a.name_hash == b.name_hash && strcmp(a.name, b.name) == 0;
}

}  // namespace

bool NameIndex::add(Text name, PendingEntry* entry) {
  entry->name = name.data;
  entry->name_hash = hash_name(name.data, name.length);
  const size_t count = entries_.size() - first_;
  if (count < kIndexedFrom) {
    for (size_t place = 0; place < count; ++place) {
      if (same_name(entries_[first_ + place], *entry)) return false;
    }
    return true;
  }
  if (count == kIndexedFrom) build(count);
  for (unsigned next = buckets_[bucket_of(*entry)]; next != 0;) {
    const PendingEntry& member = entries_[first_ + next - 1];
    if (same_name(member, *entry)) return false;
    next = member.next;
  }
  link(entry, count);
  return true;
}

size_t NameIndex::bucket_of(const PendingEntry& entry) {
  return entry.name_hash >> (32 - kBucketBits);
}

void NameIndex::link(PendingEntry* entry, size_t place) {
  uint16_t* bucket = &buckets_[bucket_of(*entry)];
  entry->next = *bucket;
  *bucket = static_cast<uint16_t>(place + 1);
}

void NameIndex::build(size_t count) {
  memset(buckets_, 0, sizeof buckets_);
  for (size_t place = 0; place < count; ++place) link(&entries_[first_ + place], place);
}

}  // namespace plx::json
