#include "digest/base64_groups.h"

namespace plx::digest {
namespace {

constexpr void add_shuffle_tables(Base64Alphabet& alphabet, char special_0, char special_1) {
  constexpr int kFirstOfRun[14] = {0, 26, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};
  for (int run = 0; run < 14; ++run) {
    const int first = kFirstOfRun[run];
    alphabet.digit_offsets[run] = static_cast<int8_t>(alphabet.digits[first] - first);
  }
  alphabet.specials[0] = special_0;
  alphabet.specials[1] = special_1;
  for (int c = 0; c < 128; ++c) {
    if (alphabet.values[c] == kNoDigit) continue;
    const int row = c >> 4;
    const bool is_special = c == special_0 || c == special_1;
    alphabet.digit_rows[c & 15] = static_cast<uint8_t>(alphabet.digit_rows[c & 15] | 1 << row);
    alphabet.value_offsets[is_special ? 8 + row : row] =
        static_cast<int8_t>(alphabet.values[c] - c);
  }
}

constexpr Base64Alphabet make_alphabet(char digit_62, char digit_63, bool pad_is_zero,
                                       char special_0, char special_1) {
  Base64Alphabet alphabet{};
  for (uint8_t& value : alphabet.values) value = kNoDigit;
  for (int i = 0; i < 26; ++i) {
    alphabet.digits[i] = static_cast<char>('A' + i);
    alphabet.digits[26 + i] = static_cast<char>('a' + i);
  }
  for (int i = 0; i < 10; ++i) alphabet.digits[52 + i] = static_cast<char>('0' + i);
  alphabet.digits[62] = digit_62;
  alphabet.digits[63] = digit_63;
  for (int i = 0; i < 64; ++i) {
    alphabet.values[static_cast<uint8_t>(alphabet.digits[i])] = static_cast<uint8_t>(i);
  }
  if (pad_is_zero) alphabet.values[static_cast<uint8_t>('=')] = 0;
  add_shuffle_tables(alphabet, special_0, special_1);
  return alphabet;
}

}  // namespace

constexpr Base64Alphabet kStandardAlphabet = make_alphabet('+', '/', true, '/', '=');
constexpr Base64Alphabet kUrlAlphabet = make_alphabet('-', '_', false, '_', '_');

size_t encode_groups_portable(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                              size_t num_groups) {
  const char* digits = alphabet.digits;
  for (size_t i = 0; i < num_groups; ++i, in += 3, out += 4) {
    const uint32_t bits = static_cast<uint32_t>(in[0]) << 16 | in[1] << 8 | in[2];
    out[0] = digits[bits >> 18];
    out[1] = digits[bits >> 12 & 63];
    out[2] = digits[bits >> 6 & 63];
    out[3] = digits[bits & 63];
  }
  return num_groups;
}

size_t decode_groups_portable(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                              size_t num_groups) {
  for (size_t i = 0; i < num_groups; ++i, in += 4, out += 3) {
    uint32_t values[4];
    for (int k = 0; k < 4; ++k) values[k] = alphabet.values[static_cast<uint8_t>(in[k])];
    // A value has six bits; only kNoDigit has the highest.
    if ((values[0] | values[1] | values[2] | values[3]) > 63) return i;
    const uint32_t bits = values[0] << 18 | values[1] << 12 | values[2] << 6 | values[3];
    out[0] = static_cast<uint8_t>(bits >> 16);
    out[1] = static_cast<uint8_t>(bits >> 8);
    out[2] = static_cast<uint8_t>(bits);
  }
  return num_groups;
}

}  // namespace plx::digest
