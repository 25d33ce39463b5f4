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
  // there is no room or no memory for a number that long. The field's body lives as long as this
  // object.
  bool format(const Conversion& conversion, Arguments* arguments, FloatField* field);

 private:
  template <typename Float>
  bool format_value(const Conversion& conversion, Float value, FloatField* field);
  char* reserve(size_t size);

  // A number that may need this much goes to the heap.
  static constexpr size_t kInlineSize = 512;
  char inline_[kInlineSize];
  std::unique_ptr<char[]> heap_;
};

}  // namespace plx::securec

#endif
