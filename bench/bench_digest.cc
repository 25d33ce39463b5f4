// Digests and encodings against libcrypto and memcpy, each kernel by name.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <plx/digest.h>

#include <botan/ffi.h>
#include <nettle/base64.h>
#include <nettle/des.h>
#include <nettle/hmac.h>
#include <nettle/sha2.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>
#include <string.h>

#undef sha256_update  // which nettle makes its own

#include <string>
#include <vector>

#include "bench/support.h"
#include "digest/arch/kernels.h"
#include "digest/des.h"
#include "support/judge.h"

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

// A kernel under its name.
template <typename Kernel, typename Work>
void add_kernel(const std::string& row, const Kernel& kernel, Work work, size_t bytes) {
  const std::string variant = std::string("plx:") + kernel.name;
  if (kernel.supported()) {
    add(row, variant, work, bytes);
  } else {
    add_absent(row, variant);
  }
}

std::string row(const char* work, const Size& size) { return std::string(work) + "/" + size.name; }

uint8_t g_digest[64];
const char kMacKey[] = "0123456789abcdef";

// Botan's C interface. Its objects live as long as the program.
const PrivateLibrary& botan() {
  static const PrivateLibrary library("libbotan-2.so.19");
  return library;
}
#define PLX_BOTAN(name) botan().get<decltype(name)>(#name)

// What one init, a run of updates in pieces and one final cost, for any of three implementations.
template <typename Context, typename Init, typename Update, typename Final>
auto in_pieces(const std::string& data, size_t piece, Init init, Update update, Final final) {
  return [=] {
    Context ctx;
    init(&ctx);
    const uint8_t* at = bytes_of(data);
    size_t left = data.size();
    for (; left > piece; left -= piece, at += piece) update(&ctx, at, piece);
    update(&ctx, at, left);
    final(&ctx);
  };
}

auto first_family(const std::string& data, size_t piece) {
  return in_pieces<Sha256Context>(
      data, piece, [](auto* ctx) { Sha256_Init(ctx); },
      [](auto* ctx, const uint8_t* at, size_t size) {
        Sha256_Update(ctx, at, static_cast<unsigned>(size));
      },
      [](auto* ctx) { Sha256_Final(ctx, g_digest); });
}

auto second_family(const std::string& data, size_t piece) {
  return in_pieces<Sha256Ctx>(
      data, piece, [](auto* ctx) { sha256_initialize(ctx); },
      [](auto* ctx, const uint8_t* at, size_t size) {
        sha256_update(ctx, at, static_cast<unsigned>(size));
      },
      [](auto* ctx) { sha256_finalize(ctx, nullptr, 0); });
}

auto libcrypto_sha256(const std::string& data, size_t piece) {
  return in_pieces<SHA256_CTX>(
      data, piece, [](auto* ctx) { SHA256_Init(ctx); },
      [](auto* ctx, const uint8_t* at, size_t size) { SHA256_Update(ctx, at, size); },
      [](auto* ctx) { SHA256_Final(g_digest, ctx); });
}

void add_sha256_peers(const Size& size, const std::string& data) {
  // It has the name of one of ours.
  static const PrivateLibrary libcrypto("libcrypto.so.3");
  auto* const one_shot =
      libcrypto.get<unsigned char*(const unsigned char*, size_t, unsigned char*)>("SHA256");
  add(
      row("sha256", size), "peer:one-shot",
      [=] { one_shot(bytes_of(data), data.size(), g_digest); }, size.bytes);
  add(
      row("sha256", size), "peer:nettle",
      [=] {
        struct sha256_ctx ctx;
        nettle_sha256_init(&ctx);
        nettle_sha256_update(&ctx, data.size(), bytes_of(data));
        nettle_sha256_digest(&ctx, 32, g_digest);
      },
      size.bytes);
  botan_hash_t hash;
  PLX_BOTAN(botan_hash_init)(&hash, "SHA-256", 0);
  auto* const update = PLX_BOTAN(botan_hash_update);
  auto* const final = PLX_BOTAN(botan_hash_final);
  add(
      row("sha256", size), "peer:botan",
      [=] {
        update(hash, bytes_of(data), data.size());
        final(hash, g_digest);
      },
      size.bytes);
}

void add_sha256() {
  for (const Size& size : kSizes) {
    const std::string data = random_bytes(size.bytes);
    compare(row("sha256", size), first_family(data, size.bytes), libcrypto_sha256(data, size.bytes),
            size.bytes);
    compare(row("sha256-second", size), second_family(data, size.bytes),
            libcrypto_sha256(data, size.bytes), size.bytes);
    add_sha256_peers(size, data);
    for (const auto& kernel : plx::digest::kSha256Kernels) {
      if (size.bytes < 64) continue;
      add_kernel(
          row("sha256", size), kernel,
          [=] {
            uint32_t state[8] = {};
            kernel.blocks(state, bytes_of(data), size.bytes / 64);
            benchmark::DoNotOptimize(state);
          },
          size.bytes);
    }
  }
  // In pieces that fit no block, fit one, and leave much or little over.
  for (const Size& size : {Size{"1K", 1024}, Size{"16K", 16384}, Size{"1M", 1u << 20}}) {
    const std::string data = random_bytes(size.bytes);
    for (unsigned piece : {7, 64, 100, 1000}) {
      const std::string pieces = "-by-" + std::to_string(piece);
      const auto peer = libcrypto_sha256(data, piece);
      compare(row(("sha256" + pieces).c_str(), size), first_family(data, piece), peer, size.bytes);
      compare(row(("sha256-second" + pieces).c_str(), size), second_family(data, piece), peer,
              size.bytes);
    }
  }
}

// The longest message that one call takes.
void add_longest_sha256() {
  constexpr unsigned kMost = UINT32_MAX;
  static const auto* const data = reinterpret_cast<const uint8_t*>(repeated_room(kMost));
  compare(
      "sha256/4G", [] { SHA256(data, kMost, g_digest); },
      [] {
        SHA256_CTX ctx;
        SHA256_Init(&ctx);
        SHA256_Update(&ctx, data, kMost);
        SHA256_Final(g_digest, &ctx);
      },
      kMost);
}

void add_hmac(const Size& size) {
  const std::string data = random_bytes(size.bytes);
  compare(
      row("hmac-sha256", size),
      [=] { hmac_sha256_get(g_digest, bytes_of(data), size.bytes, bytes_of(kMacKey), 16); },
      [=] {
        unsigned length;
        HMAC(EVP_sha256(), kMacKey, 16, bytes_of(data), data.size(), g_digest, &length);
      },
      size.bytes);
  add(
      row("hmac-sha256", size), "peer:nettle",
      [=] {
        struct hmac_sha256_ctx ctx;
        nettle_hmac_sha256_set_key(&ctx, 16, bytes_of(kMacKey));
        nettle_hmac_sha256_update(&ctx, data.size(), bytes_of(data));
        nettle_hmac_sha256_digest(&ctx, 32, g_digest);
      },
      size.bytes);
  botan_mac_t mac;
  PLX_BOTAN(botan_mac_init)(&mac, "HMAC(SHA-256)", 0);
  auto* const set_key = PLX_BOTAN(botan_mac_set_key);
  auto* const update = PLX_BOTAN(botan_mac_update);
  auto* const final = PLX_BOTAN(botan_mac_final);
  add(
      row("hmac-sha256", size), "peer:botan",
      [=] {
        set_key(mac, bytes_of(kMacKey), 16);
        update(mac, bytes_of(data), data.size());
        final(mac, g_digest);
      },
      size.bytes);
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
        add_kernel(
            row(work, size), kernel,
            [=]() mutable {
              kernel.blocks(encrypt ? ctx.encSubkeys : ctx.decSubkeys, 3, out.data(),
                            bytes_of(data), data.size() / 8);
            },
            size.bytes);
      }
      botan_block_cipher_t cipher;
      PLX_BOTAN(botan_block_cipher_init)(&cipher, "TripleDES");
      PLX_BOTAN(botan_block_cipher_set_key)(cipher, bytes_of(key), key.size());
      auto* const run = encrypt ? PLX_BOTAN(botan_block_cipher_encrypt_blocks)
                                : PLX_BOTAN(botan_block_cipher_decrypt_blocks);
      add(
          row(work, size), "peer:botan",
          [=]() mutable { run(cipher, bytes_of(data), out.data(), data.size() / 8); }, size.bytes);
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
  auto* const botan_encode = PLX_BOTAN(botan_base64_encode);
  auto* const botan_decode = PLX_BOTAN(botan_base64_decode);
  add(
      row("base64-encode", size), "peer:botan",
      [=]() mutable {
        size_t chars_size = chars.size();
        botan_encode(bytes_of(data), data.size(), chars.data(), &chars_size);
      },
      size.bytes);
  add(
      row("base64-decode", size), "peer:libcrypto",
      [=]() mutable {
        EVP_DecodeBlock(bytes.data(), bytes_of(text), static_cast<int>(text.size()));
      },
      size.bytes);
  add(
      row("base64-decode", size), "peer:botan",
      [=]() mutable {
        size_t bytes_size = bytes.size();
        botan_decode(text.data(), text.size(), bytes.data(), &bytes_size);
      },
      size.bytes);
  for (const auto& kernel : plx::digest::kBase64Kernels) {
    add_kernel(
        row("base64-encode", size), kernel,
        [=]() mutable {
          kernel.encode_groups(kStandardAlphabet, chars.data(), bytes_of(data), size.bytes / 3);
        },
        size.bytes);
    add_kernel(
        row("base64-decode", size), kernel,
        [=]() mutable {
          kernel.decode_groups(kStandardAlphabet, bytes.data(), text.data(), size.bytes / 3);
        },
        size.bytes);
  }
}

}  // namespace

void register_benchmarks() {
  add_sha256();
  add_longest_sha256();
  for (const Size& size : kSizes) add_hmac(size);
  add_3des();
  add_base64({"48", 48});
  for (const Size& size : kSizes) add_base64(size);
}

}  // namespace plx_bench
