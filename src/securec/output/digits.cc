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

struct Powers {
  uint64_t of_ten[20];
};

constexpr Powers make_powers() {
  Powers powers{};
  uint64_t power = 1;
  for (uint64_t& entry : powers.of_ten) {
    entry = power;
    power *= 10;  // wraps behind the last, which is the largest there is
  }
  return powers;
}

constexpr Powers kPowers = make_powers();

size_t count_bits(uint64_t value) {
  return value != 0 ? 64 - static_cast<size_t>(__builtin_clzll(value)) : 0;
}

// Bits times log10(2) is the number of digits or one less.
size_t count_decimal(uint64_t value) {
  const size_t guess = count_bits(value) * 1233 >> 12;
  return guess + (value >= kPowers.of_ten[guess] ? 1 : 0);
}

inline char* write_pair(uint32_t value, char* end) {
  return static_cast<char*>(memcpy(end - 2, kPairs.text[value], 2));
}

void write_decimal(uint64_t value, char* end) {
  // Eight digits at a time leave 32 bits for the rest: dividing 64 bits is a slow call on ARM.
  constexpr uint32_t kEightDigits = 100000000;
  while (value > UINT32_MAX) {
    uint32_t low = static_cast<uint32_t>(value % kEightDigits);
    value /= kEightDigits;
    for (int i = 0; i < 4; ++i, low /= 100) end = write_pair(low % 100, end);
  }
  uint32_t rest = static_cast<uint32_t>(value);
  for (; rest >= 100; rest /= 100) end = write_pair(rest % 100, end);
  if (rest >= 10) {
    write_pair(rest, end);
  } else if (rest != 0) {
    end[-1] = static_cast<char>('0' + rest);
  }
}

}  // namespace

size_t Digits::count() const {
  return bits == 0 ? count_decimal(value) : (count_bits(value) + bits - 1) / bits;
}

void Digits::write(char* end) const {
  if (bits == 0) return write_decimal(value, end);
  const char* const alphabet = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  const unsigned mask = (1u << bits) - 1;
  for (uint64_t rest = value; rest != 0; rest >>= bits) *--end = alphabet[rest & mask];
}

}  // namespace plx::securec
