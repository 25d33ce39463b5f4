// Where formatted text goes: the caller's room, and never a character further.
#ifndef PLX_SRC_SECUREC_OUTPUT_STREAM_H
#define PLX_SRC_SECUREC_OUTPUT_STREAM_H

#include <plx/securec.h>

#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

#include "securec/output/blocks.h"
#include "securec/output/digits.h"

namespace plx::securec {

// The record that callers of the exported engines fill, for each character width. The room is
// counted in characters, for wide text in bytes; it is below 0 once text was cut.
template <typename Char>
struct BoundedStreamOf;
template <>
struct BoundedStreamOf<char> {
  using Type = SecurecOutputStream;
};
template <>
struct BoundedStreamOf<wchar_t> {
  using Type = SecurecWideOutputStream;
};
template <typename Char>
using BoundedStream = typename BoundedStreamOf<Char>::Type;

static_assert(sizeof(SecurecOutputStream) == (sizeof(void*) == 8 ? 16 : 8), "record layout");
static_assert(sizeof(SecurecWideOutputStream) == (sizeof(void*) == 8 ? 16 : 8), "record layout");
static_assert(offsetof(SecurecOutputStream, room) == 0, "record layout");
static_assert(offsetof(SecurecOutputStream, position) == sizeof(void*), "record layout");
static_assert(offsetof(SecurecWideOutputStream, room) == 0, "record layout");
static_assert(offsetof(SecurecWideOutputStream, position) == sizeof(void*), "record layout");

// How many of `count` characters stand before one that cannot be written. A wide character with
// all bits set means the end of a file everywhere else; it ends the call.
inline size_t count_writable(const char*, size_t count) { return count; }
inline size_t count_writable(const wchar_t* text, size_t count) {
  const wchar_t* bad = wmemchr(text, static_cast<wchar_t>(WEOF), count);
  return bad != nullptr ? static_cast<size_t>(bad - text) : count;
}

// Writes fields and text one after the other, into room that is known to suffice. Every write says
// true, so that it can stand where a Writer stands.
template <typename Char>
class Pen {
 public:
  explicit Pen(Char* position) : position_(position) {}

  bool write_ascii(const char* text, size_t count) {
    copy_block(advance(count), text, count);
    return true;
  }

  bool write_multi_char(char c, size_t count) {
    fill_block(advance(count), c, count);
    return true;
  }

  bool write_digits(const Digits& digits, size_t count) {
    digits.write(advance(count) + count);
    return true;
  }

 private:
  Char* advance(size_t count) {
    Char* const start = position_;
    position_ += count;
    return start;
  }

  Char* position_;
};

// Writes to a bounded room. Every write stores what fits and returns false when that was not
// everything; the engine then stops.
template <typename Char>
class Writer {
 public:
  Writer(Char* position, size_t room) : position_(position), start_(room), room_(room) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  Char* position() const { return position_; }
  size_t room() const { return room_; }
  size_t written() const { return start_ - room_; }
  bool is_cut() const { return is_cut_; }

  // Room for `count` characters that the caller writes, where there is so much.
  Pen<Char> claim(size_t count) {
    const Pen<Char> pen(position_);
    advance(count);
    return pen;
  }

  bool write_string(const Char* text, size_t count) {
    const size_t fitting = std::min(count, room_);
    const size_t writable = count_writable(text, fitting);
    copy_block(position_, text, writable);
    advance(writable);
    return writable == fitting && everything(fitting, count);
  }

  // `count` ASCII characters.
  bool write_ascii(const char* text, size_t count) {
    const size_t fitting = std::min(count, room_);
    copy_block(position_, text, fitting);
    advance(fitting);
    return everything(fitting, count);
  }

  bool write_multi_char(char c, size_t count) {
    const size_t fitting = std::min(count, room_);
    fill_block(position_, c, fitting);
    advance(fitting);
    return everything(fitting, count);
  }

  bool write_digits(const Digits& digits, size_t count) {
    char text[kMaxDigits];
    digits.write(text + count);
    return write_ascii(text, count);
  }

  // Takes no account of it: the terminator is not part of the text.
  bool put_ending_zero() {
    if (room_ == 0) return false;
    *position_ = 0;
    return true;
  }

 private:
  void advance(size_t count) {
    position_ += count;
    room_ -= count;
  }

  bool everything(size_t fitting, size_t count) {
    is_cut_ = fitting != count;
    return !is_cut_;
  }

  Char* position_;
  const size_t start_;
  size_t room_;
  bool is_cut_ = false;
};

}  // namespace plx::securec

#endif
