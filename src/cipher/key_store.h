// The key store as the rest of the family and the tool's checks call it: with the cause of a
// failure, which the exported functions do not tell.
#ifndef PLX_SRC_CIPHER_KEY_STORE_H
#define PLX_SRC_CIPHER_KEY_STORE_H

#include <string_view>

namespace plx::cipher {

constexpr int kKeyCount = 5;
constexpr int kFactorSize = 16;
constexpr int kInitKeySize = 16;

enum class KeyFault {
  kNone,
  kBadArgument,  // null, or a size or an index out of range
  kUnknownName,
  kNoMemory,
  kFactorUnreadable,  // no such file, no permission, a folder
  kFactorEmpty,
  kNoVector,
  kNotDerived,  // libcrypto failed, and the destination is zero
  kWorkKeyUnreadable,
  kWorkKeyNotBase64,   // nothing in the file that decodes
  kWorkKeyTooShort,    // fewer bytes than an IV
  kWorkKeyNotOpened,   // wrong padding: another factor, vector or box identifier, or damage
  kWorkKeyDoesNotFit,  // the caller's room is too small
};

// The index of the row called exactly `name`, or -1.
int find_key(std::string_view name);

// Contracts of getFactorByIndex, DeriveInitKeyByIndex and getPlainWorkKeyByName. Whatever is
// wrong but kNotDerived, the destination is untouched.
KeyFault read_factor(int index, unsigned char* dst, int dst_size);
KeyFault derive_init_key(int index, unsigned char* out, int out_len);
KeyFault load_work_key(std::string_view name, char* out, int out_size);

}  // namespace plx::cipher

#endif
