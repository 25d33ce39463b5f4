// The caller's buffer for the text of one conversion, and its size.
#ifndef PLX_SRC_SECUREC_INPUT_TEXT_DESTINATION_H
#define PLX_SRC_SECUREC_INPUT_TEXT_DESTINATION_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

#include "securec/input/foreign.h"

namespace plx::securec::input {

// A buffer of `Dst`, or nothing at all for text that is read over.
template <typename Dst>
class TextDestination {
 public:
  TextDestination(Dst* start, size_t room) : start_(start), next_(start), room_(room) {}

  // How many characters of input fit at the most.
  size_t room() const { return room_; }

  // Stores the characters from `begin` to `end` and returns `end`, or the first that does not fit.
  template <typename Char>
  const Char* put(const Char* begin, const Char* end) {
    if constexpr (sizeof(Char) == sizeof(Dst)) {
      return put_same(begin, end);
    } else {
      while (begin != end && put_foreign(*begin)) ++begin;
      return begin;
    }
  }

  void terminate() { *next_ = 0; }

  // What did not fit is not left half: the text becomes empty.
  void clear_first() { *start_ = 0; }

 private:
  const Dst* put_same(const Dst* begin, const Dst* end) {
    size_t count = static_cast<size_t>(end - begin);
    if (count > room_) count = room_;
    memcpy(next_, begin, count * sizeof(Dst));
    next_ += count;
    room_ -= count;
    return begin + count;
  }

  bool put_foreign(char byte) {
    if (room_ == 0) return false;
    *next_++ = to_wide(byte);
    --room_;
    return true;
  }

  bool put_foreign(wchar_t c) {
    char bytes[MB_LEN_MAX] = {static_cast<char>(c)};
    const size_t size = code(c) < 0x80 ? 1 : convert_wide(c, bytes);
    if (size > room_) return false;
    memcpy(next_, bytes, size);
    next_ += size;
    room_ -= size;
    return true;
  }

  Dst* start_;
  Dst* next_;
  size_t room_;
};

// Where the text of a conversion with '*' goes.
class NoDestination {
 public:
  static size_t room() { return SIZE_MAX; }
  template <typename Char>
  static const Char* put(const Char*, const Char* end) {
    return end;
  }
  static void terminate() {}
  static void clear_first() {}
};

}  // namespace plx::securec::input

#endif
