// An input read as a program: every step takes a few bytes, and an input that has run out yields
// zeros, so that every input is a program.
#ifndef PLX_FUZZ_PROGRAM_H
#define PLX_FUZZ_PROGRAM_H

#include <limits.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <string>

#define CHECK(condition) \
  ((condition) ? (void)0 \
               : (fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition), abort()))

namespace plx_fuzz {

class Program {
 public:
  Program(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}

  bool done() const { return next_ == end_; }
  uint8_t byte() { return done() ? uint8_t{0} : *next_++; }
  bool one_in(int n) { return byte() % n == 0; }

  // Below `n`, which is at most 65536.
  size_t below(size_t n) {
    if (n <= 256) return byte() % n;
    const size_t high = byte();
    return (high << 8 | byte()) % n;
  }

  // From -1 to `count`, or one of the ends of int.
  int index(int count) {
    switch (byte() % 16) {
      case 0:
        return INT_MIN;
      case 1:
        return INT_MAX;
      case 2:
        return -1;
      case 3:
        return count;
      case 4:
        return count + 1;
      default:
        return static_cast<int>(below(static_cast<size_t>(count) + 1));
    }
  }

  // Up to `max` characters out of `alphabet`.
  std::string text(size_t max, const std::string& alphabet) {
    std::string text(below(max + 1), 0);
    for (char& c : text) c = alphabet[below(alphabet.size())];
    return text;
  }

 private:
  const uint8_t* next_;
  const uint8_t* end_;
};

}  // namespace plx_fuzz

#endif
