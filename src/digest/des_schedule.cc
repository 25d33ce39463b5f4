// The key schedule of FIPS 46-3.
#include <string.h>

#include "digest/bytes.h"
#include "digest/des.h"
#include "digest/des_tables.h"
#include "internal/wipe.h"

static_assert(sizeof(DesContext) == 256);
static_assert(sizeof(Des3Context) == 768);

namespace plx::digest::des {
namespace {

// A choice of bits by one look-up for each four bits of the input. Bits are numbered from 1, the
// most significant of `kNumBits`.
template <int kNumBits>
struct NibbleChoice {
  uint64_t table[kNumBits / 4][16] = {};

  // Bit chosen[i] of the input becomes the bit of weight weight(i).
  template <size_t kCount, typename Weight>
  constexpr NibbleChoice(const uint8_t (&chosen)[kCount], Weight weight) {
    for (size_t i = 0; i < kCount; ++i) {
      const int position = chosen[i] - 1;
      for (unsigned nibble = 0; nibble < 16; ++nibble) {
        if (nibble >> (3 - position % 4) & 1) table[position / 4][nibble] |= weight(i);
      }
    }
  }

  uint64_t operator()(uint64_t bits) const {
    uint64_t result = 0;
    for (int i = 0; i < kNumBits / 4; ++i) {
      result |= table[i][bits >> (kNumBits - 4 - 4 * i) & 15];
    }
    return result;
  }
};

// C in the upper 28 of 56 bits, D in the lower.
constexpr uint64_t weight_in_halves(size_t i) { return uint64_t{1} << (55 - i); }

constexpr uint64_t weight_in_round_key(size_t i) {
  return uint64_t{1} << round_key_shift(static_cast<int>(i));
}

constexpr NibbleChoice<64> kChoice1(kPc1, weight_in_halves);
constexpr NibbleChoice<56> kChoice2(kPc2, weight_in_round_key);

constexpr uint32_t rotate_left_28(uint32_t half, int count) {
  return (half << count | half >> (28 - count)) & 0x0FFFFFFF;
}

template <typename Context, typename... Keys>
[[gnu::noinline]] unsigned int schedule_passes(Context* ctx, const Keys*... keys) {
  if (ctx == nullptr || (... || (keys == nullptr))) return 0;
  constexpr int kNumPasses = sizeof...(keys);
  const uint8_t* const key_of_pass[] = {keys...};
  for (int pass = 0; pass < kNumPasses; ++pass) {
    uint32_t forward[kWordsPerPass], reversed[kWordsPerPass];
    schedule_key(forward, key_of_pass[pass]);
    reverse_rounds(reversed, forward);
    // Encryption runs the middle key backwards; decryption runs everything in mirror image.
    const bool is_forward = pass % 2 == 0;
    uint32_t* enc = ctx->encSubkeys + pass * kWordsPerPass;
    uint32_t* dec = ctx->decSubkeys + (kNumPasses - 1 - pass) * kWordsPerPass;
    memcpy(enc, is_forward ? forward : reversed, sizeof forward);
    memcpy(dec, is_forward ? reversed : forward, sizeof forward);
    wipe(forward, sizeof forward);
    wipe(reversed, sizeof reversed);
  }
  return 0;
}

template <typename Context, typename... Keys>
unsigned int set_keys(Context* ctx, const Keys*... keys) {
  const unsigned int result = schedule_passes(ctx, keys...);
  wipe_spilled_words();
  return result;
}

}  // namespace

void schedule_key(uint32_t* subkeys, const uint8_t* key) {
  const uint64_t halves = kChoice1(load_be64(key));
  uint32_t c = static_cast<uint32_t>(halves >> 28);
  uint32_t d = static_cast<uint32_t>(halves & 0x0FFFFFFF);
  for (int rotation : kRotations) {
    c = rotate_left_28(c, rotation);
    d = rotate_left_28(d, rotation);
    const uint64_t round_key = kChoice2(uint64_t{c} << 28 | d);
    *subkeys++ = static_cast<uint32_t>(round_key >> 32);
    *subkeys++ = static_cast<uint32_t>(round_key);
  }
}

void reverse_rounds(uint32_t* reversed, const uint32_t* subkeys) {
  for (int i = 0; i < kNumRounds; ++i) {
    reversed[2 * i] = subkeys[2 * (kNumRounds - 1 - i)];
    reversed[2 * i + 1] = subkeys[2 * (kNumRounds - 1 - i) + 1];
  }
}

}  // namespace plx::digest::des

extern "C" {

unsigned int PLX_des_setKey(DesContext* ctx, const unsigned char key[8]) {
  return plx::digest::des::set_keys(ctx, key);
}

unsigned int PLX_3des_set2keys(Des3Context* ctx, const unsigned char key1[8],
                               const unsigned char key2[8]) {
  return plx::digest::des::set_keys(ctx, key1, key2, key1);
}

unsigned int PLX_3des_set3keys(Des3Context* ctx, const unsigned char key1[8],
                               const unsigned char key2[8], const unsigned char key3[8]) {
  return plx::digest::des::set_keys(ctx, key1, key2, key3);
}

}  // extern "C"
