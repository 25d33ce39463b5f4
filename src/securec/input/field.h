// The part of the input that one conversion may take: a Run where it lies in memory as a whole, a
// Field where the source may have to be asked for more. What reads one reads the other:
//
//   do {
//     const Run<Char> run = from->run();
//     ... stop = the first character of the run that is not wanted ...
//   } while (from->take_until(stop));
#ifndef PLX_SRC_SECUREC_INPUT_FIELD_H
#define PLX_SRC_SECUREC_INPUT_FIELD_H

#include <stddef.h>

#include "securec/input/char_class.h"
#include "securec/input/source.h"

namespace plx::securec::input {

// A stretch of memory.
template <typename Char>
class Run {
 public:
  Run(const Char* begin, const Char* end) : at_(begin), end_(end) {}

  const Char* at() const { return at_; }
  const Char* end() const { return end_; }
  Run run() const { return *this; }

  // Takes the characters before `stop`. Nothing comes behind a run.
  bool take_until(const Char* stop) {
    at_ = stop;
    return false;
  }

  // Takes the next character if it is `c`.
  bool accept(Char c) {
    if (at_ == end_ || *at_ != c) return false;
    ++at_;
    return true;
  }
  bool accept_either(Char a, Char b) { return accept(a) || accept(b); }

 private:
  const Char* at_;
  const Char* end_;
};

// At most `width` characters of a source, which is not looked at beyond them: whoever typed the
// last digit of a full field is not asked for one more character.
template <typename Char>
class Field {
 public:
  Field(Source<Char>& source, size_t width) : source_(source), left_(width) {}

  // What can be seen of the field without asking for more.
  Run<Char> run() const {
    const size_t size = static_cast<size_t>(source_.end() - source_.at());
    return {source_.at(), source_.at() + (size < left_ ? size : left_)};
  }

  // Takes the characters before `stop`. Returns whether that was the whole run and more follows.
  bool take_until(const Char* stop) {
    const Run<Char> seen = run();
    source_.take_until(stop);
    left_ -= static_cast<size_t>(stop - seen.at());
    return stop == seen.end() && has_next();
  }

  // As those of Run.
  bool accept(Char c) {
    if (!has_next() || *source_.at() != c) return false;
    source_.take_until(source_.at() + 1);
    --left_;
    return true;
  }
  bool accept_either(Char a, Char b) { return accept(a) || accept(b); }

 private:
  bool has_next() { return left_ != 0 && source_.fill(); }

  Source<Char>& source_;
  size_t left_;
};

}  // namespace plx::securec::input

#endif
