// What the tests of the cipher family share: bytes as hexadecimal text, libcrypto as the judge, and
// a look at its error queue.
#ifndef PLX_TESTS_CIPHER_SUPPORT_H
#define PLX_TESTS_CIPHER_SUPPORT_H

#include <ctype.h>
#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <string>

#include "support/judge.h"

namespace plx_test {

// In capitals, as the library writes it.
inline std::string to_hex(const std::string& data) {
  std::string text = hex(data);
  for (char& c : text) c = static_cast<char>(toupper(c));
  return text;
}

inline int length(const std::string& text) { return static_cast<int>(text.size()); }

// What libcrypto makes of `in` with the cipher of that name; "refused" when it refuses.
inline std::string judge_cipher(const std::string& cipher_name, bool encrypting, bool padding,
                                const std::string& key, const std::string& iv,
                                const std::string& in) {
  const Judged judged = judge(cipher_name, encrypting, padding, key, iv, in);
  return judged.accepted ? judged.out : "refused";
}

inline std::string pbkdf2(const std::string& pass, const std::string& salt, int iterations,
                          int size) {
  std::string key(static_cast<size_t>(size), '\0');
  PKCS5_PBKDF2_HMAC(pass.data(), length(pass), bytes_of(salt), length(salt), iterations,
                    EVP_sha256(), size, bytes_of(key));
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
