// Whole buffers through DES, padded on the way in.
#include <string.h>

#include "container/alloc.h"
#include "digest/des.h"
#include "internal/owned.h"
#include "internal/wipe.h"

namespace plx::digest::des {
namespace {

struct Schedule {
  const uint32_t* subkeys;
  int num_passes;
};

Schedule schedule_of(const void* context, Mode mode) {
  const auto* single = static_cast<const DesContext*>(context);
  const auto* triple = static_cast<const Des3Context*>(context);
  switch (mode) {
    case Mode::kDesEncrypt:
      return {single->encSubkeys, 1};
    case Mode::kDesDecrypt:
      return {single->decSubkeys, 1};
    case Mode::kTripleEncrypt:
      return {triple->encSubkeys, kPassesOfTriple};
    case Mode::kTripleDecrypt:
      return {triple->decSubkeys, kPassesOfTriple};
  }
  return {nullptr, 0};
}

}  // namespace

void crypt_buffer(const void* context, const uint8_t* in, uint8_t* out, int len, Mode mode) {
  if (context == nullptr || out == nullptr || len < 0) return;
  if (in == nullptr && len != 0) return;
  const Schedule schedule = schedule_of(context, mode);
  if (schedule.subkeys == nullptr) return;

  const size_t size = static_cast<size_t>(len);
  const size_t num_missing = kBlockSize - size % kBlockSize;
  const size_t padded_size = size + num_missing;
  const OwnedBlock<uint8_t> padded(static_cast<uint8_t*>(allocate_zeroed(padded_size)));
  if (padded == nullptr) return;
  if (size != 0) memcpy(padded.get(), in, size);
  // Callers depend on a whole appended block being zero, where PKCS#5 would have eight bytes 8.
  if (num_missing != kBlockSize) {
    memset(padded.get() + size, static_cast<int>(num_missing), num_missing);
  }
  des_blocks(schedule.subkeys, schedule.num_passes, out, padded.get(), padded_size / kBlockSize);
  wipe(padded.get(), padded_size);
  wipe_stack<512>();
}

}  // namespace plx::digest::des

extern "C" {

void PLX_3des_encrypt(const Des3Context* ctx, const unsigned char* in, unsigned char* out,
                      int len) {
  plx::digest::des::crypt_buffer(ctx, in, out, len, plx::digest::des::Mode::kTripleEncrypt);
}

void PLX_3des_decrypt(const Des3Context* ctx, const unsigned char* in, unsigned char* out,
                      int len) {
  plx::digest::des::crypt_buffer(ctx, in, out, len, plx::digest::des::Mode::kTripleDecrypt);
}

}  // extern "C"
