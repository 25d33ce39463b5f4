// DES by blocks of 8 bytes. How the round keys stand in a schedule: two words a round; the first
// holds the six bits each for S2, S4, S6 and S8, the second those for S1, S3, S5 and S7, each in
// the low bits of a byte, the most significant byte first.
#ifndef PLX_SRC_DIGEST_DES_H
#define PLX_SRC_DIGEST_DES_H

#include <plx/digest.h>
#include <stddef.h>
#include <stdint.h>

namespace plx::digest::des {

constexpr size_t kBlockSize = 8;
constexpr int kNumRounds = 16;
constexpr int kWordsPerPass = 2 * kNumRounds;
constexpr int kPassesOfTriple = 3;

// Where bit `i` of a round key (from 0, in the order of the standard) stands in its two words,
// taken as one number with the first word on top.
constexpr int round_key_shift(int i) {
  const int box = i / 6;  // from 0, so that the odd ones are S2, S4, S6 and S8
  return (box % 2 == 1 ? 32 : 0) + 24 - box / 2 * 8 + 5 - i % 6;
}

// Writes the 32 words of one pass.
void schedule_key(uint32_t* subkeys, const uint8_t* key);
// Writes the words of `subkeys` with the rounds in reverse order.
void reverse_rounds(uint32_t* reversed, const uint32_t* subkeys);

// Runs `num_passes` passes over each of `num_blocks` blocks, between one initial and one final
// permutation. The order of the round keys alone makes a pass encrypt or decrypt. `out` may be
// `in`.
void des_blocks(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                size_t num_blocks);
// The same by tables, whose indexes depend on key and data.
void des_blocks_portable(const uint32_t* subkeys, int num_passes, uint8_t* out, const uint8_t* in,
                         size_t num_blocks);

// Which schedule of a context a buffer is run through; 0 and 1 take a DesContext, 2 and 3 a
// Des3Context.
enum class Mode { kDesEncrypt, kDesDecrypt, kTripleEncrypt, kTripleDecrypt };

// Pads `len` bytes as plx/digest.h has it and runs them through the context's schedule.
void crypt_buffer(const void* context, const uint8_t* in, uint8_t* out, int len, Mode mode);

}  // namespace plx::digest::des

#endif
