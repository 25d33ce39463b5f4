#include "keys/key_material.h"

#include <fmt/core.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <memory>

#include "keys/key_table.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

using TRUX::CIPHER::CCipher;

struct DeleteArray {
  void operator()(const char* block) const { deleteArrayPoint_s(const_cast<char*>(block)); }
  void operator()(unsigned char* block) const { deleteArrayPoint_s(block); }
};

std::string base64_text(const Secret& bytes) {
  const std::unique_ptr<const char, DeleteArray> text(
      CCipher::Base64(bytes.data(), static_cast<int>(bytes.size())));
  if (text == nullptr) refuse("the library could not encode a key file");
  return text.get();
}

Secret seal_with_random_iv(const Secret& plain, const Secret& key) {
  Secret blob(plain.size() + 2 * kIvSize + 1);
  Secret key_copy = key;
  int size = static_cast<int>(blob.size());
  if (!CCipher::EncryptData(plain.data(), static_cast<int>(plain.size()), blob.data(), size,
                            key_copy.data(), AES_CBC_128)) {
    refuse("the library could not seal the work key");
  }
  blob.resize(static_cast<size_t>(size));
  return blob;
}

// The library draws the IV of a sealed blob itself; a given one goes through the cipher record.
Secret seal_with_iv(const Secret& plain, const Secret& key, const Secret& iv) {
  Secret text = plain;
  text.push_back('\0');
  tagAes aes = {};
  aes.iMode = 1;
  aes.iKeyBits = 128;
  aes.iPadding = 1;
  memcpy_s(aes.szKey, sizeof aes.szKey, key.data(), kInitKeySize);
  memcpy_s(aes.szIV, sizeof aes.szIV, iv.data(), kIvSize);
  aes.pszText = reinterpret_cast<char*>(text.data());
  Secret blob = iv;
  blob.resize(kIvSize + plain.size() + 16);
  const int size = PLX_AesEncryByMode(&aes, reinterpret_cast<char*>(blob.data()) + kIvSize,
                                      static_cast<int>(blob.size() - kIvSize));
  wipe(&aes, sizeof aes);
  if (size < 1) refuse("the library could not seal the work key");
  blob.resize(kIvSize + static_cast<size_t>(size));
  return blob;
}

}  // namespace

Secret random_bytes(size_t count) {
  Secret bytes(count);
  if (!CCipher::GenerateRand(bytes.data(), static_cast<int>(count))) {
    refuse("the library has no random bytes to give");
  }
  return bytes;
}

Secret random_work_key(size_t length) {
  constexpr unsigned char kFirst = '!', kCount = '~' - '!' + 1;
  Secret key;
  while (key.size() < length) {
    for (const unsigned char byte : random_bytes(length)) {
      // Bytes from 2 * kCount on would make some characters likelier than others.
      if (byte >= 2 * kCount || key.size() == length) continue;
      key.push_back(static_cast<unsigned char>(kFirst + byte % kCount));
    }
  }
  return key;
}

size_t usual_work_key_length(int index) {
  // The stored-key texts use 16 characters. Those of the prefix key fill a 128-bit key alone, and
  // a 192-bit key together with the 4 of the library.
  return index == kPrefixKey ? 20 : 16;
}

size_t longest_work_key(int index) { return index == kPrefixKey ? 255 : 511; }

void require_work_key(int index, const Secret& work_key) {
  if (work_key.empty()) wrong_use("the work key is empty", "give the text of the key");
  if (memchr(work_key.data(), 0, work_key.size()) != nullptr) {
    wrong_use("the work key holds a zero byte, which would end it", "work keys are text");
  }
  if (work_key.size() > longest_work_key(index)) {
    wrong_use(fmt::format("a work key of {} characters for {}", work_key.size(), key_name(index)),
              fmt::format("its readers take at most {}", longest_work_key(index)));
  }
}

std::string factor_text(const Secret& factor) { return base64_text(factor); }

std::string sealed_text(const Secret& work_key, const Secret& init_key, const Secret& iv) {
  return base64_text(iv.empty() ? seal_with_random_iv(work_key, init_key)
                                : seal_with_iv(work_key, init_key, iv));
}

bool opens_to(const std::string& sealed, const Secret& init_key, const Secret& work_key) {
  std::string text = sealed;  // the decoder may write to its input
  Secret key = init_key;
  int size = 0;
  const std::unique_ptr<unsigned char, DeleteArray> blob(
      CCipher::UnBase64(text.data(), static_cast<int>(text.size()), &size));
  if (blob == nullptr || size <= static_cast<int>(kIvSize)) return false;
  Secret plain(static_cast<size_t>(size) + 1);
  int plain_size = size;
  if (!CCipher::DecryptData(blob.get(), size, plain.data(), plain_size, key.data(), AES_CBC_128)) {
    return false;
  }
  plain.resize(static_cast<size_t>(plain_size));
  return plain == work_key;
}

Secret derive_init_key(int index) {
  Secret key(kInitKeySize);
  if (DeriveInitKeyByIndex(index, key.data(), static_cast<int>(key.size())) != 0) {
    refuse(fmt::format("the library derives no init key from {}", key_paths(index).factor),
           "see 'plxutil keys check'");
  }
  return key;
}

bool load_work_key(int index, Secret* out) {
  // As large as its readers in the library have it, so that their verdict is ours.
  out->assign(longest_work_key(index) + 1, 0);
  if (getPlainWorkKeyByName(key_name(index), reinterpret_cast<char*>(out->data()),
                            static_cast<int>(out->size())) != 0) {
    out->clear();
    return false;
  }
  out->resize(std::find(out->begin(), out->end(), 0) - out->begin());
  return true;
}

}  // namespace plx::tool
