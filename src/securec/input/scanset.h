// The characters between '[' and ']'.
#ifndef PLX_SRC_SECUREC_INPUT_SCANSET_H
#define PLX_SRC_SECUREC_INPUT_SCANSET_H

#include <stddef.h>
#include <stdint.h>

#include "securec/input/char_class.h"

namespace plx::securec::input {

// The list as the format has it.
template <typename Char>
struct SetList {
  const Char* begin = nullptr;
  const Char* end = nullptr;  // at the closing ']'
  bool is_negated = false;
};

// Reads a list that starts at `at`, behind the '['. Returns where it ends, behind the ']', or null
// when it has no end. A ']' that would make the list empty is a member.
template <typename Char>
const Char* read_set_list(const Char* at, SetList<Char>* out) {
  out->is_negated = *at == '^';
  if (out->is_negated) ++at;
  out->begin = at;
  if (*at == ']') ++at;
  while (*at != 0 && *at != ']') ++at;
  out->end = at;
  return *at == 0 ? nullptr : at + 1;
}

// Calls `visit(low, high)` for every range of a list, single members among them, until it returns
// true. A '-' makes a range of the members around it, so that "a-c-e" is one from a to e; when
// they are in the wrong order it is a member itself, and callers depend on that.
template <typename Char, typename Visit>
bool any_range(const SetList<Char>& list, Visit visit) {
  for (const Char* at = list.begin; at != list.end; ++at) {
    uint32_t low = code(*at), high = low;
    if (low == '-' && at != list.begin && at + 1 != list.end && code(at[-1]) <= code(at[1])) {
      low = code(at[-1]);
      high = code(at[1]);
    }
    if (visit(low, high)) return true;
  }
  return false;
}

template <typename Char>
class Scanset {
 public:
  explicit Scanset(const SetList<Char>& list) : list_(list) {
    any_range(list, [this](uint32_t low, uint32_t high) {
      if (low < kMapped) add(low, high < kMapped ? high : kMapped - 1);
      return false;
    });
    if (list.is_negated) {
      for (uint32_t& word : bits_) word = ~word;
    }
  }

  // The first character that does not belong to the set.
  const Char* run_end(const Char* at, const Char* end) const {
    while (at != end && contains(code(*at))) ++at;
    return at;
  }

 private:
  static constexpr uint32_t kMapped = 256;

  void add(uint32_t low, uint32_t high) {
    const uint32_t first = low / 32, last = high / 32;
    const uint32_t from_low = ~0u << low % 32, to_high = ~0u >> (31 - high % 32);
    if (first == last) {
      bits_[first] |= from_low & to_high;
      return;
    }
    bits_[first] |= from_low;
    for (uint32_t word = first + 1; word < last; ++word) bits_[word] = ~0u;
    bits_[last] |= to_high;
  }

  // Wide characters beyond the map are looked up in the list.
  bool contains(uint32_t c) const {
    if (sizeof(Char) == 1 || c < kMapped) return (bits_[c / 32] >> c % 32 & 1) != 0;
    const auto has = [c](uint32_t low, uint32_t high) { return low <= c && c <= high; };
    return any_range(list_, has) != list_.is_negated;
  }

  SetList<Char> list_;
  uint32_t bits_[kMapped / 32] = {};
};

}  // namespace plx::securec::input

#endif
