// Where formatted text goes: the caller's room, and never a character further.
#ifndef PLX_SRC_SECUREC_OUTPUT_STREAM_H
#define PLX_SRC_SECUREC_OUTPUT_STREAM_H

#include <plx/securec.h>

#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>

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

// Writes to a stream's room. Every write stores what fits and returns false when that was not
// everything; the engine then stops. Keeps its own position and gives it back at the end.
template <typename Char>
class Writer {
 public:
  explicit Writer(BoundedStream<Char>* stream)
      : stream_(stream),
        position_(stream->position),
        start_(stream->room > 0 ? static_cast<size_t>(stream->room) / kUnit : 0),
        room_(start_) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  ~Writer() {
    stream_->position = position_;
    if (stream_->room < 0) return;
    // The character that found no room has taken its share of it too.
    const size_t taken = (written() + (cut_ ? 1 : 0)) * kUnit;
    stream_->room = static_cast<int32_t>(stream_->room - static_cast<int64_t>(taken));
  }

  size_t written() const { return start_ - room_; }
  size_t room() const { return room_; }

  bool write_run(const Char* text, size_t count) {
    const size_t fitting = std::min(count, room_);
    const size_t writable = count_writable(text, fitting);
    if (writable != 0) memcpy(position_, text, writable * sizeof(Char));
    advance(writable);
    return writable == fitting && everything(fitting, count);
  }

  bool write_repeated(char c, size_t count) {
    const size_t fitting = std::min(count, room_);
    std::fill_n(position_, fitting, static_cast<Char>(c));
    advance(fitting);
    return everything(fitting, count);
  }

  // `count` ASCII characters.
  bool write_ascii(const char* text, size_t count) {
    const size_t fitting = std::min(count, room_);
    std::copy_n(text, fitting, position_);
    advance(fitting);
    return everything(fitting, count);
  }

 private:
  // What a character takes of the stream's room.
  static constexpr size_t kUnit = sizeof(Char);

  void advance(size_t count) {
    position_ += count;
    room_ -= count;
  }

  bool everything(size_t fitting, size_t count) {
    cut_ = fitting != count;
    return !cut_;
  }

  BoundedStream<Char>* stream_;
  Char* position_;
  const size_t start_;
  size_t room_;
  bool cut_ = false;
};

}  // namespace plx::securec

#endif
