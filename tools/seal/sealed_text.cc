#include "seal/sealed_text.h"

#include <fmt/core.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <memory>

#include "keys/key_material.h"
#include "keys/key_table.h"
#include "keys/verdict.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

using TRUX::CIPHER::CCipher;

int stored_index(const SealKey& key) { return key.kind == SealKey::Kind::kBox ? kBoxKey : 0; }

void require_stored_key(const SealKey& key) {
  if (key.kind == SealKey::Kind::kGiven) return;
  Secret work_key;
  if (load_work_key(stored_index(key), &work_key)) return;
  refuse(fmt::format("the stored key {} does not load", key_name(stored_index(key))),
         "see 'plxutil keys check'");
}

AES_CBC_TYPE type_of(const SealKey& key) { return key.bits == 256 ? AES_CBC_256 : AES_CBC_128; }

int seal_into(const std::string& plain, const SealKey& key, std::string* out) {
  const auto* in = reinterpret_cast<const unsigned char*>(plain.data());
  const int in_size = static_cast<int>(plain.size());
  const int out_size = static_cast<int>(out->size());
  switch (key.kind) {
    case SealKey::Kind::kBox:
      return PLX_aesCbcEncryptByRandomKey(in, in_size, out->data(), out_size);
    case SealKey::Kind::kProduct:
      return PLX_aesCbcEncrypt(in, in_size, out->data(), out_size);
    default:
      return PLX_aesCbcEncryptByKey(in, in_size, out->data(), out_size, key.bytes.data(),
                                    type_of(key));
  }
}

int open_into(const std::string& sealed, const SealKey& key, Secret* out) {
  // A copy that may be written to: malformed text is scratched by the decoder. One byte more than
  // the text is read where the key is a stored one.
  std::string copy = sealed;
  const int in_size = static_cast<int>(copy.size());
  char* text = reinterpret_cast<char*>(out->data());
  const int out_size = static_cast<int>(out->size());
  switch (key.kind) {
    case SealKey::Kind::kBox:
      return PLX_aesCbcDecryptByRandomKey(copy.data(), in_size, text, out_size);
    case SealKey::Kind::kProduct:
      return PLX_aesCbcDecrypt(copy.data(), in_size, text, out_size);
    default:
      return PLX_aesCbcDecryptByKey(copy.data(), in_size, text, out_size, key.bytes.data(),
                                    type_of(key));
  }
}

struct DeleteArray {
  void operator()(unsigned char* block) const { deleteArrayPoint_s(block); }
};

// The padding is looked at here, for the library takes a text under a wrong key for a good one.
bool padding_is_right(std::string sealed, const SealKey& key) {
  if (key.kind != SealKey::Kind::kGiven) std::replace(sealed.begin(), sealed.end(), '_', '\n');
  int size = 0;
  const std::unique_ptr<unsigned char, DeleteArray> blob(
      CCipher::UnBase64(sealed.data(), static_cast<int>(sealed.size()), &size));
  if (blob == nullptr || size < 2 * static_cast<int>(kIvSize)) return false;
  Secret stored;
  if (key.kind != SealKey::Kind::kGiven) {
    load_work_key(stored_index(key), &stored);
    stored.resize(16);
  }
  const Secret& bytes = key.kind == SealKey::Kind::kGiven ? key.bytes : stored;
  const int cipher_size = size - static_cast<int>(kIvSize);
  const std::string measure(static_cast<size_t>(cipher_size), 'x');
  tagAes aes = {};
  aes.iMode = 1;
  aes.iKeyBits = key.bits;
  aes.iPadding = 1;
  memcpy_s(aes.szKey, sizeof aes.szKey, bytes.data(), bytes.size());
  memcpy_s(aes.szIV, sizeof aes.szIV, blob.get(), kIvSize);
  aes.pszText = const_cast<char*>(measure.c_str());
  Secret out(measure.size() + 32);
  const int length =
      PLX_AesDecryByMode(&aes, reinterpret_cast<char*>(blob.get()) + kIvSize, cipher_size,
                         reinterpret_cast<char*>(out.data()), static_cast<int>(out.size()));
  wipe(&aes, sizeof aes);
  return length >= 0;
}

void require_base64(const std::string& sealed, const SealKey& key) {
  std::string text = sealed;
  if (key.kind != SealKey::Kind::kGiven) std::replace(text.begin(), text.end(), '_', '\n');
  const Base64Fault fault = find_base64_fault(text);
  if (!fault.found) return;
  refuse(fmt::format("no sealed text: {} at byte {}", fault.what, fault.byte),
         key.kind == SealKey::Kind::kGiven && sealed.find('_') != std::string::npos
             ? "a text with '_' was sealed with a stored key"
             : "give the text as 'plxutil seal' printed it");
}

}  // namespace

std::string seal_text(const std::string& plain, const SealKey& key) {
  require_stored_key(key);
  const size_t blob = plain.size() + 48;
  std::string out(blob / 3 * 4 + blob / 48 + 64, '\0');
  if (seal_into(plain, key, &out) < 0) refuse("the library does not seal this text");
  out.resize(strlen(out.c_str()));
  return out;
}

Opened open_text(const std::string& sealed, const SealKey& key) {
  require_stored_key(key);
  require_base64(sealed, key);
  Opened opened;
  opened.text.resize(sealed.size() + 1);
  const int length = open_into(sealed, key, &opened.text);
  if (length < 0) {
    refuse("the library does not open this text", "it is too short to hold an IV and a block");
  }
  if (!padding_is_right(sealed, key)) {
    refuse("the padding is not right: another key, or the text was changed",
           "the library itself would have handed out garbage");
  }
  opened.length = static_cast<size_t>(length);
  opened.text.resize(strlen(reinterpret_cast<const char*>(opened.text.data())));
  return opened;
}

}  // namespace plx::tool
