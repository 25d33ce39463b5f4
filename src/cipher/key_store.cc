// The table of named keys, and the way from a name through both of its files to the work key.
#include "cipher/key_store.h"

#include <fcntl.h>
#include <limits.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

#include "cipher/ccipher.h"
#include "cipher/evp_base64.h"
#include "cipher/key_vectors.h"
#include "cipher/sealed.h"
#include "cipher/secret_array.h"
#include "internal/owned.h"
#include "securec/memory.h"
#include "securec/string.h"

static_assert(sizeof(tagKeyMap) == 4 * sizeof(void*));

tagKeyMap g_stKeyMap[5] = {
    {"encrypt_stb_key", "/system/etc/security/i/c/f", "/system/etc/security/i/c/w",
     getVectorForSTBEncyptInitKey},
    {"aes_prefix_key", "/system/etc/security/i/p/f", "/system/etc/security/i/p/w",
     getVectorForCipherPrefixInitKey},
    {"whitelist_key", "/system/etc/security/i/w/f", "/system/etc/security/i/w/w",
     getVectorForWhiteListInitKey},
    {"pvr_file_key", "/system/etc/security/i/v/f", "/system/etc/security/i/v/w",
     getVectorForPVRFileInitKey},
    {"epg_profile_key", "/data/security/i/u/f", "/data/security/i/u/w",
     getVectorForEPGProfileEncyptInitKey},
};

namespace plx::cipher {
namespace {

constexpr int kInitKeyIterations = 10000;

struct CloseDescriptor {
  int descriptor;
  ~CloseDescriptor() {
    if (descriptor >= 0) close(descriptor);
  }
};

// Reads the start of a factor file, as one read gives it. `*out_len` is 0 for an empty file.
KeyFault read_start(const char* path, const SecretArray& text, size_t size, int* out_len) {
  if (path == nullptr) return KeyFault::kFactorUnreadable;
  const CloseDescriptor file{open(path, O_RDONLY | O_CLOEXEC)};
  if (file.descriptor < 0) return KeyFault::kFactorUnreadable;
  const ssize_t count = read(file.descriptor, text.get(), size);
  if (count < 0) return KeyFault::kFactorUnreadable;
  *out_len = static_cast<int>(count);
  return KeyFault::kNone;
}

// The size of a file, or -1 for what has none; a folder says LONG_MAX on some file systems.
int file_size(FILE* file) {
  (void)fseek(file, 0, SEEK_END);
  const long size = ftell(file);
  (void)fseek(file, 0, SEEK_SET);
  return size >= 0 && size < INT_MAX ? static_cast<int>(size) : -1;
}

struct Bytes {
  SecretArray data;
  int size = 0;
};

KeyFault read_work_key_file(const char* path, Bytes* out_text) {
  if (path == nullptr) return KeyFault::kWorkKeyUnreadable;
  const OwnedFile file(fopen(path, "r"));
  if (file == nullptr) return KeyFault::kWorkKeyUnreadable;
  out_text->size = file_size(file.get());
  if (out_text->size < 0) return KeyFault::kWorkKeyUnreadable;
  const auto size = static_cast<size_t>(out_text->size);
  out_text->data = make_secret_array(size + 1);
  if (out_text->data == nullptr) return KeyFault::kNoMemory;
  if (size != 0 && fread(out_text->data.get(), size, 1, file.get()) != 1) {
    return KeyFault::kWorkKeyUnreadable;
  }
  return KeyFault::kNone;
}

// The file's text as a sealed blob.
KeyFault decode_work_key(const Bytes& text, Bytes* out_blob) {
  out_blob->data = decode_secret(text_of(text.data), text.size, &out_blob->size);
  if (out_blob->data == nullptr) {
    return text.size == 0 ? KeyFault::kWorkKeyNotBase64 : KeyFault::kNoMemory;
  }
  if (out_blob->size == 0) return KeyFault::kWorkKeyNotBase64;
  return out_blob->size < 16 ? KeyFault::kWorkKeyTooShort : KeyFault::kNone;
}

KeyFault open_work_key(const Bytes& blob, const unsigned char* init_key, Bytes* out_plain) {
  out_plain->size = blob.size + 1;
  out_plain->data = make_secret_array(static_cast<size_t>(out_plain->size));
  if (out_plain->data == nullptr) return KeyFault::kNoMemory;
  switch (open_sealed(blob.data.get(), blob.size, out_plain->data.get(), &out_plain->size, init_key,
                      kSealedWithAes128)) {
    case Opening::kRefused:
      return KeyFault::kNoMemory;
    case Opening::kDoubtful:
      return KeyFault::kWorkKeyNotOpened;
    case Opening::kOpened:
      break;
  }
  return KeyFault::kNone;
}

}  // namespace

int find_key(std::string_view name) {
  for (int i = 0; i < kKeyCount; ++i) {
    const char* row_name = g_stKeyMap[i].pszKeyName;
    if (row_name != nullptr && name == row_name) return i;
  }
  return -1;
}

KeyFault read_factor(int index, unsigned char* dst, int dst_size) {
  if (dst == nullptr || dst_size < kFactorSize) return KeyFault::kBadArgument;
  if (index < 0 || index >= kKeyCount) return KeyFault::kBadArgument;
  const size_t text_size = 2 * static_cast<size_t>(dst_size);
  const SecretArray text = make_secret_array(text_size);
  if (text == nullptr) return KeyFault::kNoMemory;
  int text_len = 0;
  const KeyFault fault = read_start(g_stKeyMap[index].pszFactorPath, text, text_size, &text_len);
  if (fault != KeyFault::kNone) return fault;
  int factor_len = 0;
  const SecretArray factor = decode_secret(text_of(text), text_len, &factor_len);
  if (factor == nullptr) return text_len == 0 ? KeyFault::kFactorEmpty : KeyFault::kNoMemory;
  // Callers depend on a factor that is too long being passed over as if it had been copied.
  if (factor_len <= dst_size) {
    securec::copy_memory(dst, static_cast<size_t>(dst_size), factor.get(),
                         static_cast<size_t>(factor_len));
  }
  return KeyFault::kNone;
}

KeyFault derive_init_key(int index, unsigned char* out, int out_len) {
  if (out == nullptr || index < 0 || out_len < 1) return KeyFault::kBadArgument;
  SecretBytes<kFactorSize> factor;
  const KeyFault fault = read_factor(index, factor.data(), kFactorSize);
  if (fault != KeyFault::kNone) return fault;
  SecretBytes<kVectorSize> vector;
  const tagKeyVectorFunction get_vector = g_stKeyMap[index].pfnGetVector;
  if (get_vector == nullptr || get_vector(vector.data(), kVectorSize) == nullptr) {
    return KeyFault::kNoVector;
  }
  return derive_key(factor.data(), kFactorSize, vector.data(), kVectorSize, kInitKeyIterations,
                    out_len, out) == Derivation::kDone
             ? KeyFault::kNone
             : KeyFault::kNotDerived;
}

KeyFault load_work_key(std::string_view name, char* out, int out_size) {
  const int index = find_key(name);
  if (index < 0) return KeyFault::kUnknownName;
  if (out == nullptr) return KeyFault::kBadArgument;
  SecretBytes<kInitKeySize> init_key;
  KeyFault fault = derive_init_key(index, init_key.data(), kInitKeySize);
  Bytes text, blob, plain;
  if (fault == KeyFault::kNone) {
    fault = read_work_key_file(g_stKeyMap[index].pszWorkKeyPath, &text);
  }
  if (fault == KeyFault::kNone) fault = decode_work_key(text, &blob);
  if (fault == KeyFault::kNone) fault = open_work_key(blob, init_key.data(), &plain);
  if (fault != KeyFault::kNone) return fault;
  if (plain.size >= out_size) return KeyFault::kWorkKeyDoesNotFit;
  securec::copy_string(out, static_cast<size_t>(out_size), text_of(plain.data),
                       static_cast<size_t>(plain.size));
  return KeyFault::kNone;
}

}  // namespace plx::cipher

using namespace plx::cipher;

static int result_of(KeyFault fault) { return fault == KeyFault::kNone ? 0 : -1; }

extern "C" {

int getIndexValueSetByName(const std::string& name) { return find_key(name); }

unsigned char* getVectorForInitKeyByIndex(unsigned int index, unsigned char* dst,
                                          unsigned int dstSize) {
  if (!takes_vector(dst, dstSize) || index >= kKeyCount) return nullptr;
  const tagKeyVectorFunction get_vector = g_stKeyMap[index].pfnGetVector;
  return get_vector != nullptr ? get_vector(dst, dstSize) : nullptr;
}

int DeriveInitKeyByIndex(int index, unsigned char* out, int outLen) {
  const KeyFault fault = derive_init_key(index, out, outLen);
  // Callers depend on 0 once the derivation was started.
  return fault == KeyFault::kNotDerived ? 0 : result_of(fault);
}

int getPlainWorkKeyByName(const std::string& name, char* out, int outSize) {
  return result_of(load_work_key(name, out, outSize));
}

void deleteArrayPoint_s(void* p) { delete[] static_cast<unsigned char*>(p); }

}  // extern "C"

int getFactorByIndex(int index, unsigned char* dst, int dstSize) {
  return result_of(read_factor(index, dst, dstSize));
}
