// How a search compares names. Most differ within a few characters, sooner than a call to strcmp
// would pay, so these are compared in place. None is read behind one that differs, so none behind a
// terminator.
#ifndef PLX_SRC_JSON_NAME_MATCH_H
#define PLX_SRC_JSON_NAME_MATCH_H

#include <plx/json.h>
#include <stddef.h>
#include <string.h>

namespace plx::json {

// For a wanted name of at least so many characters, which are kept at hand, in registers.
constexpr size_t kAtHand = 8;

class LongName {
 public:
  LongName(const char* wanted, size_t length) : wanted_(wanted), length_(length) {
    for (size_t i = 0; i < kAtHand; ++i) first_[i] = wanted[i];
  }

  bool matches(const char* name) const {
    return name[0] == first_[0] && name[1] == first_[1] && name[2] == first_[2] &&
           name[3] == first_[3] && name[4] == first_[4] && name[5] == first_[5] &&
           name[6] == first_[6] && name[7] == first_[7] && rest_matches(name);
  }

 private:
  static constexpr size_t kWorthACall = 24;

  bool rest_matches(const char* name) const {
    if (length_ >= kWorthACall) return strcmp(name + kAtHand, wanted_ + kAtHand) == 0;
    size_t i = kAtHand;
    while (i <= length_ && name[i] == wanted_[i]) ++i;
    return i > length_;
  }

  const char* wanted_;
  size_t length_;
  char first_[kAtHand];
};

// For a shorter one, four characters at a step.
class ShortName {
 public:
  ShortName(const char* wanted, size_t length) : wanted_(wanted), length_(length) {}

  bool matches(const char* name) const {
    const auto same = [&](size_t i) { return name[i] == wanted_[i]; };
    size_t i = 0;
    for (; i + 4 <= length_; i += 4) {
      if (!same(i) || !same(i + 1) || !same(i + 2) || !same(i + 3)) return false;
    }
    while (i <= length_ && same(i)) ++i;
    return i > length_;
  }

 private:
  const char* wanted_;
  size_t length_;
};

// Calls `work` with the matcher that suits the wanted name.
template <typename Work>
PLX_JsonValue* with_matcher(const char* wanted, const Work& work) {
  const size_t length = strlen(wanted);
  return length < kAtHand ? work(ShortName(wanted, length)) : work(LongName(wanted, length));
}

// ASCII letters only, whatever the locale.
class AnyCase {
 public:
  explicit AnyCase(const char* wanted) : wanted_(wanted) {}

  bool matches(const char* name) const {
    const char* wanted = wanted_;
    for (; lower(*name) == lower(*wanted); ++name, ++wanted) {
      if (*wanted == '\0') return true;
    }
    return false;
  }

 private:
  static int lower(char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; }

  const char* wanted_;
};

}  // namespace plx::json

#endif
