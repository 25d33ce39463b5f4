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
      for (uint32_t c = low; c <= high && c < kMapped; ++c) bits_[c / 32] |= 1u << c % 32;
      return false;
    });
  }

  bool contains(Char c) const { return is_listed(code(c)) != list_.is_negated; }

 private:
  static constexpr uint32_t kMapped = 256;

  // Wide characters beyond the map are looked up in the list.
  bool is_listed(uint32_t c) const {
    if (c < kMapped) return (bits_[c / 32] >> c % 32 & 1) != 0;
    return any_range(list_, [c](uint32_t low, uint32_t high) { return low <= c && c <= high; });
  }

  SetList<Char> list_;
  uint32_t bits_[kMapped / 32] = {};
};

}  // namespace plx::securec::input

#endif
