// Digits of a number: how many it has, and the digits themselves, written backwards from `end`.
// Zero has none. Inline, since this is what most calls are about.
#ifndef PLX_SRC_SECUREC_OUTPUT_DIGITS_H
#define PLX_SRC_SECUREC_OUTPUT_DIGITS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

namespace plx::securec {

constexpr size_t kMaxDigits = 22;  // of 64 bits in octal

// "00" to "99", so that one division gives two digits.
struct DigitPairs {
  char text[100][2];
};

constexpr DigitPairs make_digit_pairs() {
  DigitPairs pairs{};
  for (int i = 0; i < 100; ++i) {
    pairs.text[i][0] = static_cast<char>('0' + i / 10);
    pairs.text[i][1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}

inline constexpr DigitPairs kDigitPairs = make_digit_pairs();

struct PowersOfTen {
  uint64_t value[20];
};

constexpr PowersOfTen make_powers_of_ten() {
  PowersOfTen powers{};
  uint64_t power = 1;
  for (uint64_t& entry : powers.value) {
    entry = power;
    power *= 10;  // wraps behind the last, which is the largest there is
  }
  return powers;
}

inline constexpr PowersOfTen kPowersOfTen = make_powers_of_ten();

inline char* write_pair(uint32_t value, char* end) {
  return static_cast<char*>(memcpy(end - 2, kDigitPairs.text[value], 2));
}
inline wchar_t* write_pair(uint32_t value, wchar_t* end) {
  end[-2] = kDigitPairs.text[value][0];
  end[-1] = kDigitPairs.text[value][1];
  return end - 2;
}

template <typename Char>
inline void write_decimal(uint64_t value, Char* end) {
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
    end[-1] = static_cast<Char>('0' + rest);
  }
}

template <typename Char>
inline void write_hex(uint64_t value, Char* end, bool upper) {
  const char* const alphabet = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  for (; value >= 16; value >>= 8, end -= 2) {
    end[-1] = static_cast<Char>(alphabet[value & 15]);
    end[-2] = static_cast<Char>(alphabet[value >> 4 & 15]);
  }
  if (value != 0) end[-1] = static_cast<Char>(alphabet[value]);
}

template <typename Char>
inline void write_octal(uint64_t value, Char* end) {
  for (; value != 0; value >>= 3) *--end = static_cast<Char>('0' + (value & 7));
}

// An unsigned number in decimal, octal or hexadecimal.
struct Digits {
  uint64_t value = 0;
  uint8_t bits = 0;  // of one digit: 3 or 4, and 0 for decimal
  bool upper = false;

  size_t count() const {
    const size_t num_bits = value != 0 ? 64 - static_cast<size_t>(__builtin_clzll(value)) : 0;
    if (bits == 3) return (num_bits + 2) / 3;
    if (bits == 4) return (num_bits + 3) / 4;
    // Bits times log10(2) is the number of digits or one less.
    const size_t guess = num_bits * 1233 >> 12;
    return guess + (value >= kPowersOfTen.value[guess] ? 1 : 0);
  }

  // As many as count() says, the last one just below `end`.
  template <typename Char>
  void write(Char* end) const {
    if (bits == 0) return write_decimal(value, end);
    if (bits == 3) return write_octal(value, end);
    write_hex(value, end, upper);
  }
};

}  // namespace plx::securec

#endif
