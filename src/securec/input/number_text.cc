#include "securec/input/number_text.h"

#include <stdlib.h>
#include <string.h>

#include <new>

#include "internal/wipe.h"
#include "securec/input/short_decimal.h"
#include "securec/keep_errno.h"

namespace plx::securec::input {

NumberText::~NumberText() {
  wipe(text_, size_);
  if (text_ != inline_) delete[] text_;  // GCOVR_EXCL_BR_LINE: never null
}

bool NumberText::grow(size_t count) {
  constexpr size_t kLargestThatDoubles = size_t{1} << 30;
  size_t capacity = capacity_;
  while (count >= capacity - size_) {
    failed_ = failed_ || capacity >= kLargestThatDoubles;
    if (failed_) return false;
    capacity *= 2;
  }
  const KeepErrno keep_errno;
  char* larger = new (std::nothrow) char[capacity];
  failed_ = larger == nullptr;
  if (failed_) return false;
  memcpy(larger, text_, size_);
  wipe(text_, size_);
  if (text_ != inline_) delete[] text_;  // GCOVR_EXCL_BR_LINE: never null
  text_ = larger;
  capacity_ = capacity;
  return true;
}

double NumberText::to_double() {
  double value;
  if (convert_short_decimal(text_, size_, &value)) return value;
  const KeepErrno keep_errno;
  text_[size_] = '\0';
  return strtod(text_, nullptr);
}

}  // namespace plx::securec::input
