#include "failure/calls.h"

#include <openssl/evp.h>
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "securec/input/scan.h"
#include "securec/output/engines.h"
#include "support/key_files.h"

namespace plx_test {
namespace {

using TRUX::CIPHER::CCipher;

const char kPlain[] = "plain text";
const char kWorkKey[] = "sixteen byte key";
unsigned char kKey[] = "0123456789abcdef";  // no call changes it
const unsigned char kZeros[16] = {};
const std::string kFactor = "a 16-byte factor";

// What calls give when nothing fails. Made by a child process and shared with it.
struct Expected {
  unsigned char init_key[16], instance_key[16], derived[16], record[32], hmac[20];
  char sealed_by_key[100], sealed_by_stb_key[100], sealed_by_box_key[100];
  char request_out[100];
  unsigned char blob[48];
  int blob_size;
};
Expected* expected;
FILE* hidden;  // takes what the library prints when it refuses

#define REQUEST(text)                                                             \
  "{\"encryptMode\":\"CBC\",\"cipherSize\":128,\"paddingMode\":\"PKCS5Padding\"," \
  "\"IVPrefix\":\"\"," text "}"
const char kEncryption[] = REQUEST("\"plainText\":\"plain text\"");
char decryption[300];

Answer answer(bool done, bool refused, bool passed_over = false) {
  if (done) return Answer::kDone;
  if (refused) return Answer::kRefused;
  return passed_over ? Answer::kPassedOver : Answer::kWrong;
}

// An output that shows whether it was written to.
struct Output {
  Output() { memset(bytes, '.', sizeof bytes); }
  bool untouched() const {
    for (const unsigned char c : bytes) {
      if (c != '.') return false;
    }
    return true;
  }
  bool is_zero() const { return holds(kZeros, sizeof kZeros); }
  bool holds(const void* data, size_t size) const { return memcmp(bytes + 1, data, size) == 0; }
  bool reads(const char* text) const { return holds(text, strlen(text) + 1); }
  unsigned char* data() { return bytes + 1; }
  char* text() { return reinterpret_cast<char*>(bytes + 1); }
  unsigned char bytes[512];
};

const unsigned char* bytes_of(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

// ---- containers ----

Answer block(void* made) {
  PLX_free(made);
  return answer(made != nullptr, made == nullptr);
}

// Frees the old block in every case.
Answer replace_block() {
  void* made = PLX_malloc(8);
  return made != nullptr ? block(PLX_reallocMem(made, 4000, 8)) : Answer::kRefused;
}

Answer grow_block() {
  void* made = PLX_malloc(8);
  if (made == nullptr) return Answer::kRefused;
  void* grown = PLX_realloc(made, 4000);
  PLX_free(grown != nullptr ? grown : made);
  return answer(grown != nullptr, grown == nullptr);
}

Answer align_block() {
  void* made = nullptr;
  const int result = PLX_posix_memalign(&made, 64, 100);
  PLX_free(made);
  return answer(result == 0, result != 0 && made == nullptr);
}

Answer grow_array(int (*grow)(PLX_array*, void*)) {
  static int element;
  PLX_array* array = PLX_array_create(nullptr);
  if (array == nullptr) return Answer::kRefused;
  bool filled = true;
  for (int i = 0; i < 32 && filled; ++i) filled = PLX_array_append(array, &element) == 0;
  const int result = filled ? grow(array, &element) : -1;
  const bool done = result == 0 && PLX_array_getIndex(array, 31) == &element;
  const bool refused = result == -1 && array->items == nullptr;
  PLX_array_destroyWithoutClean(array);
  return answer(done, refused);
}

Answer copy_array() {
  static int element;
  PLX_array* source = PLX_array_create(nullptr);
  const bool filled = PLX_array_append(source, &element) == 0;
  PLX_array* copy = PLX_array_createFromArray(source);
  const bool done = filled && copy != nullptr && PLX_array_getIndex(copy, 0) == &element;
  PLX_array_destroyWithoutClean(copy);
  PLX_array_destroyWithoutClean(source);
  return answer(done, copy == nullptr);
}

Answer fill_table() {
  static int element;
  static const uint32_t key = 1;
  PLX_hashtable* table = PLX_hashtable_create(8, PLX_intHashValue, PLX_intHashCompare, nullptr);
  const int inserted = PLX_hashtable_insert(table, &key, &element);
  const bool found = PLX_hashtable_find(table, &key) == &element;
  PLX_array* values = PLX_array_createFromHashTable(table, nullptr);
  const bool done = inserted == 0 && values != nullptr && PLX_array_getIndex(values, 0) == &element;
  const bool refused = values == nullptr && found == (inserted == 0);
  PLX_array_destroyWithoutClean(values);
  PLX_hashtable_destroy(table);
  return answer(done, refused);
}

Answer fill_buffer_list() {
  FILE* const shown = stdout;
  stdout = hidden;
  PLX_bufList* list = PLX_bufList_init(4, 16);
  PLX_bufList_realse(list);
  stdout = shown;
  return answer(list != nullptr, list == nullptr);
}

Answer fill_string_array() {
  StringArray array;
  if (array.push_back("first") == 0) return answer(false, array.size == 0);
  array.setEntry(0, "other");
  return answer(strcmp(array.entries[0], "other") == 0, strcmp(array.entries[0], "first") == 0);
}

// ---- JSON, formatted text ----

Answer parse_json() {
  static const char* const kText =
      "{\"a\":[1,\"\\u0041\\n\",{\"b\":{}}],'c':\"text\",\"d\":[[[[]]]],\"e\":2} ";
  PLX_JsonValue* root = PLX_ParseJsonString(kText);
  const char* text = PLX_FindStringFromJsonValue(root, "c");
  const bool done = text != nullptr && strcmp(text, "text") == 0;
  PLX_FreeJsonValue(root);
  return answer(done, root == nullptr);
}

// A format of either width, without a block of its own.
template <typename Char>
struct Format {
  explicit Format(const char* ascii) { std::copy_n(ascii, strlen(ascii), text); }
  Char text[16] = {};
};

// A float that finds no block prints nothing, and the rest follows.
template <typename Char>
Answer print_float() {
  Char out[400];
  const int n = Engine<Char>::ours(out, 400, Format<Char>("<%.300f>").text, 1.5);
  return answer(n == 304, n == 2 && out[0] == '<' && out[1] == '>');
}

template <typename Char>
Answer scan_float() {
  Char digits[1000] = {};
  std::fill_n(digits, 999, '1');
  double value = 5;
  const int n = Scan<Char>::kString(digits, Format<Char>("%800lf").text, &value);
  return answer(n == 1 && value > 1e100, (n == 0 || n == -1) && value == 5);
}

template <typename Char>
Answer scan_file() {
  Char text[] = {'1', '2', ' ', '3', '4'};
  FILE* file = fmemopen(text, sizeof text, "r");
  int first = 5, second = 5;
  const int n = Scan<Char>::kFile(file, Format<Char>("%d%d").text, &first, &second);
  fclose(file);
  // A read that ends early ends the text there.
  return answer(n == 2 && first == 12 && second == 34, n == -1 && first == 5,
                n == 1 && (first == 12 || first == 1) && second == 5);
}

// ---- digests ----

// Without memory nothing is written.
template <void (*kCrypt)(const Des3Context*, const unsigned char*, unsigned char*, int)>
Answer crypt_des() {
  Des3Context ctx;
  PLX_3des_set2keys(&ctx, kKey, kKey + 8);
  Output out;
  kCrypt(&ctx, kKey, out.data(), 10);
  return answer(!out.untouched(), out.untouched());
}

// A read error ends the file, silently.
template <int (*kDigest)(const char*, char*, int), size_t kLength>
Answer digest_file() {
  Output out;
  FILE* const shown = stderr;
  stderr = hidden;
  const int result = kDigest(g_stKeyMap[0].pszFactorPath, out.text(), 100);
  stderr = shown;
  static char whole[100];  // the first call's result, with nothing failing
  if (whole[0] == 0 && result == 0) memcpy(whole, out.data(), kLength + 1);
  return answer(result == 0 && out.reads(whole), result == -1 && out.untouched(),
                result == 0 && strlen(out.text()) == kLength);
}

Answer hash_stun() {
  Output out;
  const unsigned char* result = stunHMAC(out.data(), kKey, 16, kKey, 16);
  return answer(result != nullptr && out.holds(expected->hmac, 20), result == nullptr);
}

// ---- AES ----

tagAes make_record() {
  tagAes aes = {};
  aes.iMode = 1;
  aes.iKeyBits = 128;
  memcpy(aes.szKey, kKey, 16);
  memcpy(aes.szIV, kKey, 16);
  aes.pszText = const_cast<char*>(kPlain);
  return aes;
}

Answer encrypt_record() {
  const tagAes aes = make_record();
  Output out;
  const int n = PLX_AesEncryByMode(&aes, out.text(), 100);
  return answer(n == 16 && out.holds(expected->record, 16), n <= 0 && out.untouched());
}

Answer decrypt_record() {
  const tagAes aes = make_record();
  Output out;
  const int n =
      PLX_AesDecryByMode(&aes, reinterpret_cast<char*>(expected->record), 16, out.text(), 100);
  return answer(n == 10 && out.holds(kPlain, 10), n <= 0);
}

template <int (*kInit)(const tagAes*, EVP_CIPHER_CTX*)>
Answer init_context() {
  const tagAes aes = make_record();
  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  const int result = kInit(&aes, ctx);
  EVP_CIPHER_CTX_free(ctx);
  return answer(result == 1, result == (ctx == nullptr ? -1 : 0));
}

// A step of the cipher that fails shows as 1 with nothing written.
Answer encrypt_request() {
  Output out;
  const int result = PLX_AesEncry(kEncryption, out.text());
  return answer(result == 1 && out.holds(expected->request_out, 32), result == 0 && out.untouched(),
                result == 1 && out.untouched());
}

// The same shows as a zero before the output.
Answer decrypt_request() {
  Output out;
  const int result = PLX_AesDecry(decryption, out.text(), 100);
  return answer(result == 1 && out.reads(kPlain) && out.bytes[0] == '.',
                result == 0 && out.untouched(), result == 1 && out.bytes[0] == 0);
}

// libcrypto refusing to start the cipher is passed over: the blob is an IV alone, and opens to
// nothing.
constexpr int kSealedSize = 48, kSealedIvSize = 28;

Answer sealing(int result, const Output& out) {
  return answer(result == kSealedSize, result == -1 && out.untouched(), result == kSealedIvSize);
}

Answer opening(int result, const Output& out) {
  return answer(result == 10 && out.reads(kPlain), result == -1 && out.untouched(),
                result == 0 && out.reads(""));
}

Answer seal_by_key() {
  Output out;
  return sealing(PLX_aesCbcEncryptByKey(bytes_of(kPlain), 10, out.text(), 100, kKey, AES_CBC_128),
                 out);
}

Answer open_by_key() {
  Output out;
  const char* sealed = expected->sealed_by_key;
  const int size = static_cast<int>(strlen(sealed));
  return opening(PLX_aesCbcDecryptByKey(sealed, size, out.text(), 100, kKey, AES_CBC_128), out);
}

template <int (*kSeal)(const unsigned char*, int, char*, int)>
Answer seal_by_stored_key() {
  Output out;
  g_WorkKey[0] = 0;
  return sealing(kSeal(bytes_of(kPlain), 10, out.text(), 100), out);
}

template <int (*kOpen)(const char*, int, char*, int), char (Expected::*kSealed)[100]>
Answer open_by_stored_key() {
  Output out;
  g_WorkKey[0] = 0;
  const char* sealed = expected->*kSealed;
  return opening(kOpen(sealed, static_cast<int>(strlen(sealed)), out.text(), 100), out);
}

Answer seal_data() {
  Output out;
  int size = 43;
  const int result =
      CCipher::EncryptData(bytes_of(kPlain), 10, out.data(), size, kKey, AES_CBC_128);
  return answer(result == 1 && size == 32, result == 0 && out.untouched(),
                result == 1 && size == 16);
}

Answer open_data() {
  Output out;
  int size = 100;
  const int result = CCipher::DecryptData(expected->blob, expected->blob_size, out.data(), size,
                                          kKey, AES_CBC_128);
  return answer(result == 1 && size == 10 && out.holds(kPlain, 10), result == 0 && out.untouched(),
                result == 1 && size == 0 && out.untouched());
}

// ---- keys ----

// True once the derivation was started; a failure gives zeros.
Answer derive() {
  Output out;
  const int result = CCipher::deriveKey(kPlain, 10, kKey, 16, 2, 16, out.data());
  return answer(result == 1 && out.holds(expected->derived, 16), false,
                result == 1 && out.is_zero());
}

Answer derive_instance_key() {
  CCipher cipher;
  Output out;
  const int result = cipher.DeriveInitKey("QUJD", out.data());
  return answer(result == 1 && out.holds(expected->instance_key, 16),
                result == 0 && out.untouched(), result == 1 && out.is_zero());
}

// A factor that is read in part counts as a short one.
Answer derive_init_key() {
  Output out;
  const int result = DeriveInitKeyByIndex(1, out.data(), 16);
  return answer(result == 0 && out.holds(expected->init_key, 16), result == -1 && out.untouched(),
                result == 0);
}

Answer read_factor() {
  Output out;
  const int result = getFactorByIndex(1, out.data(), 16);
  return answer(result == 0 && out.holds(kFactor.data(), 16), result == -1 && out.untouched(),
                result == 0 && !out.holds(kFactor.data(), 16));
}

Answer load_work_key() {
  Output out;
  const int result = getPlainWorkKeyByName("aes_prefix_key", out.text(), 64);
  return answer(result == 0 && out.reads(kWorkKey), result == -1 && out.untouched());
}

Answer encode() {
  const char* text = CCipher::Base64(kKey, 16);
  const bool done = text != nullptr && strcmp(text, "MDEyMzQ1Njc4OWFiY2RlZg==\n") == 0;
  const bool refused = text == nullptr;
  deleteArrayPoint_s(const_cast<char*>(text));
  return answer(done, refused);
}

Answer decode() {
  int size = -5;
  unsigned char* data = CCipher::UnBase64("MDEyMzQ1Njc4OWFiY2RlZg==", 24, &size);
  const bool done = data != nullptr && size == 16 && memcmp(data, kKey, 16) == 0;
  const bool refused = data == nullptr && size == -5;
  deleteArrayPoint_s(data);
  return answer(done, refused);
}

Answer draw() {
  Output out;
  const int result = CCipher::GenerateRand(out.data(), 16);
  return answer(result == 1 && !out.untouched(), result == 0 && out.untouched());
}

Answer dump() {
  printUnsignedCharArray("title", kKey, 16);
  return Answer::kDone;
}

KeyFiles* files;

void make_expected() {
  for (int i : {0, 1, 4}) files->provision(i, kFactor, kWorkKey);
  DeriveInitKeyByIndex(1, expected->init_key, 16);
  CCipher().DeriveInitKey("QUJD", expected->instance_key);
  CCipher::deriveKey(kPlain, 10, kKey, 16, 2, 16, expected->derived);
  const tagAes aes = make_record();
  if (PLX_AesEncryByMode(&aes, reinterpret_cast<char*>(expected->record), 32) != 16) abort();
  stunHMAC(expected->hmac, kKey, 16, kKey, 16);
  const unsigned char* plain = bytes_of(kPlain);
  PLX_aesCbcEncryptByKey(plain, 10, expected->sealed_by_key, 100, kKey, AES_CBC_128);
  PLX_aesCbcEncrypt(plain, 10, expected->sealed_by_stb_key, 100);
  PLX_aesCbcEncryptByRandomKey(plain, 10, expected->sealed_by_box_key, 100);
  expected->blob_size = 43;
  CCipher::EncryptData(plain, 10, expected->blob, expected->blob_size, kKey, AES_CBC_128);
  PLX_AesEncry(kEncryption, expected->request_out);
}

}  // namespace

void prepare_calls() {
  hidden = fopen("/dev/null", "w");
  static KeyFiles key_files;
  files = &key_files;
  expected = static_cast<Expected*>(
      mmap(nullptr, sizeof(Expected), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  const pid_t child = fork();
  if (child == 0) {
    make_expected();
    _exit(0);
  }
  int status;
  if (child < 0 || waitpid(child, &status, 0) != child || status != 0) abort();
  snprintf(decryption, sizeof decryption, REQUEST("\"cipherText\":\"%s\""), expected->request_out);
}

const std::vector<Call> kCalls = {
    {"PLX_malloc", [] { return block(PLX_malloc(8)); }},
    {"PLX_strdup", [] { return block(PLX_strdup("text")); }},
    {"PLX_valloc", [] { return block(PLX_valloc(8)); }},
    {"PLX_reallocMem", replace_block},
    {"PLX_realloc", grow_block},
    {"PLX_posix_memalign", align_block},
    {"PLX_array_append", [] { return grow_array(PLX_array_append); }},
    {"PLX_array_insert",
     [] { return grow_array([](PLX_array* a, void* e) { return PLX_array_insert(a, e, 3); }); }},
    {"PLX_array_modify",
     [] { return grow_array([](PLX_array* a, void* e) { return PLX_array_modify(a, 32, e); }); }},
    {"PLX_array_preAppend",
     [] { return grow_array([](PLX_array* a, void*) { return PLX_array_preAppend(a, 1); }); }},
    {"PLX_array_createFromArray", copy_array},
    {"PLX_hashtable_create, PLX_hashtable_insert, PLX_array_createFromHashTable", fill_table},
    {"PLX_bufList_init", fill_buffer_list},
    {"StringArray", fill_string_array},
    {"PLX_ParseJsonString", parse_json},
    {"sprintf_s", print_float<char>},
    {"swprintf_s", print_float<wchar_t>},
    {"sscanf_s", scan_float<char>},
    {"swscanf_s", scan_float<wchar_t>},
    {"fscanf_s", scan_file<char>},
    {"fwscanf_s", scan_file<wchar_t>},
    {"PLX_3des_encrypt", crypt_des<PLX_3des_encrypt>},
    {"PLX_3des_decrypt", crypt_des<PLX_3des_decrypt>},
    {"PLX_md5_encoder_file", digest_file<PLX_md5_encoder_file, 32>},
    {"PLX_sha256_encoder_file", digest_file<PLX_sha256_encoder_file, 64>},
    {"stunHMAC", hash_stun},
    {"PLX_AesEncryByMode", encrypt_record},
    {"PLX_AesDecryByMode", decrypt_record},
    {"PLX_AesEncryInit_ex", init_context<PLX_AesEncryInit_ex>},
    {"PLX_AesDecryInit_ex", init_context<PLX_AesDecryInit_ex>},
    {"PLX_AesEncry", encrypt_request},
    {"PLX_AesDecry", decrypt_request},
    {"PLX_aesCbcEncryptByKey", seal_by_key},
    {"PLX_aesCbcDecryptByKey", open_by_key},
    {"PLX_aesCbcEncrypt", seal_by_stored_key<PLX_aesCbcEncrypt>},
    {"PLX_aesCbcDecrypt", open_by_stored_key<PLX_aesCbcDecrypt, &Expected::sealed_by_stb_key>},
    {"PLX_aesCbcEncryptByRandomKey", seal_by_stored_key<PLX_aesCbcEncryptByRandomKey>},
    {"PLX_aesCbcDecryptByRandomKey",
     open_by_stored_key<PLX_aesCbcDecryptByRandomKey, &Expected::sealed_by_box_key>},
    {"CCipher::EncryptData", seal_data},
    {"CCipher::DecryptData", open_data},
    {"CCipher::deriveKey", derive},
    {"CCipher::DeriveInitKey", derive_instance_key},
    {"DeriveInitKeyByIndex", derive_init_key},
    {"getFactorByIndex", read_factor},
    {"getPlainWorkKeyByName", load_work_key},
    {"CCipher::Base64", encode},
    {"CCipher::UnBase64", decode},
    {"CCipher::GenerateRand", draw},
    {"printUnsignedCharArray", dump, true},
};

}  // namespace plx_test
