// Base64 by NEON, for 32-bit programs: eight groups at once. Loads that take three or four streams
// apart put each byte of a group into a vector of its own, so that nothing is shuffled. This file
// alone is compiled for NEON, so it includes nothing whose functions the linker might share with
// other files.
#include <stddef.h>
#include <stdint.h>

#if defined(__arm__)

#include <arm_neon.h>

#include "digest/arch/base64.h"
#include "digest/base64_groups.h"

namespace plx::digest {
namespace {

constexpr size_t kGroupsAtOnce = 8;

// A table of sixteen bytes, looked up by eight indexes; one above 15 finds 0.
struct Table {
  uint8x8x2_t rows;

  explicit Table(const void* sixteen_bytes) {
    rows.val[0] = vld1_u8(static_cast<const uint8_t*>(sixteen_bytes));
    rows.val[1] = vld1_u8(static_cast<const uint8_t*>(sixteen_bytes) + 8);
  }
  uint8x8_t operator[](uint8x8_t indexes) const { return vtbl2_u8(rows, indexes); }
};

// The run of each value: 0 up to 25, 1 up to 51, then one for each value.
uint8x8_t runs_of(uint8x8_t values) {
  const uint8x8_t past_upper = vcgt_u8(values, vdup_n_u8(25));  // -1 where so
  return vsub_u8(vqsub_u8(values, vdup_n_u8(51)), past_upper);
}

class Decoder {
 public:
  explicit Decoder(const Base64Alphabet& alphabet)
      : rows_(alphabet.digit_rows),
        offsets_(alphabet.value_offsets),
        row_bits_(kRowBits),
        special_0_(vdup_n_u8(static_cast<uint8_t>(alphabet.specials[0]))),
        special_1_(vdup_n_u8(static_cast<uint8_t>(alphabet.specials[1]))) {}

  // The values of eight characters. A byte of `digits` loses a bit of its row when its character
  // is no digit; a character above 127 finds no row.
  uint8x8_t decode(uint8x8_t text, uint8x8_t* digits) const {
    const uint8x8_t high = vshr_n_u8(text, 4);
    const uint8x8_t found = vtst_u8(rows_[vand_u8(text, vdup_n_u8(15))], row_bits_[high]);
    *digits = vand_u8(*digits, found);
    const uint8x8_t is_special = vorr_u8(vceq_u8(text, special_0_), vceq_u8(text, special_1_));
    const uint8x8_t index = vorr_u8(high, vand_u8(is_special, vdup_n_u8(8)));
    return vadd_u8(text, offsets_[index]);
  }

 private:
  static constexpr uint8_t kRowBits[16] = {1, 2, 4, 8, 16, 32, 64, 128};

  Table rows_, offsets_, row_bits_;
  uint8x8_t special_0_, special_1_;
};

}  // namespace

size_t encode_groups_neon(const Base64Alphabet& alphabet, char* out, const uint8_t* in,
                          size_t num_groups) {
  const Table offsets(alphabet.digit_offsets);
  size_t left = num_groups;
  for (; left >= kGroupsAtOnce; left -= kGroupsAtOnce, in += 24, out += 32) {
    const uint8x8x3_t bytes = vld3_u8(in);
    const uint8x8_t six_bits = vdup_n_u8(63);
    uint8x8x4_t values;
    values.val[0] = vshr_n_u8(bytes.val[0], 2);
    values.val[1] = vand_u8(vsli_n_u8(vshr_n_u8(bytes.val[1], 4), bytes.val[0], 4), six_bits);
    values.val[2] = vand_u8(vsli_n_u8(vshr_n_u8(bytes.val[2], 6), bytes.val[1], 2), six_bits);
    values.val[3] = vand_u8(bytes.val[2], six_bits);
    for (auto& vector : values.val) vector = vadd_u8(vector, offsets[runs_of(vector)]);
    vst4_u8(reinterpret_cast<uint8_t*>(out), values);
  }
  return num_groups - left;
}

size_t decode_groups_neon(const Base64Alphabet& alphabet, uint8_t* out, const char* in,
                          size_t num_groups) {
  const Decoder decoder(alphabet);
  size_t left = num_groups;
  for (; left >= kGroupsAtOnce; left -= kGroupsAtOnce, in += 32, out += 24) {
    uint8x8x4_t values = vld4_u8(reinterpret_cast<const uint8_t*>(in));
    uint8x8_t digits = vdup_n_u8(0xFF);
    for (auto& vector : values.val) vector = decoder.decode(vector, &digits);
    if (vget_lane_u64(vreinterpret_u64_u8(digits), 0) != UINT64_MAX) break;
    uint8x8x3_t bytes;
    bytes.val[0] = vsli_n_u8(vshr_n_u8(values.val[1], 4), values.val[0], 2);
    bytes.val[1] = vsli_n_u8(vshr_n_u8(values.val[2], 2), values.val[1], 4);
    bytes.val[2] = vsli_n_u8(values.val[3], values.val[2], 6);
    vst3_u8(out, bytes);
  }
  return num_groups - left;
}

}  // namespace plx::digest

#endif
