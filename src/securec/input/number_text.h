// The text of a floating-point number on its way to the platform's conversion.
#ifndef PLX_SRC_SECUREC_INPUT_NUMBER_TEXT_H
#define PLX_SRC_SECUREC_INPUT_NUMBER_TEXT_H

#include <stddef.h>
#include <string.h>

namespace plx::securec::input {

// Holds 350 bytes itself and a longer number on the heap, and wipes both.
class NumberText {
 public:
  NumberText() = default;
  ~NumberText();
  NumberText(const NumberText&) = delete;
  NumberText& operator=(const NumberText&) = delete;

  // Appends ASCII characters. Returns false when there is no memory for them; the text is then of
  // no use any more.
  template <typename Char>
  bool append(const Char* begin, const Char* end) {
    const size_t count = static_cast<size_t>(end - begin);
    if (!make_room(count)) return false;
    if constexpr (sizeof(Char) == 1) {
      memcpy(text_ + size_, begin, count);
    } else {
      for (size_t i = 0; i < count; ++i) text_[size_ + i] = static_cast<char>(begin[i]);
    }
    size_ += count;
    return true;
  }

  bool failed() const { return failed_; }

  // The value that the platform's strtod gives.
  double to_double();

 private:
  static constexpr size_t kInlineSize = 350;

  bool make_room(size_t count) {
    return count < capacity_ - size_ || grow(count);  // one byte is left for the terminator
  }
  bool grow(size_t count);

  char* text_ = inline_;
  size_t size_ = 0;
  size_t capacity_ = kInlineSize;
  bool failed_ = false;
  char inline_[kInlineSize];
};

}  // namespace plx::securec::input

#endif
