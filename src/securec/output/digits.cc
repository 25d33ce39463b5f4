#include "securec/output/digits.h"

#include <string.h>

namespace plx::securec {
namespace {

// "00" to "99", so that one division gives two digits.
struct Pairs {
  char text[100][2];
};

constexpr Pairs make_pairs() {
  Pairs pairs{};
  for (int i = 0; i < 100; ++i) {
    pairs.text[i][0] = static_cast<char>('0' + i / 10);
    pairs.text[i][1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}

constexpr Pairs kPairs = make_pairs();

inline char* write_pair(uint32_t value, char* end) {
  return static_cast<char*>(memcpy(end - 2, kPairs.text[value], 2));
}

char* write_decimal_32(uint32_t value, char* end) {
  for (; value >= 100; value /= 100) end = write_pair(value % 100, end);
  if (value >= 10) return write_pair(value, end);
  if (value != 0) *--end = static_cast<char>('0' + value);
  return end;
}

// The low eight digits of a longer number, zeros included.
char* write_eight(uint32_t value, char* end) {
  for (int i = 0; i < 4; ++i, value /= 100) end = write_pair(value % 100, end);
  return end;
}

}  // namespace

char* write_decimal(uint64_t value, char* end) {
  // Eight digits at a time leave 32 bits for the rest: dividing 64 bits is a slow call on ARM.
  constexpr uint32_t kEightDigits = 100000000;
  while (value > UINT32_MAX) {
    end = write_eight(static_cast<uint32_t>(value % kEightDigits), end);
    value /= kEightDigits;
  }
  return write_decimal_32(static_cast<uint32_t>(value), end);
}

char* write_octal(uint64_t value, char* end) {
  for (; value != 0; value >>= 3) *--end = static_cast<char>('0' + (value & 7));
  return end;
}

char* write_hex(uint64_t value, char* end, const char* digits) {
  for (; value != 0; value >>= 4) *--end = digits[value & 15];
  return end;
}

}  // namespace plx::securec
