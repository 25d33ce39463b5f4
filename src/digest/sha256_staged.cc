#include "digest/sha256_staged.h"

#include <stddef.h>

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

void blocks(uint32_t* state, const uint8_t* data, size_t num_blocks) {
  blocks_portable(state, data, num_blocks);
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
    memcpy(ctx->buffer + fill, data, size);
    return;
  }
  if (fill != 0) {
    memcpy(ctx->buffer + fill, data, room);
    blocks(ctx->state, ctx->buffer, 1);
    data += room;
    size -= room;
  }
  if (const size_t num_blocks = size / kSha256BlockSize) {
    blocks(ctx->state, data, num_blocks);
    data += num_blocks * kSha256BlockSize;
    memcpy(ctx->buffer, data - kSha256BlockSize, kSha256BlockSize);
  }
  memcpy(ctx->buffer, data, size % kSha256BlockSize);
}

void finish(Sha256Context* ctx, uint8_t* digest) {
  size_t fill = ctx->count % kSha256BlockSize;
  ctx->buffer[fill++] = 0x80;
  if (fill > kLengthOffset) {
    memset(ctx->buffer + fill, 0, kSha256BlockSize - fill);
    blocks(ctx->state, ctx->buffer, 1);
    fill = 0;
  }
  memset(ctx->buffer + fill, 0, kLengthOffset - fill);
  store_be64(ctx->buffer + kLengthOffset, ctx->count * 8);
  blocks(ctx->state, ctx->buffer, 1);
  for (int i = 0; i < 8; ++i) store_be32(digest + 4 * i, ctx->state[i]);
  // Callers depend on the context being ready for the next message.
  start(ctx);
}

void hash(uint8_t* digest, const uint8_t* data, size_t size) {
  Sha256Context ctx;
  start(&ctx);
  append(&ctx, data, size);
  finish(&ctx, digest);
  wipe(ctx.buffer, sizeof ctx.buffer);
}

}  // namespace plx::digest::staged

extern "C" {

void Sha256_Init(Sha256Context* ctx) { plx::digest::staged::start(ctx); }

void Sha256_Update(Sha256Context* ctx, const unsigned char* data, unsigned int len) {
  plx::digest::staged::append(ctx, data, len);
}

void Sha256_Final(Sha256Context* ctx, unsigned char digest[32]) {
  plx::digest::staged::finish(ctx, digest);
}

unsigned char* SHA256(const unsigned char* data, size_t len, unsigned char* md) {
  static unsigned char shared_digest[32];
  unsigned char* digest = md != nullptr ? md : shared_digest;
  plx::digest::staged::hash(digest, data, len);
  return digest;
}

}  // extern "C"
