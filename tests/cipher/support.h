// What the tests of the cipher family share: bytes as hexadecimal text, libcrypto as the judge, and
// a look at OpenSSL's error queue.
#ifndef PLX_TESTS_CIPHER_SUPPORT_H
#define PLX_TESTS_CIPHER_SUPPORT_H

#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <string>

namespace plx_test {

inline std::string to_hex(const std::string& data) {
  std::string text;
  for (const unsigned char c : data) {
    text += "0123456789ABCDEF"[c >> 4];
    text += "0123456789ABCDEF"[c & 15];
  }
  return text;
}

inline std::string from_hex(const std::string& text) {
  std::string data;
  for (size_t i = 0; i < text.size(); i += 2) {
    data += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
  }
  return data;
}

inline const unsigned char* bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}
inline unsigned char* bytes(std::string& text) {
  return reinterpret_cast<unsigned char*>(&text[0]);
}

inline int length(const std::string& text) { return static_cast<int>(text.size()); }

// What libcrypto makes of `in` with the cipher of that name; "refused" when it refuses.
inline std::string judge(const std::string& cipher_name, bool encrypting, bool padding,
                         const std::string& key, const std::string& iv, const std::string& in) {
  ERR_set_mark();
  EVP_CIPHER* cipher = EVP_CIPHER_fetch(nullptr, cipher_name.c_str(), nullptr);
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  std::string out(in.size() + 32, '\0');
  int updated = 0, finished = 0;
  const bool accepted =
      EVP_CipherInit_ex2(ctx, cipher, bytes(key), bytes(iv), encrypting, nullptr) == 1 &&
      EVP_CIPHER_CTX_set_padding(ctx, padding) == 1 &&
      EVP_CipherUpdate(ctx, bytes(out), &updated, bytes(in), length(in)) == 1 &&
      EVP_CipherFinal_ex(ctx, bytes(out) + updated, &finished) == 1;
  EVP_CIPHER_CTX_free(ctx);
  EVP_CIPHER_free(cipher);
  ERR_pop_to_mark();
  out.resize(static_cast<size_t>(updated + finished));
  return accepted ? out : "refused";
}

inline std::string sha256_hex(const std::string& data) {
  std::string digest(32, '\0');
  EVP_Digest(data.data(), data.size(), bytes(digest), nullptr, EVP_sha256(), nullptr);
  return to_hex(digest);
}

inline std::string pbkdf2(const std::string& pass, const std::string& salt, int iterations,
                          int size) {
  std::string key(static_cast<size_t>(size), '\0');
  PKCS5_PBKDF2_HMAC(pass.data(), length(pass), bytes(salt), length(salt), iterations, EVP_sha256(),
                    size, bytes(key));
  return key;
}

// Puts an entry of the host on the error queue and expects it to be alone there at the end.
class HostErrors {
 public:
  HostErrors() {
    ERR_clear_error();
    ERR_raise(ERR_LIB_USER, 77);
  }
  ~HostErrors() {
    EXPECT_EQ(77, ERR_GET_REASON(ERR_get_error()));
    EXPECT_EQ(0u, ERR_get_error());
  }
};

// While one lives, libcrypto finds no implementation of anything that it has to fetch.
class NoProviders {
 public:
  NoProviders() { EVP_set_default_properties(nullptr, "provider=none"); }
  ~NoProviders() { EVP_set_default_properties(nullptr, ""); }
};

}  // namespace plx_test

#endif
