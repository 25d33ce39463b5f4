// Key files in a temporary folder, with the table of keys pointed at them.
#ifndef PLX_TESTS_SUPPORT_KEY_FILES_H
#define PLX_TESTS_SUPPORT_KEY_FILES_H

#include <plx/cipher.h>
#include <plx/key_store.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "support/judge.h"

namespace plx_test {

// Base64 as key files hold it.
inline std::string base64(const std::string& data) {
  const char* text = TRUX::CIPHER::CCipher::Base64(
      reinterpret_cast<const unsigned char*>(data.data()), static_cast<int>(data.size()));
  const std::string copy = text != nullptr ? text : "";
  deleteArrayPoint_s(const_cast<char*>(text));
  return copy;
}

// A sealed blob of `plain` under a 128-bit key, always the same: a wrong key opens one blob in 256,
// and no test may come upon that by chance.
inline std::string sealed(const std::string& plain, const std::string& key) {
  const std::string iv = "sixteen bytes IV";
  const Judged made = judge(EVP_aes_128_cbc(), true, true, key, iv, plain);
  if (!made.accepted) abort();
  return iv + made.out;
}

// While one lives, every row of g_stKeyMap names files of its own temporary folder, which start
// out missing.
class KeyFiles {
 public:
  KeyFiles() {
    char folder[] = "/tmp/plx_keys_XXXXXX";
    if (mkdtemp(folder) == nullptr) abort();
    folder_ = folder;
    memcpy(rows_, g_stKeyMap, sizeof rows_);
    for (int i = 0; i < 5; ++i) {
      factor_[i] = folder_ + "/f" + std::to_string(i);
      work_key_[i] = folder_ + "/w" + std::to_string(i);
      g_stKeyMap[i].pszFactorPath = factor_[i].c_str();
      g_stKeyMap[i].pszWorkKeyPath = work_key_[i].c_str();
    }
  }

  ~KeyFiles() {
    memcpy(g_stKeyMap, rows_, sizeof rows_);
    for (int i = 0; i < 5; ++i) {
      remove(factor_[i].c_str());
      remove(work_key_[i].c_str());
    }
    rmdir(folder_.c_str());
  }

  KeyFiles(const KeyFiles&) = delete;
  KeyFiles& operator=(const KeyFiles&) = delete;

  const std::string& folder() const { return folder_; }

  void write_factor(int index, const std::string& text) { write(factor_[index], text); }
  void write_work_key(int index, const std::string& text) { write(work_key_[index], text); }

  // Both files of a row, for a factor of 16 bytes, under the box identifier of the moment.
  void provision(int index, const std::string& factor, const std::string& work_key) {
    write_factor(index, base64(factor));
    std::string init_key(16, '\0');
    if (DeriveInitKeyByIndex(index, reinterpret_cast<unsigned char*>(&init_key[0]), 16) != 0) {
      abort();
    }
    write_work_key(index, base64(sealed(work_key, init_key)));
  }

 private:
  static void write(const std::string& path, const std::string& text) {
    FILE* file = fopen(path.c_str(), "wb");
    if (file == nullptr || fwrite(text.data(), 1, text.size(), file) != text.size()) abort();
    fclose(file);
  }

  std::string folder_;
  std::string factor_[5], work_key_[5];
  tagKeyMap rows_[5];
};

}  // namespace plx_test

#endif
