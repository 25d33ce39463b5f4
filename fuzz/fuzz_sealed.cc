// Sealed texts and key files.
//
// The first byte of an input chooses what the rest is: a text to open under some key, a plain text
// to seal and open again, a factor file, or (at one value only, for it costs a key derivation) a
// work-key file.
//
// What must hold:
//  - a text opens to what Base64 and AES by hand make of it, and scratches its characters as they
//    do, and nothing is written beside the output, whatever its size;
//  - what was sealed opens to the same, and only into enough room;
//  - a key file loads when, and only when, its blob opens by hand with a right padding.
#include <openssl/evp.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/judge.h"
#include "support/key_files.h"

namespace {

using plx_test::bytes_of;
using plx_test::judge;
using plx_test::Judged;

#define CHECK(condition) \
  ((condition) ? (void)0 : (fprintf(stderr, "line %d: %s\n", __LINE__, #condition), abort()))

const std::string kKey = "0123456789abcdefghijklmnopqrstuv", kFactor = "a 16-byte factor";

// Decodes as the library does, its final step going into the text.
std::string decode_by_hand(std::string* text) {
  std::string data(text->size() + 64, '\0');
  EVP_ENCODE_CTX* ctx = EVP_ENCODE_CTX_new();
  int n = 0, m = 0;
  EVP_DecodeInit(ctx);
  EVP_DecodeUpdate(ctx, bytes_of(data), &n, bytes_of(*text), static_cast<int>(text->size()));
  EVP_DecodeFinal(ctx, bytes_of(*text) + n, &m);
  EVP_ENCODE_CTX_free(ctx);
  data.resize(static_cast<size_t>(n + m));
  return data;
}

Judged open_by_hand(const std::string& blob, const std::string& key, int type) {
  return judge(type == AES_CBC_256 ? "AES-256-CBC" : "AES-128-CBC", false, true, key, blob,
               blob.substr(16));
}

void check_opening(const std::string& text, int type, size_t out_size) {
  std::vector<char> in(text.begin(), text.end()), out(out_size + 1, '.');
  const int result = PLX_aesCbcDecryptByKey(in.data(), static_cast<int>(in.size()), out.data(),
                                            static_cast<int>(out_size), bytes_of(kKey),
                                            static_cast<AES_CBC_TYPE>(type));
  std::string scratched = text, expected(out_size + 1, '.');
  int expected_result = -1;
  if (text.size() >= 16 && out_size > 0) {
    const std::string blob = decode_by_hand(&scratched);
    const std::string plain =
        blob.size() >= 16 && type <= 1 ? open_by_hand(blob, kKey, type).out : "";
    if (blob.size() >= 16 && plain.size() < out_size) {
      expected_result = static_cast<int>(plain.size());
      const std::string copied = std::string(plain.c_str()) + '\0';
      expected.replace(0, copied.size(), copied);
    }
  }
  CHECK(result == expected_result);
  CHECK(std::equal(out.begin(), out.end(), expected.begin()));
  CHECK(std::equal(in.begin(), in.end(), scratched.begin()));
}

void check_sealing(const std::string& plain, int type) {
  const int length = static_cast<int>(plain.size());
  std::string out(2 * plain.size() + 200, '.');
  const int result =
      PLX_aesCbcEncryptByKey(bytes_of(plain), length, &out[0], static_cast<int>(out.size()),
                             bytes_of(kKey), static_cast<AES_CBC_TYPE>(type));
  const std::string text = out.c_str();
  CHECK(result == static_cast<int>(text.size() / 4 * 4 + 4));
  CHECK(out.find_first_not_of('.', text.size() + 1) == std::string::npos);
  std::string scratched = text;
  const std::string blob = decode_by_hand(&scratched);
  const Judged judged = open_by_hand(blob, kKey, type);
  CHECK(scratched == text && judged.accepted && judged.out == plain);

  std::string back(plain.size() + 1, '.');
  const int text_len = static_cast<int>(text.size());
  const auto open = [&](int room) {
    return PLX_aesCbcDecryptByKey(text.data(), text_len, &back[0], room, bytes_of(kKey),
                                  static_cast<AES_CBC_TYPE>(type == 1));
  };
  CHECK(open(length) == -1);
  CHECK(open(length + 1) == length);
  CHECK(strcmp(back.c_str(), plain.c_str()) == 0);
}

struct Store {
  Store() {
    files.write_factor(0, plx_test::base64(kFactor));
    CHECK(DeriveInitKeyByIndex(0, bytes_of(init_key), 16) == 0);
  }
  plx_test::KeyFiles files;
  std::string init_key = std::string(16, '\0');
};

void check_factor_file(Store& store, const std::string& file, int size) {
  store.files.write_factor(1, file);
  std::string out(200, '.'), text = file.substr(0, static_cast<size_t>(2 * size));
  const int result = getFactorByIndex(1, bytes_of(out), size);
  std::string expected(200, '.');
  const std::string factor = decode_by_hand(&text);
  if (!file.empty() && factor.size() <= static_cast<size_t>(size)) {
    expected.replace(0, factor.size(), factor);
  }
  CHECK(result == (file.empty() ? -1 : 0));
  CHECK(out == expected);
}

void check_work_key_file(Store& store, const std::string& file, size_t room) {
  store.files.write_work_key(0, file);
  std::string out(200, '.'), text = file, expected(200, '.');
  const int result = getPlainWorkKeyByName("encrypt_stb_key", &out[0], static_cast<int>(room));
  const std::string blob = decode_by_hand(&text);
  bool loads = blob.size() >= 16;
  if (loads) {
    const Judged judged = open_by_hand(blob, store.init_key, AES_CBC_128);
    loads = judged.accepted && judged.out.size() < room;
    const std::string key = std::string(judged.out.c_str()) + '\0';
    if (loads) expected.replace(0, key.size(), key);
  }
  CHECK(result == (loads ? 0 : -1));
  CHECK(out == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Store store;
  if (size < 2) return 0;
  const std::string rest(reinterpret_cast<const char*>(data) + 2, size - 2);
  switch (data[0] % 8) {
    case 0:
    case 1:
    case 2:
      check_opening(rest, data[0] % 8, data[1]);
      break;
    case 3:
      check_opening(plx_test::base64(rest), data[1] & 1, 4096);
      break;
    case 4:
    case 5:
      check_sealing(rest, data[1] & 1);
      break;
    case 6:
      check_factor_file(store, rest, 16 + data[1] % 64);
      break;
    default:
      // Sealed here, so that files which load come up too.
      if (data[0] == 0xFF && data[1] < 128) check_work_key_file(store, rest, data[1]);
      if (data[0] == 0xFF && data[1] >= 128 && rest.size() < 100) {
        check_work_key_file(store, plx_test::base64(plx_test::sealed(rest, store.init_key)),
                            data[1] - 100u);
      }
  }
  return 0;
}
