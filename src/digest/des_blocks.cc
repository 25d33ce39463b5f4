// The block function of FIPS 46-3 by tables that fold each S-box with the permutation P.
//
// Both halves are kept rotated left by one. The six bits for S2, S4, S6 and S8 (bits 4 to 9, 12 to
// 17, 20 to 25 and 28 to 1 of the half) are then the low bits of the four bytes, and those for S1,
// S3, S5 and S7 after a further rotation right by four.
#include "digest/arch/kernels.h"
#include "digest/bytes.h"
#include "digest/des.h"
#include "digest/des_tables.h"

namespace plx::digest::des {
namespace {

constexpr uint32_t rotate_left(uint32_t word, int count) { return rotate_right(word, 32 - count); }

struct SpTables {
  uint32_t word[8][64] = {};
};

constexpr SpTables make_sp_tables() {
  SpTables tables;
  for (int box = 0; box < 8; ++box) {
    for (unsigned six_bits = 0; six_bits < 64; ++six_bits) {
      const uint32_t selected = select(box, six_bits) << (28 - 4 * box);
      uint32_t permuted = 0;
      for (int i = 0; i < 32; ++i) permuted |= (selected >> (32 - kP[i]) & 1) << (31 - i);
      tables.word[box][six_bits] = rotate_left(permuted, 1);
    }
  }
  return tables;
}

constexpr SpTables kSp = make_sp_tables();

struct Halves {
  uint32_t left, right;
};

// Swaps the bits of `a` under `mask << shift` with those of `b` under `mask`.
inline void swap_bits(uint32_t& a, uint32_t& b, int shift, uint32_t mask) {
  const uint32_t difference = (a >> shift ^ b) & mask;
  b ^= difference;
  a ^= difference << shift;
}

// The initial permutation as a transposition of the bits' 8 by 8 matrix in five exchanges.
inline Halves load_permuted(const uint8_t* block) {
  uint32_t left = load_be32(block), right = load_be32(block + 4);
  swap_bits(left, right, 4, 0x0F0F0F0F);
  swap_bits(left, right, 16, 0x0000FFFF);
  swap_bits(right, left, 2, 0x33333333);
  swap_bits(right, left, 8, 0x00FF00FF);
  swap_bits(left, right, 1, 0x55555555);
  return {rotate_left(left, 1), rotate_left(right, 1)};
}

// The final permutation is its inverse.
inline void store_permuted(uint8_t* block, Halves halves) {
  uint32_t left = rotate_right(halves.left, 1), right = rotate_right(halves.right, 1);
  swap_bits(left, right, 1, 0x55555555);
  swap_bits(right, left, 8, 0x00FF00FF);
  swap_bits(right, left, 2, 0x33333333);
  swap_bits(left, right, 16, 0x0000FFFF);
  swap_bits(left, right, 4, 0x0F0F0F0F);
  store_be32(block, left);
  store_be32(block + 4, right);
}

inline uint32_t cipher_function(uint32_t half, const uint32_t* round_key) {
  const uint32_t even = half ^ round_key[0];
  const uint32_t odd = rotate_right(half, 4) ^ round_key[1];
  return kSp.word[1][even >> 24 & 63] ^ kSp.word[3][even >> 16 & 63] ^ kSp.word[5][even >> 8 & 63] ^
         kSp.word[7][even & 63] ^ kSp.word[0][odd >> 24 & 63] ^ kSp.word[2][odd >> 16 & 63] ^
         kSp.word[4][odd >> 8 & 63] ^ kSp.word[6][odd & 63];
}

// Blocks are independent, so several at once fill the time that one waits for its tables.
template <int kNumLanes>
inline void crypt_lanes(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in) {
  Halves lanes[kNumLanes];
  for (int i = 0; i < kNumLanes; ++i) lanes[i] = load_permuted(in + i * kBlockSize);
  for (; num_passes != 0; --num_passes) {
    for (int round = 0; round < kNumRounds; round += 2, subkeys += 4) {
      for (Halves& h : lanes) h.left ^= cipher_function(h.right, subkeys);
      for (Halves& h : lanes) h.right ^= cipher_function(h.left, subkeys + 2);
    }
    for (Halves& h : lanes) h = {h.right, h.left};
  }
  for (int i = 0; i < kNumLanes; ++i) store_permuted(out + i * kBlockSize, lanes[i]);
}

}  // namespace

void des_blocks_portable(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                         size_t num_blocks) {
  for (; num_blocks >= 3; num_blocks -= 3, in += 3 * kBlockSize, out += 3 * kBlockSize) {
    crypt_lanes<3>(subkeys, num_passes, out, in);
  }
  if (num_blocks == 2) crypt_lanes<2>(subkeys, num_passes, out, in);
  if (num_blocks == 1) crypt_lanes<1>(subkeys, num_passes, out, in);
}

void des_blocks(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                size_t num_blocks) {
  for (const DesKernel& kernel : kDesKernels) {
    if (num_blocks >= kernel.min_blocks && kernel.supported()) {
      return kernel.blocks(subkeys, num_passes, out, in, num_blocks);
    }
  }
}

}  // namespace plx::digest::des
