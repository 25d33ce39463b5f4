#include "cipher/evp_base64.h"

#include <stdint.h>

#include "cipher/evp.h"

namespace plx::cipher {
namespace {

using EncodeContext = Owned<EVP_ENCODE_CTX, EVP_ENCODE_CTX_free>;

constexpr int kLineOfBytes = 48;  // what makes a line of 64 characters

// The text, its line feeds and its terminator. Above INT_MAX for what cannot be encoded.
uint64_t encoded_size(int len) {
  const uint64_t characters = (static_cast<uint64_t>(len) + 2) / 3 * 4;
  return characters + 1 + (characters + 1) / 64 + 1;
}

// What decoding can give at most, and one byte.
size_t decoded_size(int len) { return (static_cast<size_t>(len) + 2) / 4 * 3 + 1; }

// A context keeps the unfinished rest of its input, and libcrypto frees it as it is. Filling it
// with zero bytes leaves nothing of a key there.
void scrub_encoder(EVP_ENCODE_CTX* ctx) {
  const unsigned char zeros[kLineOfBytes - 1] = {};
  unsigned char none[1];
  int written;
  EVP_EncodeInit(ctx);
  EVP_EncodeUpdate(ctx, none, &written, zeros, sizeof zeros);
}

void scrub_decoder(EVP_ENCODE_CTX* ctx) {
  unsigned char line[64], decoded[kLineOfBytes];
  int written;
  for (unsigned char& c : line) c = 'A';
  EVP_DecodeInit(ctx);
  EVP_DecodeUpdate(ctx, decoded, &written, line, sizeof line);
}

}  // namespace

char* encode_base64(const unsigned char* data, int len) {
  if (data == nullptr || len <= 0) return nullptr;
  const uint64_t size = encoded_size(len);
  if (size > INT_MAX) return nullptr;
  const ErrorMark mark;
  const EncodeContext ctx(EVP_ENCODE_CTX_new());
  if (ctx == nullptr) return nullptr;
  unsigned char* text = new_zeroed_array(static_cast<size_t>(size));
  if (text == nullptr) return nullptr;
  int updated = 0, finished = 0;
  EVP_EncodeInit(ctx.get());
  EVP_EncodeUpdate(ctx.get(), text, &updated, data, len);
  EVP_EncodeFinal(ctx.get(), text + updated, &finished);
  scrub_encoder(ctx.get());
  return reinterpret_cast<char*>(text);
}

unsigned char* decode_base64(char* text, int len, int* out_len) {
  if (text == nullptr || len <= 0 || out_len == nullptr) return nullptr;
  const ErrorMark mark;
  const EncodeContext ctx(EVP_ENCODE_CTX_new());
  if (ctx == nullptr) return nullptr;
  unsigned char* bytes = new_zeroed_array(decoded_size(len));
  if (bytes == nullptr) return nullptr;
  auto* in = reinterpret_cast<unsigned char*>(text);
  int updated = 0, finished = 0;
  EVP_DecodeInit(ctx.get());
  EVP_DecodeUpdate(ctx.get(), bytes, &updated, in, len);
  // Callers depend on the final step writing into the text rather than behind the bytes: with
  // malformed text it counts bytes that stay zero in the result.
  EVP_DecodeFinal(ctx.get(), in + updated, &finished);
  scrub_decoder(ctx.get());
  *out_len = updated + finished;
  return bytes;
}

SecretArray decode_secret(char* text, int len, int* out_len) {
  unsigned char* bytes = decode_base64(text, len, out_len);
  return SecretArray(bytes, WipeArray{bytes != nullptr ? decoded_size(len) : 0});
}

}  // namespace plx::cipher
