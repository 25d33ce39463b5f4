// JSON requests both ways, against a model that takes the long way: it cuts the request to its
// braces, parses it anew for each member, composes key and IV, and asks libcrypto.
//
// The first byte of an input chooses the direction and, with bit 1 set, a request made of the next
// bytes' choices, with the rest as its text; otherwise the rest is the request. The second byte
// sets the output size of a decryption.
//
// What must hold:
//  - result and output are the model's, and nothing is written beside the output;
//  - what was encrypted decrypts to the same text;
//  - OpenSSL's error queue is left as it was.
#include <plx/cipher.h>
#include <plx/json.h>
#include <plx/key_store.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "cipher/secrets.h"
#include "support/judge.h"
#include "support/leaks.h"

namespace {

using plx_test::judge;
using plx_test::Judged;

#define CHECK(condition) \
  ((condition) ? (void)0 : (fprintf(stderr, "line %d: %s\n", __LINE__, #condition), abort()))

constexpr size_t kRoom = 2200;

struct Field {
  bool parsed = false, found = false;
  std::string text;
};

Field field_of(const std::string& object, const char* name, size_t longest) {
  Field field;
  PLX_JsonValue* root = PLX_ParseJsonString(object.c_str());
  if (root == nullptr) return field;
  field.parsed = true;
  const PLX_JsonValue* value = PLX_FindFromJsonValue(root, name);
  field.found = value != nullptr;
  const char* text = PLX_GetJsonValueString(value);
  if (text != nullptr) field.text = std::string(text).substr(0, longest);
  PLX_FreeJsonValue(root);
  return field;
}

struct Model {
  bool accepted = false;
  bool cbc = false, padding = false;
  int bits = 0;
  std::string key, iv, text;

  std::string cipher_name() const {
    return "AES-" + std::to_string(bits) + (cbc ? "-CBC" : "-ECB");
  }
};

Model model_of(const std::string& request, bool encrypting) {
  Model model;
  const size_t first = request.find('{'), last = request.rfind('}');
  if (first == std::string::npos || last == std::string::npos || last < first) return model;
  const std::string object = request.substr(first, last - first + 1);

  const Field mode = field_of(object, "encryptMode", 14), size = field_of(object, "cipherSize", 6);
  if (!mode.text.empty() && mode.text != "ECB" && mode.text != "CBC") return model;
  model.cbc = mode.text == "CBC";
  if (!size.parsed) return model;
  model.bits = atoi(size.text.c_str());
  if (model.bits != 128 && model.bits != 192 && model.bits != 256) return model;
  const Field padding = field_of(object, "paddingMode", 14);
  if (!padding.found || (!padding.text.empty() && padding.text != "PKCS5Padding")) return model;
  model.padding = !padding.text.empty();

  const Field prefix = field_of(object, "cipherPrefix", 30);  // there is no key store
  if (prefix.text.size() != static_cast<size_t>(model.bits / 8 - 4)) return model;
  model.key = prefix.text + plx::cipher::key_suffix();
  if (model.bits == 256) model.key[0] = 0;
  const Field iv = field_of(object, "IVPrefix", 30);
  if (model.cbc && !iv.found) return model;
  model.iv = (iv.text.empty() ? plx::cipher::default_iv_prefix() : iv.text) +
             plx::cipher::iv_suffix() + std::string(16, '\0');
  model.text = field_of(object, encrypting ? "plainText" : "cipherText", 1022).text;
  model.accepted = true;
  return model;
}

std::string bytes_of_hex(const std::string& text) {
  std::string out;
  const auto value = [](char c) {
    const char* digits = "0123456789abcdef0123456789ABCDEF";
    const char* at = c != 0 ? strchr(digits, c) : nullptr;
    return at != nullptr ? (at - digits) % 16 : 0;
  };
  for (size_t i = 0; i < text.size(); i += 2) {
    out += static_cast<char>(16 * value(text[i]) + value(i + 1 < text.size() ? text[i + 1] : 0));
  }
  return out;
}

std::string hex_of(const std::string& data) {
  std::string text;
  for (const unsigned char c : data) {
    text += "0123456789ABCDEF"[c >> 4];
    text += "0123456789ABCDEF"[c & 15];
  }
  return text;
}

// Returns the digits.
std::string check_encryption(const std::string& request) {
  std::string image(1 + kRoom, '.'), expected;
  const int result = PLX_AesEncry(request.c_str(), &image[1]);
  const Model model = model_of(request, true);
  int expected_result = 0;
  if (model.accepted) {
    const size_t block = static_cast<size_t>(model.bits) / 8, length = model.text.size();
    const bool fits = length / 16 * 16 + 16 <= block * (1 + length / block);
    const Judged judged =
        judge(model.cipher_name(), true, model.padding, model.key, model.iv, model.text);
    if (fits && judged.accepted) expected = hex_of(judged.out);
    expected_result = fits && judged.accepted && judged.out.empty() ? 0 : 1;
  }
  CHECK(result == expected_result);
  CHECK(image == "." + expected + std::string(kRoom - expected.size(), '.'));
  return expected;
}

// Returns the plain text; `*out_done` tells whether there was one.
std::string check_decryption(const std::string& request, int out_size, bool* out_done) {
  std::string image(1 + kRoom, '.');
  const int result = PLX_AesDecry(request.c_str(), &image[1], out_size);
  const Model model = model_of(request, false);
  *out_done = false;
  if (!model.accepted) {
    CHECK(result == 0 && image == std::string(1 + kRoom, '.'));
    return "";
  }
  const bool fits = static_cast<int>(model.text.size() / 16 * 16 + 16) <= out_size;
  const Judged judged = judge(model.cipher_name(), false, model.padding, model.key, model.iv,
                              bytes_of_hex(model.text));
  std::string expected = std::string(1 + kRoom, '.');
  if (fits) expected.replace(1, judged.out.size(), judged.out);
  if (!fits || !judged.accepted) {
    expected[0] = 0;
    CHECK(result == 1);
  } else if (judged.out.empty()) {
    CHECK(result == 0);
  } else {
    expected[1 + judged.out.size()] = 0;
    CHECK(result == 1);
    *out_done = true;
  }
  CHECK(image == expected);
  return judged.out;
}

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    char escape[8];
    const auto byte = static_cast<unsigned char>(c);
    snprintf(escape, sizeof escape, byte < 0x20 || c == '"' || c == '\\' ? "\\u%04x" : "%c", byte);
    out += escape;
  }
  return out + "\"";
}

// A request whose members are chosen by five bytes.
std::string compose(const uint8_t* choices, const std::string& member, const std::string& text) {
  static const char* const kModes[] = {"CBC", "ECB", "", "cbc"};
  static const char* const kSizes[] = {"128", "\"192\"", "256", "\"128bit\"", "64", "\"\""};
  static const char* const kPaddings[] = {"\"PKCS5Padding\"", "\"\"", "[]", "none"};
  const size_t prefix = choices[3] < 200 ? 12 + 8 * (choices[1] % 6 % 3) : choices[3] % 35;
  std::string request = "{\"encryptMode\":" + quoted(kModes[choices[0] % 4]) +
                        ",\"cipherSize\":" + kSizes[choices[1] % 6];
  if (choices[2] < 240) request += std::string(",\"paddingMode\":") + kPaddings[choices[2] % 4];
  request += ",\"cipherPrefix\":" + quoted(std::string(prefix, 'k'));
  if (choices[4] < 240) request += ",\"IVPrefix\":" + quoted(std::string(choices[4] % 35, 'v'));
  return request + ",\"" + member + "\":" + quoted(text) + "}";
}

void check_round_trip(const uint8_t* choices, const std::string& text) {
  const std::string digits = check_encryption(compose(choices, "plainText", text));
  if (digits.empty() || digits.size() > 1022) return;
  bool done = false;
  const std::string back = check_decryption(compose(choices, "cipherText", digits), 2000, &done);
  const std::string plain = text.substr(0, 1022);
  CHECK(done == !plain.empty());
  CHECK(!done || back == plain);
}

// No key of this machine comes in.
const bool kNoKeyStore = [] {
  g_stKeyMap[1].pszFactorPath = "/dev/null/none";
  return true;
}();

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 7 || !kNoKeyStore) return 0;
  const bool encrypting = (data[0] & 1) != 0, composed = (data[0] & 2) != 0;
  const int out_size = 8 * data[1];
  ERR_raise(ERR_LIB_USER, 77);
  const unsigned long marked = ERR_peek_last_error();
  const char* text = reinterpret_cast<const char*>(data) + (composed ? 7 : 2);
  const std::string rest(text, strnlen(text, size - (composed ? 7 : 2)));
  // An array of more than 480 elements loses some on purpose.
  const bool may_leak = std::count(rest.begin(), rest.end(), ',') >= 480;
  plx_test::LeaksExpected* leaks = may_leak ? new plx_test::LeaksExpected : nullptr;
  char out[kRoom];
  const int result = PLX_AesDecry(rest.c_str(), out + 1, out_size);
  CHECK((result == 0 || result == 1) && ERR_peek_last_error() == marked);
  bool done = false;
  if (!composed) {
    if (encrypting) check_encryption(rest);
    if (!encrypting) check_decryption(rest, out_size, &done);
  } else if (encrypting) {
    check_round_trip(data + 2, rest);
  } else {
    check_decryption(compose(data + 2, "cipherText", rest), out_size, &done);
  }
  delete leaks;
  return 0;
}
