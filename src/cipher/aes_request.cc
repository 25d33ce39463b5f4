// A whole AES operation described by one JSON text.
#include <plx/cipher.h>
#include <stdlib.h>
#include <string.h>

#include <array>

#include "cipher/aes_record.h"
#include "cipher/key_store.h"
#include "cipher/secrets.h"
#include "digest/hex.h"
#include "internal/owned.h"
#include "internal/wipe.h"
#include "json/parser.h"
#include "json/query.h"
#include "json/tree.h"
#include "securec/string.h"

namespace plx::cipher {
namespace {

using Tree = Owned<PLX_JsonValue, json::release>;

constexpr size_t kTextSize = 1024;
constexpr size_t kWorkKeySize = 256;
constexpr size_t kLongestKey = 32;
constexpr size_t kSuffixLength = 4;

// A request as a record, with the text that the record points at.
struct Request {
  Request() { aes.pszText = text.text(); }
  ~Request() { wipe(&aes, sizeof aes); }
  tagAes aes = {};
  SecretBytes<kTextSize> text;
};

// Copies the text of member `name`, found anywhere in the tree, to `dst`, cut to two characters
// less than `dst_size`; a container has an empty text. Returns whether the member is there. Its
// text in the tree is wiped, for it may be a part of a key.
bool getAesJsonField(const PLX_JsonValue* root, const char* name, char* dst, size_t dst_size) {
  const PLX_JsonValue* value = json::find(root, name);
  if (value == nullptr) return false;
  if (const char* text = json::text_of(value)) {
    securec::copy_string(dst, dst_size, text, dst_size - 2);
    wipe(value->data, strlen(text));
  }
  dst[dst_size - 1] = 0;
  return true;
}

bool read_mode(const PLX_JsonValue* root, tagAes* aes) {
  char text[16] = {};
  getAesJsonField(root, "encryptMode", text, sizeof text);
  if (strcmp(text, "CBC") == 0) {
    aes->iMode = 1;
    return true;
  }
  return text[0] == 0 || strcmp(text, "ECB") == 0;
}

bool read_key_size(const PLX_JsonValue* root, tagAes* aes) {
  char text[8] = {};
  getAesJsonField(root, "cipherSize", text, sizeof text);
  // Callers depend on a size with letters behind it, and on there being no default.
  aes->iKeyBits = atoi(text);
  return aes->iKeyBits == 128 || aes->iKeyBits == 192 || aes->iKeyBits == 256;
}

bool read_padding(const PLX_JsonValue* root, tagAes* aes) {
  char text[16] = {};
  if (!getAesJsonField(root, "paddingMode", text, sizeof text)) return false;
  if (text[0] == 0) {
    aes->iPadding = 2;
    return true;
  }
  aes->iPadding = 1;
  return strcmp(text, "PKCS5Padding") == 0;
}

// The key is a prefix, of the request or of the key store, and the product's suffix. A 256-bit key
// has no room for a terminator behind its suffix, so that the append empties it: callers depend on
// its first byte being zero, and on nothing being compared with the size of a stored prefix.
bool setAesKeyFromRequest(tagAes* aes, const PLX_JsonValue* root) {
  getAesJsonField(root, "cipherPrefix", aes->szKey, sizeof aes->szKey);
  if (aes->szKey[0] != 0) {
    const size_t wanted = static_cast<size_t>(aes->iKeyBits) / 8 - kSuffixLength;
    if (strlen(aes->szKey) != wanted) return false;
  } else {
    SecretBytes<kWorkKeySize> work_key;
    if (load_work_key("aes_prefix_key", work_key.text(), kWorkKeySize) != KeyFault::kNone) {
      return false;
    }
    securec::copy_string(aes->szKey, sizeof aes->szKey, work_key.text(), strlen(work_key.text()));
  }
  securec::append_string(aes->szKey, sizeof aes->szKey, key_suffix(), kSuffixLength);
  return true;
}

bool read_iv(const PLX_JsonValue* root, tagAes* aes) {
  const bool found = getAesJsonField(root, "IVPrefix", aes->szIV, sizeof aes->szIV);
  if (aes->iMode == 1 && !found) return false;
  if (aes->szIV[0] == 0) {
    securec::copy_string(aes->szIV, sizeof aes->szIV, default_iv_prefix(), sizeof aes->szIV);
  }
  securec::append_string(aes->szIV, sizeof aes->szIV, iv_suffix(),
                         sizeof aes->szIV - 1 - strlen(aes->szIV));
  return true;
}

// What stands around the object is ignored: the reader starts at the first brace, and what follows
// the brace that closes the object does not count. One parse serves all members.
bool parseAesRequest(Request* out, const char* request, const char* text_name) {
  const char* object = strchr(request, '{');
  if (object == nullptr) return false;
  const Tree root(json::parse(object));
  if (root == nullptr) return false;
  if (!read_mode(root.get(), &out->aes)) return false;
  if (!read_key_size(root.get(), &out->aes)) return false;
  if (!read_padding(root.get(), &out->aes)) return false;
  if (!setAesKeyFromRequest(&out->aes, root.get())) return false;
  if (!read_iv(root.get(), &out->aes)) return false;
  getAesJsonField(root.get(), text_name, out->text.text(), kTextSize);
  return true;
}

void write_hex(const unsigned char* bytes, int count, char* out) {
  for (int i = 0; i < count; ++i) {
    *out++ = digest::kUpperDigits[bytes[i] >> 4];
    *out++ = digest::kUpperDigits[bytes[i] & 15];
  }
}

constexpr std::array<unsigned char, 256> make_hex_values() {
  std::array<unsigned char, 256> values = {};
  for (unsigned char i = 0; i < 10; ++i) values['0' + i] = i;
  for (unsigned char i = 10; i < 16; ++i) values['A' + i - 10] = values['a' + i - 10] = i;
  return values;
}
constexpr std::array<unsigned char, 256> kHexValues = make_hex_values();

// Callers depend on whatever is no digit counting as 0.
unsigned hexCharToValue(char c) { return kHexValues[static_cast<unsigned char>(c)]; }

// Decodes a text pair by pair, the terminator being the second of an odd last pair. Returns the
// number of bytes.
int read_hex(const char* text, unsigned char* out) {
  int count = 0;
  for (; text[0] != 0; text += 2) {
    out[count++] =
        static_cast<unsigned char>(16 * hexCharToValue(text[0]) + hexCharToValue(text[1]));
    if (text[1] == 0) break;
  }
  return count;
}

int encrypt_request(const char* request, char* out) {
  Request parsed;
  if (!parseAesRequest(&parsed, request, "plainText")) return 0;
  // Blocks of the key's size. For 192-bit keys they come to less than the cipher asks for at some
  // lengths: callers depend on such a request giving 1 with nothing written.
  const size_t block = static_cast<size_t>(parsed.aes.iKeyBits) / 8;
  const size_t size = block * (1 + strlen(parsed.aes.pszText) / block);
  SecretBytes<kTextSize + kLongestKey> cipher_text;
  const int n = encrypt_record(&parsed.aes, cipher_text.data(), static_cast<int>(size));
  if (n == 0) return 0;
  write_hex(cipher_text.data(), n, out);
  return 1;
}

int decrypt_request(const char* request, char* out, int out_size) {
  Request parsed;
  if (!parseAesRequest(&parsed, request, "cipherText")) return 0;
  SecretBytes<kTextSize / 2 + 1> cipher_text;
  const int count = read_hex(parsed.aes.pszText, cipher_text.data());
  const int n = decrypt_record(&parsed.aes, cipher_text.data(), count,
                               reinterpret_cast<unsigned char*>(out), out_size);
  if (n == 0) return 0;
  // Callers depend on a failed run, -1, giving 1 and a zero in the byte before `out`.
  out[n] = 0;
  return 1;
}

}  // namespace
}  // namespace plx::cipher

using namespace plx::cipher;

int PLX_AesEncry(const char* request, char* out) {
  if (request == nullptr) return 0;
  return encrypt_request(request, out);
}

int PLX_AesDecry(const char* request, char* out, int outSize) {
  if (request == nullptr || out == nullptr) return 0;
  return decrypt_request(request, out, outSize);
}
