// What libcrypto makes of a cipher, by the calls that a reader of its manual would write.
#ifndef PLX_FUZZ_EVP_JUDGE_H
#define PLX_FUZZ_EVP_JUDGE_H

#include <openssl/err.h>
#include <openssl/evp.h>
#include <stdint.h>

#include <string>

namespace plx_test {

inline const unsigned char* bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}
inline unsigned char* bytes(std::string& text) {
  return reinterpret_cast<unsigned char*>(&text[0]);
}

struct Judged {
  bool accepted;    // every step succeeded
  std::string out;  // what was written, by a failed run too
};

inline Judged judge(const std::string& cipher_name, bool encrypting, bool padding,
                    const std::string& key, const std::string& iv, const std::string& in) {
  EVP_CIPHER* cipher = EVP_CIPHER_fetch(nullptr, cipher_name.c_str(), nullptr);
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  std::string out(in.size() + 32, '\0');
  int updated = 0, finished = 0;
  EVP_CipherInit_ex2(ctx, cipher, bytes(key), bytes(iv), encrypting, nullptr);
  EVP_CIPHER_CTX_set_padding(ctx, padding);
  EVP_CipherUpdate(ctx, bytes(out), &updated, bytes(in), static_cast<int>(in.size()));
  const bool accepted = EVP_CipherFinal_ex(ctx, bytes(out) + updated, &finished) == 1;
  EVP_CIPHER_CTX_free(ctx);
  EVP_CIPHER_free(cipher);
  ERR_clear_error();
  out.resize(static_cast<size_t>(updated + (accepted ? finished : 0)));
  return {accepted, out};
}

}  // namespace plx_test

#endif
