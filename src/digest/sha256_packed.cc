#include "digest/sha256_packed.h"

#include <stddef.h>

#include <algorithm>

#include "digest/arch/kernels.h"
#include "digest/sha256_constants.h"
#include "digest/sha256_functions.h"
#include "internal/wipe.h"

static_assert(offsetof(Sha256Ctx, hash) == 0);
static_assert(offsetof(Sha256Ctx, block) == 32);
static_assert(offsetof(Sha256Ctx, state) == 96);
static_assert(offsetof(Sha256Ctx, bitCount) == 128);
static_assert(sizeof(Sha256Ctx) == 136);

namespace plx::digest::packed {
namespace {

// One round on the working variables; `s[(i - t) mod 8]` is variable i of round t, so that nothing
// is moved.
inline void round(uint32_t* s, int t, uint32_t constant_and_word) {
  const auto at = [s, t](int i) -> uint32_t& { return s[(i - t) & 7]; };
  const uint32_t t1 = at(7) + big_sigma1(at(4)) + choose(at(4), at(5), at(6)) + constant_and_word;
  at(3) += t1;
  at(7) = t1 + big_sigma0(at(0)) + majority(at(0), at(1), at(2));
}

void compress(uint32_t* state, uint32_t (&w)[16]) {
  uint32_t s[8];
  memcpy(s, state, sizeof s);
  for (int base = 0; base < 64; base += 16) {
#pragma GCC unroll 16
    for (int t = 0; t < 16; ++t) {
      if (base != 0) {
        w[t] += small_sigma1(w[(t + 14) & 15]) + w[(t + 9) & 15] + small_sigma0(w[(t + 1) & 15]);
      }
      round(s, t, kSha256RoundConstants[base + t] + w[t]);
    }
  }
  for (int i = 0; i < 8; ++i) state[i] += s[i];
}

void blocks(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  sha256_blocks_or(blocks_portable)(state, data, num_blocks);
}

constexpr size_t kLengthOffset = kSha256BlockSize - sizeof Sha256Ctx::bitCount;

void add_to_count(Sha256Ctx* ctx, size_t size) {
  store_be64(ctx->bitCount, load_be64(ctx->bitCount) + uint64_t{size} * 8);
}

// Where the next byte goes. Callers depend on the position coming from the last two bytes of the
// count.
size_t block_position(const Sha256Ctx* ctx) {
  return (ctx->bitCount[6] << 8 | ctx->bitCount[7]) / 8 % kSha256BlockSize;
}

// 1 to 8 bytes as one number, the first of them on top.
uint64_t load_top(const uint8_t* data, size_t size) {
  if (size >= 4) {
    const uint64_t first = load_be32(data), last = load_be32(data + size - 4);
    return first << 32 | last << (64 - 8 * size);
  }
  const uint64_t first = data[0], middle = data[size / 2], last = data[size - 1];
  return first << 56 | middle << (56 - 8 * (size / 2)) | last << (64 - 8 * size);
}

// 1 to 8 bytes join the zeros that a block holds where nothing is filled in yet.
void pack_few(uint32_t* block, size_t position, const uint8_t* data, size_t size) {
  const uint64_t bytes = load_top(data, size);
  const size_t in_word = position % 4, shift = 8 * in_word;
  uint32_t* const words = block + position / 4;
  words[0] |= static_cast<uint32_t>(bytes >> 32 >> shift);
  if (in_word + size <= 4) return;
  words[1] |= static_cast<uint32_t>(bytes >> shift);
  if (in_word + size > 8) words[2] |= static_cast<uint32_t>(bytes << (32 - shift));
}

void pack(uint32_t* block, size_t position, const uint8_t* data, size_t size) {
  if (size > 8) {
    const size_t head = -position % 4;
    if (head != 0) pack_few(block, position, data, head);
    size_t i = head;
    for (position += head; size - i >= sizeof(Quad); i += sizeof(Quad), position += sizeof(Quad)) {
      const Quad words = load_swapped(data + i);
      memcpy(block + position / 4, &words, sizeof words);
    }
    for (; size - i >= 4; i += 4, position += 4) block[position / 4] = load_be32(data + i);
    data += i;
    size -= i;
  }
  if (size != 0) pack_few(block, position, data, size);
}

// As load_swapped, of words that were just stored one by one: a load of four would wait for the
// stores to leave the processor.
Quad load_swapped_singly(const void* words) {
  const auto* const at = static_cast<const volatile uint32_t*>(words);
  const Quad loaded = {at[0], at[1], at[2], at[3]};
  return load_swapped(&loaded);
}

// The words of a block as bytes, which may take their place.
template <Quad (*kLoad)(const void*)>
void unpack(uint8_t* bytes, const uint32_t* block) {
  for (int i = 0; i < 16; i += 4) {
    const Quad words = kLoad(block + i);
    memcpy(bytes + 4 * i, &words, sizeof words);
  }
}

// The words become bytes in their place, and then nothing.
void compress_packed(Sha256Ctx* ctx) {
  auto* const bytes = reinterpret_cast<uint8_t*>(ctx->block);
  unpack<load_swapped_singly>(bytes, ctx->block);
  blocks(ctx->state, bytes, 1);
  memset(ctx->block, 0, sizeof ctx->block);
}

// From the block position before the data, which is counted already.
void append_at(Sha256Ctx* ctx, size_t position, const uint8_t* data, size_t size) {
  if (position != 0) {
    const size_t taken = std::min(size, kSha256BlockSize - position);
    pack(ctx->block, position, data, taken);
    position += taken;
    if (position < kSha256BlockSize) return;
    compress_packed(ctx);
    data += taken;
    size -= taken;
  }
  if (const size_t num_blocks = size / kSha256BlockSize) {
    blocks(ctx->state, data, num_blocks);
    data += num_blocks * kSha256BlockSize;
  }
  pack(ctx->block, 0, data, size % kSha256BlockSize);
}

}  // namespace

void blocks_portable(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  uint32_t w[16];
  for (; num_blocks != 0; --num_blocks, data += kSha256BlockSize) {
    for (int t = 0; t < 16; ++t) w[t] = load_be32(data + 4 * t);
    compress(state, w);
  }
  wipe(w, sizeof w);
}

void start(Sha256Ctx* ctx) {
  memset(ctx->block, 0, sizeof ctx->block);
  memcpy(ctx->state, kSha256InitialState, sizeof ctx->state);
  memset(ctx->bitCount, 0, sizeof ctx->bitCount);
}

void append(Sha256Ctx* ctx, const uint8_t* data, size_t size) {
  const size_t position = block_position(ctx);
  add_to_count(ctx, size);
  if (size - 1 < 8 && position + size < kSha256BlockSize) {  // small pieces pass few tests
    pack_few(ctx->block, position, data, size);
  } else {
    append_at(ctx, position, data, size);
  }
}

// The end of the message is put together as bytes: out of the words, or of the data when no word is
// filled. The padding is copied whole, so that there may be a second block behind the first.
void finish(Sha256Ctx* ctx, const uint8_t* data, size_t size) {
  uint8_t last[2 * kSha256BlockSize];
  if (block_position(ctx) != 0) {
    append(ctx, data, size);
    unpack<load_swapped>(last, ctx->block);
    memset(ctx->block, 0, sizeof ctx->block);
  } else {
    const size_t tail_size = size % kSha256BlockSize;
    append(ctx, data, size - tail_size);
    copy_part(last, data + (size - tail_size), tail_size);
    add_to_count(ctx, tail_size);
  }
  const size_t fill = block_position(ctx);
  const size_t num_blocks = fill < kLengthOffset ? 1 : 2;
  const uint64_t num_bits = load_be64(ctx->bitCount);
  memcpy(last + fill, kSha256Padding, kSha256BlockSize);
  const uint64_t big_endian = __builtin_bswap64(num_bits);
  uint8_t* const end = last + num_blocks * kSha256BlockSize;
  if (last + fill < end - sizeof(Quad)) {
    const Quad zeros_and_length = {0, 0, static_cast<uint32_t>(big_endian),
                                   static_cast<uint32_t>(big_endian >> 32)};
    memcpy(end - sizeof(Quad), &zeros_and_length, sizeof(Quad));
  } else {
    memcpy(end - sizeof big_endian, &big_endian, sizeof big_endian);
  }
  blocks(ctx->state, last, num_blocks);
  // The padding counts like data: callers that look at the count find it at the end of a block.
  add_to_count(ctx, num_blocks * kSha256BlockSize - fill);
  store_digest(ctx->hash, ctx->state);
  wipe(last, sizeof last);
}

}  // namespace plx::digest::packed

extern "C" {

void sha256_initialize(Sha256Ctx* ctx) { plx::digest::packed::start(ctx); }

void sha256_update(Sha256Ctx* ctx, const unsigned char* data, unsigned int len) {
  plx::digest::packed::append(ctx, data, len);
  plx::wipe_spilled_words();
}

void sha256_finalize(Sha256Ctx* ctx, const unsigned char* data, unsigned int len) {
  plx::digest::packed::finish(ctx, data, len);
  plx::wipe_spilled_words();
}

void sha256_get(unsigned char out[32], const unsigned char* data, unsigned int len) {
  Sha256Ctx ctx;
  plx::digest::packed::start(&ctx);
  plx::digest::packed::finish(&ctx, data, len);
  memcpy(out, ctx.hash, sizeof ctx.hash);
  plx::wipe(&ctx, sizeof ctx);
  plx::wipe_spilled_words();
}

}  // extern "C"
