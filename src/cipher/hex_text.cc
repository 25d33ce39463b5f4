#include "cipher/hex_text.h"

#include <string.h>

#include <array>

#include "digest/hex.h"

namespace plx::cipher {
namespace {

constexpr std::array<char, 512> make_pairs() {
  std::array<char, 512> pairs = {};
  for (size_t byte = 0; byte < 256; ++byte) {
    pairs[2 * byte] = digest::kUpperDigits[byte >> 4];
    pairs[2 * byte + 1] = digest::kUpperDigits[byte & 15];
  }
  return pairs;
}
constexpr std::array<char, 512> kPairs = make_pairs();

constexpr std::array<unsigned char, 256> make_values() {
  std::array<unsigned char, 256> values = {};
  for (unsigned char i = 0; i < 10; ++i) values['0' + i] = i;
  for (unsigned char i = 10; i < 16; ++i) values['A' + i - 10] = values['a' + i - 10] = i;
  return values;
}
constexpr std::array<unsigned char, 256> kValues = make_values();

// Callers depend on whatever is no digit counting as 0.
unsigned hexCharToValue(char c) { return kValues[static_cast<unsigned char>(c)]; }

// Where the machine has vectors, 16 bytes at a time go through them, written in the compilers'
// own notation: a comparison gives all ones or zeros in each byte. What is left over, and all of
// it elsewhere, goes through the tables.
#if defined(__SSE2__) || defined(__ARM_NEON)

using Bytes = unsigned char __attribute__((vector_size(16)));
using Pairs = unsigned short __attribute__((vector_size(16)));

Bytes load(const void* from) {
  Bytes bytes;
  memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

Bytes digits_of(Bytes nibbles) {
  return nibbles + '0' + (reinterpret_cast<Bytes>(nibbles > 9) & ('A' - '9' - 1));
}

// Every value stands in the low half of its byte.
Bytes values_of(Bytes chars) {
  const Bytes number = chars - '0', letter = (chars | 0x20) - 'a';
  return (reinterpret_cast<Bytes>(number < 10) & number) |
         (reinterpret_cast<Bytes>(letter < 6) & (letter + 10));
}

size_t write_blocks(const unsigned char* bytes, size_t count, char* out) {
  size_t done = 0;
  for (; done + 16 <= count; done += 16) {
    const Bytes block = load(bytes + done);
    const Bytes high = digits_of(block >> 4), low = digits_of(block & 15);
    const Bytes halves[2] = {
        __builtin_shufflevector(high, low, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23),
        __builtin_shufflevector(high, low, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                31)};
    memcpy(out + 2 * done, halves, sizeof halves);
  }
  return done;
}

// A pair as a little-endian number is  low digit << 8 | high digit.
Bytes join_pairs(Bytes values) {
  const Pairs pairs = reinterpret_cast<Pairs>(values);
  return reinterpret_cast<Bytes>(pairs << 4 | pairs >> 8);
}

size_t read_blocks(const char* text, size_t count, unsigned char* out) {
  size_t done = 0;
  for (; done + 16 <= count; done += 16) {
    const Bytes low = join_pairs(values_of(load(text + 2 * done)));
    const Bytes high = join_pairs(values_of(load(text + 2 * done + 16)));
    const Bytes joined = __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20,
                                                 22, 24, 26, 28, 30);
    memcpy(out + done, &joined, sizeof joined);
  }
  return done;
}

#else

size_t write_blocks(const unsigned char*, size_t, char*) { return 0; }
size_t read_blocks(const char*, size_t, unsigned char*) { return 0; }

#endif

}  // namespace

void write_hex(const unsigned char* bytes, int count, char* out) {
  if (count < 1) return;
  const auto size = static_cast<size_t>(count);
  for (size_t i = write_blocks(bytes, size, out); i < size; ++i) {
    memcpy(out + 2 * i, &kPairs[2 * bytes[i]], 2);
  }
}

int read_hex(const char* text, size_t length, unsigned char* out) {
  const size_t pairs = length / 2;
  size_t i = read_blocks(text, pairs, out);
  for (; i < pairs; ++i) {
    out[i] = static_cast<unsigned char>(hexCharToValue(text[2 * i]) << 4 |
                                        hexCharToValue(text[2 * i + 1]));
  }
  if (length % 2 != 0) out[i++] = static_cast<unsigned char>(hexCharToValue(text[2 * pairs]) << 4);
  return static_cast<int>(i);
}

}  // namespace plx::cipher
