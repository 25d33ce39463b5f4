#include "request/probe.h"

#include <fmt/core.h>
#include <plx/digest.h>

#include "request/answer.h"
#include "support/output.h"

namespace plx::tool {
namespace {

// A text between quotes that the library's reader turns into exactly these bytes.
std::string quote(const std::string& text) {
  std::string quoted = "\"";
  for (const unsigned char c : text) {
    if (c == '"' || c == '\\') {
      quoted += {'\\', static_cast<char>(c)};
    } else if (c < 0x20) {
      quoted += fmt::format("\\u{:04x}", c);
    } else {
      quoted += static_cast<char>(c);
    }
  }
  return quoted + '"';
}

std::string request_text(unsigned mode, int bits, bool padded, const std::string& key_prefix,
                         const std::string& iv_prefix, const char* member,
                         const std::string& text) {
  return fmt::format(
      R"({{"encryptMode":"{}","cipherSize":"{}","paddingMode":"{}","cipherPrefix":{},)"
      R"("IVPrefix":{},"{}":{} }})",
      mode == 1 ? "CBC" : "ECB", bits, padded ? "PKCS5Padding" : "", quote(key_prefix),
      quote(iv_prefix), member, quote(text));
}

std::string as_text(const Secret& secret) {
  return {reinterpret_cast<const char*>(secret.data()), secret.size()};
}

}  // namespace

Secret probe_iv(const std::string& iv_prefix) {
  // The first block of a CBC cipher text is the block cipher of text XOR IV; ECB undoes the cipher.
  const std::string key_prefix(12, 'k');
  const std::string block(16, 't');
  const Answer chained =
      encrypt_request(request_text(1, 128, false, key_prefix, iv_prefix, "plainText", block));
  if (!chained.produced) return {};
  const Answer mixed = decrypt_request(
      request_text(0, 128, false, key_prefix, "", "cipherText", as_text(chained.text)));
  Secret iv = mixed.text;
  for (size_t i = 0; i < iv.size(); ++i) iv[i] ^= static_cast<unsigned char>(block[i]);
  return iv;
}

std::string probe_key(const std::string& key_prefix, int bits) {
  // 32 characters: a length that every key size encrypts.
  const Answer answer = encrypt_request(
      request_text(0, bits, false, key_prefix, "", "plainText", std::string(32, 'v')));
  if (!answer.produced) return "";
  unsigned char digest[32];
  sha256_get(digest, answer.text.data(), static_cast<unsigned>(answer.text.size()));
  return to_hex({reinterpret_cast<const char*>(digest), 8});
}

Secret probe_raw_plain_text(unsigned mode, int bits, const std::string& key_prefix,
                            const std::string& iv_prefix, const std::string& cipher_text) {
  return decrypt_request(
             request_text(mode, bits, false, key_prefix, iv_prefix, "cipherText", cipher_text))
      .text;
}

}  // namespace plx::tool
