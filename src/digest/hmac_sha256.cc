// HMAC-SHA-256 (RFC 2104) over the second family.
#include <plx/digest.h>
#include <stddef.h>
#include <string.h>

#include "digest/bytes.h"
#include "digest/sha256_constants.h"
#include "digest/sha256_packed.h"
#include "internal/wipe.h"

static_assert(offsetof(HmacSha256Ctx, digest) == 0);
static_assert(offsetof(HmacSha256Ctx, keyBlock) == 32);
static_assert(offsetof(HmacSha256Ctx, sha) == 96);
static_assert(sizeof(HmacSha256Ctx) == 232);

namespace {

using namespace plx::digest;

constexpr uint8_t kInnerMask = 0x36;
constexpr uint8_t kOuterMask = 0x5C;

void mask_key_block(HmacSha256Ctx* ctx, uint8_t mask) {
  const uint32_t masks = mask * 0x01010101u;
  for (size_t i = 0; i < sizeof ctx->keyBlock; i += sizeof(Quad)) {
    Quad part;
    memcpy(&part, ctx->keyBlock + i, sizeof part);
    part ^= masks;
    memcpy(ctx->keyBlock + i, &part, sizeof part);
  }
}

void start_with_key_block(Sha256Ctx* sha, const HmacSha256Ctx* ctx) {
  packed::start(sha);
  packed::append(sha, ctx->keyBlock, sizeof ctx->keyBlock);
}

void start(HmacSha256Ctx* ctx, const uint8_t* key, int key_size) {
  memset(ctx->keyBlock, 0, sizeof ctx->keyBlock);
  if (key_size > static_cast<int>(sizeof ctx->keyBlock)) {
    packed::start(&ctx->sha);
    packed::finish(&ctx->sha, key, static_cast<size_t>(key_size));
    memcpy(ctx->keyBlock, ctx->sha.hash, sizeof ctx->sha.hash);
  } else if (key_size > 0) {
    copy_part(ctx->keyBlock, key, static_cast<size_t>(key_size));
  }
  mask_key_block(ctx, kInnerMask);
  start_with_key_block(&ctx->sha, ctx);
}

void finish(HmacSha256Ctx* ctx, const uint8_t* data, size_t size) {
  packed::finish(&ctx->sha, data, size);
  memcpy(ctx->digest, ctx->sha.hash, sizeof ctx->digest);
  mask_key_block(ctx, kInnerMask ^ kOuterMask);
  start_with_key_block(&ctx->sha, ctx);
  packed::finish(&ctx->sha, ctx->digest, sizeof ctx->digest);
  memcpy(ctx->digest, ctx->sha.hash, sizeof ctx->digest);
}

// The two key blocks are hashed one right behind the other: neither waits for the other, so the
// processor works on both at once.
void hash_at_once(uint8_t* out, const uint8_t* data, size_t size, const uint8_t* key,
                  int key_size) {
  struct {
    HmacSha256Ctx ctx;
    Sha256Ctx outer;
  } both;
  auto& ctx = both.ctx;
  auto& outer = both.outer;
  start(&ctx, key, key_size);
  mask_key_block(&ctx, kInnerMask ^ kOuterMask);
  start_with_key_block(&outer, &ctx);
  packed::finish(&ctx.sha, data, size);
  packed::finish(&outer, ctx.sha.hash, sizeof ctx.sha.hash);
  memcpy(out, outer.hash, sizeof outer.hash);
  plx::wipe(&both, sizeof both);
}

}  // namespace

extern "C" {

void hmac_sha256_initialize(HmacSha256Ctx* ctx, const unsigned char* key, int keyLen) {
  start(ctx, key, keyLen);
  plx::wipe_spilled_words();
}

void hmac_sha256_update(HmacSha256Ctx* ctx, const unsigned char* data, unsigned int len) {
  packed::append(&ctx->sha, data, len);
  plx::wipe_spilled_words();
}

void hmac_sha256_finalize(HmacSha256Ctx* ctx, const unsigned char* data, unsigned int len) {
  finish(ctx, data, len);
  plx::wipe_spilled_words();
}

int hmac_sha256_get(unsigned char out[32], const unsigned char* data, unsigned int dataLen,
                    const unsigned char* key, int keyLen) {
  hash_at_once(out, data, dataLen, key, keyLen);
  plx::wipe_spilled_words();
  return static_cast<int>(kSha256DigestSize);
}

}  // extern "C"
