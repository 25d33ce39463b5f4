// libcrypto, by the calls that a reader of its manual would write, as the judge of our digests and
// ciphers; and bytes to feed both.
#ifndef PLX_TESTS_SUPPORT_JUDGE_H
#define PLX_TESTS_SUPPORT_JUDGE_H

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <stdint.h>

#include <random>
#include <string>

#include "support/guarded.h"

namespace plx_test {

// Bytes travel in strings, which compare and print.
inline const uint8_t* bytes_of(const std::string& bytes) {
  return reinterpret_cast<const uint8_t*>(bytes.data());
}
inline uint8_t* bytes_of(std::string& bytes) { return reinterpret_cast<uint8_t*>(&bytes[0]); }

inline std::string as_bytes(const void* data, size_t size) {
  return std::string(static_cast<const char*>(data), size);
}

inline std::string random_bytes(size_t size) {
  static std::mt19937 generator(20261124);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}

inline std::string hex(const std::string& bytes) {
  std::string text;
  for (unsigned char byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

inline std::string unhex(const std::string& text) {
  std::string bytes;
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

inline std::string judge_digest(const char* name, const std::string& data) {
  unsigned char out[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  EVP_Digest(data.data(), data.size(), out, &size, EVP_get_digestbyname(name), nullptr);
  return as_bytes(out, size);
}

inline std::string judge_hmac(const char* name, const std::string& key, const std::string& data) {
  unsigned char out[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  HMAC(EVP_get_digestbyname(name), key.data(), static_cast<int>(key.size()), bytes_of(data),
       data.size(), out, &size);
  return as_bytes(out, size);
}

struct Judged {
  bool accepted;    // every step succeeded
  std::string out;  // what was written, by a failed run too
};

inline Judged judge(const EVP_CIPHER* cipher, bool encrypting, bool padding, const std::string& key,
                    const std::string& iv, const std::string& in) {
  ERR_set_mark();
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  std::string out(in.size() + 32, '\0');
  int updated = 0, finished = 0;
  EVP_CipherInit_ex(ctx, cipher, nullptr, bytes_of(key), bytes_of(iv), encrypting);
  EVP_CIPHER_CTX_set_padding(ctx, padding);
  EVP_CipherUpdate(ctx, bytes_of(out), &updated, bytes_of(in), static_cast<int>(in.size()));
  const bool accepted = EVP_CipherFinal_ex(ctx, bytes_of(out) + updated, &finished) == 1;
  EVP_CIPHER_CTX_free(ctx);
  ERR_pop_to_mark();
  out.resize(static_cast<size_t>(updated + (accepted ? finished : 0)));
  return {accepted, out};
}

inline Judged judge(const std::string& cipher_name, bool encrypting, bool padding,
                    const std::string& key, const std::string& iv, const std::string& in) {
  return judge(EVP_get_cipherbyname(cipher_name.c_str()), encrypting, padding, key, iv, in);
}

// Triple DES over whole blocks with a key of 24 bytes.
inline std::string judge_3des(bool encrypting, const std::string& key, const std::string& blocks) {
  return judge(EVP_des_ede3_ecb(), encrypting, false, key, "", blocks).out;
}

// Room between two inaccessible pages, mapped once for many uses of different sizes: its end, or
// where that is asked for its start.
class PageEnd {
 public:
  uint8_t* bytes(size_t size) { return page_.data() + page_.size() - size; }
  char* chars(size_t size) { return reinterpret_cast<char*>(bytes(size)); }
  uint8_t* copy(const std::string& source) {
    if (!source.empty()) memcpy(bytes(source.size()), source.data(), source.size());
    return bytes(source.size());
  }
  uint8_t* start() { return page_.data(); }
  uint8_t* copy_to_start(const std::string& source) {
    if (!source.empty()) memcpy(start(), source.data(), source.size());
    return start();
  }

 private:
  Guarded<uint8_t> page_{1 << 17};
};

}  // namespace plx_test

#endif
