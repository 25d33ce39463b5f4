// The part of the input that one conversion may take.
#ifndef PLX_SRC_SECUREC_INPUT_FIELD_H
#define PLX_SRC_SECUREC_INPUT_FIELD_H

#include <stddef.h>

#include "securec/input/char_class.h"
#include "securec/input/source.h"

namespace plx::securec::input {

// At most `width` characters of a source, which is not looked at beyond them: whoever typed the
// last digit of a full field is not asked for one more character.
template <typename Char>
class Field {
 public:
  Field(Source<Char>& source, size_t width) : source_(source), left_(width) {}

  // Takes the next character if it is `c`.
  bool accept(Char c) {
    if (!has_next() || *source_.at() != c) return false;
    source_.take_until(source_.at() + 1);
    --left_;
    return true;
  }

  bool accept_either(Char a, Char b) { return accept(a) || accept(b); }

  // Hands out the characters in runs, as `const Char* take(const Char* begin, const Char* end)`.
  // It returns the first that it does not want, which ends the field.
  template <typename Take>
  void take_runs(Take take) {
    while (has_next()) {
      const Char* begin = source_.at();
      const Char* end = source_.end();
      if (static_cast<size_t>(end - begin) > left_) end = begin + left_;
      const Char* stop = take(begin, end);
      source_.take_until(stop);
      left_ -= static_cast<size_t>(stop - begin);
      if (stop != end) return;
    }
  }

 private:
  bool has_next() { return left_ != 0 && source_.fill(); }

  Source<Char>& source_;
  size_t left_;
};

}  // namespace plx::securec::input

#endif
