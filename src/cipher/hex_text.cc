#include "cipher/hex_text.h"

#include <stdint.h>
#include <string.h>

#include <algorithm>

#include "digest/hex.h"

namespace plx::cipher {
namespace {

// Four characters in one word, so that no table is read at a place that depends on the data. All
// sums stay within their bytes.

constexpr uint32_t in_each(uint32_t byte) { return byte * 0x01010101; }

// 15 in each byte of which `flags` has the highest bit.
uint32_t nibble_masks(uint32_t flags) { return (flags >> 7 & in_each(1)) * 15; }

// Callers depend on whatever is no digit counting as 0.
uint32_t values_of_word(uint32_t chars) {
  const uint32_t ascii = chars & in_each(0x7F), lower = ascii | in_each(0x20);
  const uint32_t is_number = (ascii + in_each(0x80 - '0')) & ~(ascii + in_each(0x80 - '9' - 1));
  const uint32_t is_letter = (lower + in_each(0x80 - 'a')) & ~(lower + in_each(0x80 - 'f' - 1));
  return (chars & nibble_masks(is_number & ~chars)) |
         (((chars & in_each(7)) + in_each(9)) & nibble_masks(is_letter & ~chars));
}

// Up to two bytes of up to four characters.
void read_word(const char* text, size_t length, unsigned char* out) {
  uint32_t chars = 0;
  memcpy(&chars, text, length);
  const uint32_t values = values_of_word(chars);
  const uint32_t joined = values << 4 | values >> 8;
  out[0] = static_cast<unsigned char>(joined);
  if (length > 2) out[1] = static_cast<unsigned char>(joined >> 16);
}

// Where the machine has vectors, 16 bytes at a time go through them, written in the compilers'
// own notation: a comparison gives all ones or zeros in each byte. What is left over, and all of
// it elsewhere, goes through words.
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
    digest::write_digits(bytes[i], digest::kUpperDigits, out + 2 * i);
  }
}

int read_hex(const char* text, size_t length, unsigned char* out) {
  size_t i = read_blocks(text, length / 2, out);
  for (; 2 * i < length; i += 2)
    read_word(text + 2 * i, std::min(length - 2 * i, size_t{4}), out + i);
  return static_cast<int>((length + 1) / 2);
}

}  // namespace plx::cipher
