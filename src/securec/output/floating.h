// Floating-point numbers: the platform makes the text, one number at a time, and the engine frames
// it.
#ifndef PLX_SRC_SECUREC_OUTPUT_FLOATING_H
#define PLX_SRC_SECUREC_OUTPUT_FLOATING_H

#include <stddef.h>

#include <memory>

#include "securec/output/arguments.h"
#include "securec/output/conversion.h"
#include "securec/output/field.h"

namespace plx::securec {

class FloatText {
 public:
  // Takes the argument of an 'e', 'f', 'g', 'E', 'F' or 'G'. False when nothing is to be printed:
  // there is no room or no memory for a number that long.
  bool print(const Conversion& conversion, Arguments* arguments);

  // What the platform made of it, terminated.
  const char* text() const { return heap_ != nullptr ? heap_.get() : inline_; }
  size_t size() const { return size_; }

  // Whether that is all there is to print.
  bool is_whole(const Conversion& conversion) const {
    return conversion.width == 0 && missing_digits_ == 0;
  }
  // Where zeros and padding go between. Points into the text.
  FloatField frame(const Conversion& conversion) const;

 private:
  template <typename Float>
  bool print_value(const Conversion& conversion, Float value);
  char* reserve(size_t size);

  // A number that may need this much goes to the heap.
  static constexpr size_t kInlineSize = 512;
  char inline_[kInlineSize];
  std::unique_ptr<char[]> heap_;
  size_t size_;
  size_t missing_digits_;
};

}  // namespace plx::securec

#endif
