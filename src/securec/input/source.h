// Where the characters of one scan come from.
//
// A source shows a window of characters that may be looked at; taking one moves the start of the
// window, and whoever does not take a character has thereby pushed it back. A string is one window
// of its whole length. Sources that read something refill an empty window, and only when somebody
// looks: nothing is read before it is needed.
#ifndef PLX_SRC_SECUREC_INPUT_SOURCE_H
#define PLX_SRC_SECUREC_INPUT_SOURCE_H

#include <plx/securec.h>
#include <stddef.h>

#include <type_traits>

namespace plx::securec::input {

template <typename Char>
class SourceBase {
 public:
  // Whether a character can be looked at; `at()` is the first.
  bool fill() { return at_ != end_ || (refill_ != nullptr && refill_window()); }

  const Char* at() const { return at_; }
  const Char* end() const { return end_; }

  // Takes the characters before `stop`, which lies within the window.
  void take_until(const Char* stop) { at_ = stop; }

  // Whether the window is all there will ever be.
  bool is_last_window() const { return refill_ == nullptr; }

  // Characters taken since the scan began.
  size_t taken() const { return taken_before_ + static_cast<size_t>(at_ - begin_); }

 protected:
  // Calls `set_window` with at least one character, or returns false at the end of the input.
  using Refill = bool (*)(SourceBase* self);

  explicit SourceBase(Refill refill) : refill_(refill) {}
  ~SourceBase() = default;
  SourceBase(const SourceBase&) = delete;
  SourceBase& operator=(const SourceBase&) = delete;

  void set_window(const Char* begin, const Char* end) {
    taken_before_ = taken();
    begin_ = at_ = begin;
    end_ = end;
  }

 private:
  bool refill_window() {
    if (refill_(this)) return true;
    refill_ = nullptr;  // the end is seen once: a terminal is not asked again
    return false;
  }

  const Char* at_ = nullptr;
  const Char* end_ = nullptr;
  const Char* begin_ = nullptr;
  size_t taken_before_ = 0;
  Refill refill_;
};

}  // namespace plx::securec::input

// The records that the exported engines take by pointer.
struct SecureInputSource : plx::securec::input::SourceBase<char> {
  using SourceBase::SourceBase;
};
struct SecureWideInputSource : plx::securec::input::SourceBase<wchar_t> {
  using SourceBase::SourceBase;
};

namespace plx::securec::input {

template <typename Char>
using Source =
    std::conditional_t<std::is_same_v<Char, char>, SecureInputSource, SecureWideInputSource>;

template <typename Char>
class StringSource : public Source<Char> {
 public:
  StringSource(const Char* text, size_t length) : Source<Char>(nullptr) {
    this->set_window(text, text + length);
  }
};

}  // namespace plx::securec::input

#endif
