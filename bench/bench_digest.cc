// Digests and encodings against libcrypto and memcpy, each kernel by name.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <plx/digest.h>

// Behind ours: they define some of our names as macros.
#include <nettle/base64.h>
#include <nettle/des.h>
#include <nettle/hmac.h>
#include <nettle/sha2.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>
#include <string.h>

#include <string>
#include <vector>

#include "bench/support.h"
#include "digest/arch/kernels.h"
#include "digest/des.h"
#include "digest/judge.h"

namespace plx_bench {
namespace {

using plx::digest::kStandardAlphabet;
using plx_test::bytes_of;
using plx_test::random_bytes;

struct Size {
  const char* name;
  unsigned bytes;
};
constexpr Size kSizes[] = {{"16", 16},   {"64", 64},     {"256", 256},       {"1K", 1024},
                           {"4K", 4096}, {"16K", 16384}, {"128K", 1u << 17}, {"1M", 1u << 20}};

std::string row(const char* work, const Size& size) { return std::string(work) + "/" + size.name; }

uint8_t g_digest[64];

void peer_sha256(const uint8_t* data, size_t size, size_t piece) {
  SHA256_CTX ctx;
  SHA256_Init(&ctx);
  for (; size > piece; size -= piece, data += piece) SHA256_Update(&ctx, data, piece);
  SHA256_Update(&ctx, data, size);
  SHA256_Final(g_digest, &ctx);
}

void add_sha256() {
  for (const Size& size : kSizes) {
    const std::string data = random_bytes(size.bytes);
    const auto peer = [=] { peer_sha256(bytes_of(data), data.size(), data.size()); };
    compare(
        row("sha256", size),
        [=] {
          Sha256Context ctx;
          Sha256_Init(&ctx);
          Sha256_Update(&ctx, bytes_of(data), size.bytes);
          Sha256_Final(&ctx, g_digest);
        },
        peer, size.bytes);
    compare(
        row("sha256-second", size), [=] { sha256_get(g_digest, bytes_of(data), size.bytes); }, peer,
        size.bytes);
    compare(
        row("sha256-streamed", size),
        [=] {
          constexpr unsigned kPiece = 1000;
          Sha256Context ctx;
          Sha256_Init(&ctx);
          const uint8_t* at = bytes_of(data);
          unsigned left = size.bytes;
          for (; left > kPiece; left -= kPiece, at += kPiece) Sha256_Update(&ctx, at, kPiece);
          Sha256_Update(&ctx, at, left);
          Sha256_Final(&ctx, g_digest);
        },
        [=] { peer_sha256(bytes_of(data), data.size(), 1000); }, size.bytes);
    add(
        row("sha256", size), "peer:nettle",
        [=] {
          struct sha256_ctx ctx;
          nettle_sha256_init(&ctx);
          nettle_sha256_update(&ctx, data.size(), bytes_of(data));
          nettle_sha256_digest(&ctx, 32, g_digest);
        },
        size.bytes);
    for (const auto& kernel : plx::digest::kSha256Kernels) {
      if (!kernel.supported() || size.bytes < 64) continue;
      add(
          row("sha256", size), std::string("plx:") + kernel.name,
          [=] {
            uint32_t state[8] = {};
            kernel.blocks(state, bytes_of(data), size.bytes / 64);
            benchmark::DoNotOptimize(state);
          },
          size.bytes);
    }
    compare(
        row("hmac-sha256", size),
        [=] {
          hmac_sha256_get(g_digest, bytes_of(data), size.bytes, bytes_of("0123456789abcdef"), 16);
        },
        [=] {
          unsigned length;
          HMAC(EVP_sha256(), "0123456789abcdef", 16, bytes_of(data), data.size(), g_digest,
               &length);
        },
        size.bytes);
  }
}

// The peer runs the blocks that we run, its padding off, its key set once.
void add_3des() {
  const std::string key = random_bytes(24);
  static Des3Context ctx;
  PLX_3des_set3keys(&ctx, bytes_of(key), bytes_of(key) + 8, bytes_of(key) + 16);
  for (const Size& size : kSizes) {
    const std::string data = random_bytes(size.bytes + 8);
    for (bool encrypt : {true, false}) {
      const char* const work = encrypt ? "3des-encrypt" : "3des-decrypt";
      std::vector<uint8_t> out(size.bytes + 8);
      EVP_CIPHER_CTX* evp = EVP_CIPHER_CTX_new();
      EVP_CipherInit_ex(evp, EVP_des_ede3_ecb(), nullptr, bytes_of(key), nullptr, encrypt);
      EVP_CIPHER_CTX_set_padding(evp, 0);
      compare(
          row(work, size),
          [=]() mutable {
            (encrypt ? PLX_3des_encrypt : PLX_3des_decrypt)(&ctx, bytes_of(data), out.data(),
                                                            static_cast<int>(size.bytes));
          },
          [=]() mutable {
            int length;
            EVP_CipherUpdate(evp, out.data(), &length, bytes_of(data),
                             static_cast<int>(data.size()));
          },
          size.bytes);
      for (const auto& kernel : plx::digest::kDesKernels) {
        if (!kernel.supported()) continue;
        add(
            row(work, size), std::string("plx:") + kernel.name,
            [=]() mutable {
              kernel.blocks(encrypt ? ctx.encSubkeys : ctx.decSubkeys, 3, out.data(),
                            bytes_of(data), data.size() / 8);
            },
            size.bytes);
      }
      struct des3_ctx nettle;
      nettle_des3_set_key(&nettle, bytes_of(key));
      add(
          row(work, size), "peer:nettle",
          [=]() mutable {
            (encrypt ? nettle_des3_encrypt : nettle_des3_decrypt)(&nettle, data.size(), out.data(),
                                                                  bytes_of(data));
          },
          size.bytes);
    }
  }
}

void add_base64(const Size& size) {
  const std::string data = random_bytes(size.bytes);
  std::string text(size.bytes / 3 * 4 + 8, '\0'), url = text;
  const unsigned room = static_cast<unsigned>(text.size());
  text.resize(PLX_b64_encode(bytes_of(data), size.bytes, &text[0], room));
  PLX_base64UrlEncoder(&url[0], room, bytes_of(data), size.bytes);
  url.resize(strlen(url.c_str()));
  const unsigned length = static_cast<unsigned>(text.size());
  std::vector<char> chars(room);
  std::vector<uint8_t> bytes(room);
  const auto copy = [=]() mutable {
    memcpy(chars.data(), text.data(), text.size());
    benchmark::DoNotOptimize(chars.data());
  };
  const auto encode = [=]() mutable {
    PLX_b64_encode(bytes_of(data), size.bytes, chars.data(), room);
  };
  const auto decode = [=]() mutable { PLX_b64_decode(text.data(), length, bytes.data()); };
  if (size.bytes == 48) {
    compare(
        row("base64-encode", size), encode,
        [=]() mutable { EVP_EncodeBlock(bytes.data(), bytes_of(data), 48); }, size.bytes);
    compare(
        row("base64-decode", size), decode,
        [=]() mutable { EVP_DecodeBlock(bytes.data(), bytes_of(text), 64); }, size.bytes);
    return;
  }
  compare(row("base64-encode", size), encode, copy, size.bytes);
  compare(row("base64-decode", size), decode, copy, size.bytes);
  compare(
      row("base64url-encode", size),
      [=]() mutable { PLX_base64UrlEncoder(chars.data(), room, bytes_of(data), size.bytes); }, copy,
      size.bytes);
  compare(
      row("base64url-decode", size),
      [=]() mutable {
        PLX_base64UrlDecode(bytes.data(), room, url.data(), static_cast<int>(url.size()));
      },
      copy, size.bytes);
  add(
      row("base64-encode", size), "peer:libcrypto",
      [=]() mutable {
        EVP_EncodeBlock(bytes.data(), bytes_of(data), static_cast<int>(size.bytes));
      },
      size.bytes);
  add(
      row("base64-encode", size), "peer:nettle",
      [=]() mutable { nettle_base64_encode_raw(chars.data(), data.size(), bytes_of(data)); },
      size.bytes);
  for (const auto& kernel : plx::digest::kBase64Kernels) {
    if (!kernel.supported()) continue;
    const std::string variant = std::string("plx:") + kernel.name;
    add(
        row("base64-encode", size), variant,
        [=]() mutable {
          kernel.encode_groups(kStandardAlphabet, chars.data(), bytes_of(data), size.bytes / 3);
        },
        size.bytes);
    add(
        row("base64-decode", size), variant,
        [=]() mutable {
          kernel.decode_groups(kStandardAlphabet, bytes.data(), text.data(), size.bytes / 3);
        },
        size.bytes);
  }
}

}  // namespace

void register_benchmarks() {
  add_sha256();
  add_3des();
  add_base64({"48", 48});
  for (const Size& size : kSizes) add_base64(size);
}

}  // namespace plx_bench
