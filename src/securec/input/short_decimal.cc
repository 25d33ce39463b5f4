#include "securec/input/short_decimal.h"

#include <float.h>
#include <stdint.h>

#include "securec/input/char_class.h"

namespace plx::securec::input {
namespace {

// Clinger, "How to read floating point numbers accurately" (1990): an integer below 2^53 and a
// power of ten up to 10^22 are doubles without an error, so that one multiplication or division
// rounds once, like the exact result.
constexpr uint64_t kLargestInteger = uint64_t{1} << DBL_MANT_DIG;
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestPower = sizeof kPowers / sizeof kPowers[0] - 1;

class Reader {
 public:
  Reader(const char* text, size_t size) : at_(text), end_(text + size) {}

  bool at_end() const { return at_ == end_; }
  bool accept(char c) {
    if (at_end() || *at_ != c) return false;
    ++at_;
    return true;
  }

  // Puts digits behind `*value` and returns how many; a `*value` of `limit` and more takes none.
  int read_digits(uint64_t* value, uint64_t limit) {
    const char* begin = at_;
    for (; at_ != end_ && digit_value(*at_) < 10 && *value < limit; ++at_) {
      *value = *value * 10 + digit_value(*at_);
    }
    return static_cast<int>(at_ - begin);
  }

 private:
  const char* at_;
  const char* end_;
};

}  // namespace

bool convert_short_decimal(const char* text, size_t size, double* out) {
  constexpr size_t kLongest = 64;  // so that no count of digits passes an int
  if (FLT_EVAL_METHOD != 0 || size > kLongest) return false;
  Reader reader(text, size);
  const bool is_negative = reader.accept('-');
  uint64_t digits = 0, power = 0;
  reader.read_digits(&digits, kLargestInteger);
  int exponent = 0;
  if (reader.accept('.')) exponent = -reader.read_digits(&digits, kLargestInteger);
  if (reader.accept('e')) {
    const bool divides = reader.accept('-');
    reader.read_digits(&power, 1000);
    exponent += divides ? -static_cast<int>(power) : static_cast<int>(power);
  }
  if (!reader.at_end() || digits > kLargestInteger) return false;
  if (exponent < -kLargestPower || exponent > kLargestPower) return false;
  // By way of a signed integer, for compilers make an unsigned 0 a -0 where rounding is downward.
  const double magnitude = static_cast<double>(static_cast<int64_t>(digits));
  // The sign comes before rounding, for it decides the direction.
  const double integer = is_negative ? -magnitude : magnitude;
  *out = exponent < 0 ? integer / kPowers[-exponent] : integer * kPowers[exponent];
  return true;
}

}  // namespace plx::securec::input
