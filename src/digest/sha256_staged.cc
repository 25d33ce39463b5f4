#include "digest/sha256_staged.h"

#include <stddef.h>

#include "digest/arch/kernels.h"
#include "digest/sha256_constants.h"
#include "digest/sha256_functions.h"
#include "internal/wipe.h"

static_assert(offsetof(Sha256Context, state) == 0);
static_assert(offsetof(Sha256Context, count) == 32);
static_assert(offsetof(Sha256Context, buffer) == 40);
static_assert(sizeof(Sha256Context) == 104);

namespace plx::digest::staged {
namespace {

constexpr size_t kLengthOffset = kSha256BlockSize - sizeof(uint64_t);

void compress(uint32_t* state, const uint8_t* block, uint32_t (&w)[64]) {
  for (int t = 0; t < 16; ++t) w[t] = load_be32(block + 4 * t);
  for (int t = 16; t < 64; ++t) {
    w[t] = small_sigma1(w[t - 2]) + w[t - 7] + small_sigma0(w[t - 15]) + w[t - 16];
  }
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  uint32_t e = state[4], f = state[5], g = state[6], h = state[7];
#pragma GCC unroll 8
  for (int t = 0; t < 64; ++t) {
    const uint32_t t1 = h + big_sigma1(e) + choose(e, f, g) + kSha256RoundConstants[t] + w[t];
    const uint32_t t2 = big_sigma0(a) + majority(a, b, c);
    h = g, g = f, f = e, e = d + t1;
    d = c, c = b, b = a, a = t1 + t2;
  }
  state[0] += a, state[1] += b, state[2] += c, state[3] += d;
  state[4] += e, state[5] += f, state[6] += g, state[7] += h;
}

// What a block keeps of itself, and what is put behind that: 0x80 and zeros. Read from as many
// bytes before the middle as are filled.
struct Overlay {
  uint8_t kept[2 * kSha256BlockSize];
  uint8_t added[2 * kSha256BlockSize];
};

constexpr Overlay make_overlay() {
  Overlay overlay{};
  for (size_t i = 0; i < kSha256BlockSize; ++i) overlay.kept[i] = 0xFF;
  overlay.added[kSha256BlockSize] = 0x80;
  return overlay;
}

constexpr Overlay kOverlay = make_overlay();

// Pads the block behind its first `fill` bytes, with a length when that is not 0 (and has room).
void pad(uint8_t* block, size_t fill, uint64_t num_bits) {
  const uint64_t big_endian = __builtin_bswap64(num_bits);
  const Quad length = {0, 0, static_cast<uint32_t>(big_endian),
                       static_cast<uint32_t>(big_endian >> 32)};
  for (size_t i = 0; i < kSha256BlockSize; i += sizeof(Quad)) {
    Quad part, kept, added;
    memcpy(&part, block + i, sizeof part);
    memcpy(&kept, kOverlay.kept + kSha256BlockSize - fill + i, sizeof kept);
    memcpy(&added, kOverlay.added + kSha256BlockSize - fill + i, sizeof added);
    part = (part & kept) | added;
    if (i == kSha256BlockSize - sizeof(Quad)) part |= length;
    memcpy(block + i, &part, sizeof part);
  }
}

void blocks(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  sha256_blocks_or(blocks_portable)(state, data, num_blocks);
}

}  // namespace

void blocks_portable(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  uint32_t w[64];
  for (; num_blocks != 0; --num_blocks, data += kSha256BlockSize) compress(state, data, w);
  wipe(w, sizeof w);
}

void start(Sha256Context* ctx) {
  memcpy(ctx->state, kSha256InitialState, sizeof ctx->state);
  ctx->count = 0;
}

// The buffer is kept as if every byte had passed through it, although whole blocks are compressed
// where they stand: a context shows the same bytes however its message was cut.
void append(Sha256Context* ctx, const uint8_t* data, size_t size) {
  if (size == 0) return;
  const size_t fill = ctx->count % kSha256BlockSize;
  const size_t room = kSha256BlockSize - fill;
  ctx->count += size;
  if (size < room) {
    copy_part(ctx->buffer + fill, data, size);
    return;
  }
  if (fill != 0) {
    copy_part(ctx->buffer + fill, data, room);
    blocks(ctx->state, ctx->buffer, 1);
    data += room;
    size -= room;
  }
  if (const size_t num_blocks = size / kSha256BlockSize) {
    blocks(ctx->state, data, num_blocks);
    data += num_blocks * kSha256BlockSize;
    memcpy(ctx->buffer, data - kSha256BlockSize, kSha256BlockSize);
  }
  copy_part(ctx->buffer, data, size % kSha256BlockSize);
}

void finish(Sha256Context* ctx, uint8_t* digest) {
  const size_t fill = ctx->count % kSha256BlockSize;
  const uint64_t num_bits = ctx->count * 8;
  pad(ctx->buffer, fill, fill < kLengthOffset ? num_bits : 0);
  blocks(ctx->state, ctx->buffer, 1);
  if (fill >= kLengthOffset) {
    memset(ctx->buffer, 0, kLengthOffset);
    store_be64(ctx->buffer + kLengthOffset, num_bits);
    blocks(ctx->state, ctx->buffer, 1);
  }
  store_digest(digest, ctx->state);
  // Callers depend on the context being ready for the next message.
  start(ctx);
}

void hash(uint8_t* digest, const uint8_t* data, size_t size) {
  Sha256Context ctx;
  start(&ctx);
  append(&ctx, data, size);
  finish(&ctx, digest);
  wipe(&ctx, sizeof ctx);
  wipe_spilled_words();
}

}  // namespace plx::digest::staged

extern "C" {

void Sha256_Init(Sha256Context* ctx) { plx::digest::staged::start(ctx); }

void Sha256_Update(Sha256Context* ctx, const unsigned char* data, unsigned int len) {
  plx::digest::staged::append(ctx, data, len);
  plx::wipe_spilled_words();
}

void Sha256_Final(Sha256Context* ctx, unsigned char digest[32]) {
  plx::digest::staged::finish(ctx, digest);
  plx::wipe_spilled_words();
}

unsigned char* SHA256(const unsigned char* data, size_t len, unsigned char* md) {
  static unsigned char shared_digest[32];
  unsigned char* digest = md != nullptr ? md : shared_digest;
  plx::digest::staged::hash(digest, data, len);
  return digest;
}

}  // extern "C"
