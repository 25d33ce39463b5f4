// AES by record against EVP by hand, and JSON requests against cJSON and EVP by hand. The peers do
// the same work on the same bytes and name the cipher anew at each call. By record they keep the
// host's error queue as we do, by marks, and once without; for requests they do not.
#include <cjson/cJSON.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <plx/cipher.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "bench/support.h"

namespace {

const char kKeySuffix[] = "JwP4", kIvSuffix[] = "HeV6";

struct Evp {
  decltype(&EVP_EncryptInit_ex) init;
  decltype(&EVP_EncryptUpdate) update;
  decltype(&EVP_EncryptFinal_ex) final;
};
const Evp kEncrypt = {EVP_EncryptInit_ex, EVP_EncryptUpdate, EVP_EncryptFinal_ex};
const Evp kDecrypt = {EVP_DecryptInit_ex, EVP_DecryptUpdate, EVP_DecryptFinal_ex};

unsigned char* bytes_of(char* text) { return reinterpret_cast<unsigned char*>(text); }

int run_by_hand(const Evp& evp, const char* key, const char* iv, const void* in, int in_len,
                unsigned char* out) {
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  int n = 0, m = 0;
  const bool done =
      evp.init(ctx, EVP_aes_128_cbc(), nullptr, reinterpret_cast<const unsigned char*>(key),
               reinterpret_cast<const unsigned char*>(iv)) == 1 &&
      evp.update(ctx, out, &n, static_cast<const unsigned char*>(in), in_len) == 1 &&
      evp.final(ctx, out + n, &m) == 1;
  EVP_CIPHER_CTX_free(ctx);
  return done ? n + m : -1;
}

int run_with_marks(const Evp& evp, const char* key, const char* iv, const void* in, int in_len,
                   unsigned char* out) {
  ERR_set_mark();
  const int n = run_by_hand(evp, key, iv, in, in_len, out);
  ERR_pop_to_mark();
  return n;
}

void add_record(size_t size) {
  tagAes aes = {};
  aes.iMode = 1;
  aes.iKeyBits = 128;
  aes.iPadding = 1;
  memcpy(aes.szKey, "0123456789abcdef", 16);
  memcpy(aes.szIV, "fedcba9876543210", 16);
  std::string plain(size, 'a');
  const auto ours = [aes, plain]() mutable {
    char out[1024];
    aes.pszText = const_cast<char*>(plain.c_str());
    benchmark::DoNotOptimize(PLX_AesEncryByMode(&aes, out, sizeof out));
  };
  const auto peer = [aes, plain](auto* run) {
    return [aes, plain, run] {
      unsigned char out[1024];
      benchmark::DoNotOptimize(run(kEncrypt, aes.szKey, aes.szIV, plain.c_str(),
                                   static_cast<int>(strlen(plain.c_str())), out));
    };
  };
  const std::string row = "aes-record-encrypt/" + std::to_string(size);
  plx_bench::compare(row, ours, peer(run_with_marks), size);
  plx_bench::add(row, "peer:no-marks", peer(run_by_hand), size);

  std::string sealed(size + 16, '\0');
  const int sealed_size = run_by_hand(kEncrypt, aes.szKey, aes.szIV, plain.c_str(),
                                      static_cast<int>(size), bytes_of(&sealed[0]));
  const auto ours_back = [=]() mutable {
    char out[1024];
    aes.pszText = const_cast<char*>(plain.c_str());
    benchmark::DoNotOptimize(PLX_AesDecryByMode(&aes, &sealed[0], sealed_size, out, sizeof out));
  };
  const auto peer_back = [=](auto* run) {
    return [=] {
      unsigned char out[1024];
      benchmark::DoNotOptimize(run(kDecrypt, aes.szKey, aes.szIV, sealed.data(), sealed_size, out));
    };
  };
  const std::string row_back = "aes-record-decrypt/" + std::to_string(size);
  plx_bench::compare(row_back, ours_back, peer_back(run_with_marks), size);
  plx_bench::add(row_back, "peer:no-marks", peer_back(run_by_hand), size);
}

std::string make_request(const char* member, const std::string& text) {
  return std::string("{\"encryptMode\":\"CBC\",\"cipherSize\":128,") +
         "\"paddingMode\":\"PKCS5Padding\",\"cipherPrefix\":\"twelve-chars\"," +
         "\"IVPrefix\":\"twelve-more.\",\"" + member + "\":\"" + text + "\"}";
}

const char* member_text(const cJSON* root, const char* name) {
  const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(root, name));
  return text != nullptr ? text : "";
}

// Key and IV of a request, and its text; false for what is not such a request.
struct Parsed {
  cJSON* root;
  char key[32], iv[32];
  const char* text;
};
bool parse_by_hand(const std::string& request, const char* member, Parsed* out) {
  out->root = cJSON_Parse(request.c_str());
  if (out->root == nullptr) return false;
  if (strcmp(member_text(out->root, "encryptMode"), "CBC") != 0) return false;
  const cJSON* bits = cJSON_GetObjectItemCaseSensitive(out->root, "cipherSize");
  if (!cJSON_IsNumber(bits) || bits->valueint != 128) return false;
  if (strcmp(member_text(out->root, "paddingMode"), "PKCS5Padding") != 0) return false;
  snprintf(out->key, sizeof out->key, "%s%s", member_text(out->root, "cipherPrefix"), kKeySuffix);
  snprintf(out->iv, sizeof out->iv, "%s%s", member_text(out->root, "IVPrefix"), kIvSuffix);
  out->text = member_text(out->root, member);
  return true;
}

int encrypt_by_hand(const std::string& request, char* out) {
  Parsed parsed;
  int n = -1;
  if (parse_by_hand(request, "plainText", &parsed)) {
    unsigned char sealed[1040];
    n = run_by_hand(kEncrypt, parsed.key, parsed.iv, parsed.text,
                    static_cast<int>(strlen(parsed.text)), sealed);
    for (int i = 0; i < n; ++i) {
      out[2 * i] = "0123456789ABCDEF"[sealed[i] >> 4];
      out[2 * i + 1] = "0123456789ABCDEF"[sealed[i] & 15];
    }
  }
  cJSON_Delete(parsed.root);
  return n;
}

unsigned digit_value(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  return static_cast<unsigned>((c | 0x20) - 'a' + 10);
}

int decrypt_by_hand(const std::string& request, char* out) {
  Parsed parsed;
  int n = -1;
  if (parse_by_hand(request, "cipherText", &parsed)) {
    unsigned char sealed[520];
    const int count = static_cast<int>(strlen(parsed.text) / 2);
    for (int i = 0; i < count; ++i) {
      sealed[i] = static_cast<unsigned char>(16 * digit_value(parsed.text[2 * i]) +
                                             digit_value(parsed.text[2 * i + 1]));
    }
    n = run_by_hand(kDecrypt, parsed.key, parsed.iv, sealed, count,
                    reinterpret_cast<unsigned char*>(out));
    if (n >= 0) out[n] = 0;
  }
  cJSON_Delete(parsed.root);
  return n;
}

void add_requests(size_t size) {
  const std::string request = make_request("plainText", std::string(size, 'a'));
  std::string digits(2100, '\0'), by_hand(2100, '\0');
  if (PLX_AesEncry(request.c_str(), &digits[0]) != 1 || encrypt_by_hand(request, &by_hand[0]) < 0 ||
      digits != by_hand) {
    abort();  // the peer does not do the same work
  }
  const auto ours = [request] {
    char out[2100];
    benchmark::DoNotOptimize(PLX_AesEncry(request.c_str(), out));
  };
  const auto peer = [request] {
    char out[2100];
    benchmark::DoNotOptimize(encrypt_by_hand(request, out));
  };
  plx_bench::compare("request-encrypt/" + std::to_string(size), ours, peer, size);
  if (size > 480) return;  // more has no room as digits

  const std::string sealed = make_request("cipherText", digits.c_str());
  const auto ours_back = [sealed] {
    char out[1100];
    benchmark::DoNotOptimize(PLX_AesDecry(sealed.c_str(), out, sizeof out));
  };
  const auto peer_back = [sealed] {
    char out[1100];
    benchmark::DoNotOptimize(decrypt_by_hand(sealed, out));
  };
  plx_bench::compare("request-decrypt/" + std::to_string(size), ours_back, peer_back, size);
}

}  // namespace

void plx_bench::register_benchmarks() {
  for (size_t size : {16, 100, 900}) add_record(size);
  for (size_t size : {1, 16, 100, 240, 480, 1000}) add_requests(size);
}
