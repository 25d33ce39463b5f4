#include "cipher/byte_dump.h"

#include <plx/key_store.h>

#include "cipher/secret_array.h"
#include "securec/output/format.h"
#include "securec/string.h"

namespace plx::cipher {
namespace {

constexpr size_t kDumpSize = 1024;
constexpr size_t kScratchSize = 8;

}  // namespace

void format_dump(char* text, size_t text_size, const char* title, const unsigned char* data,
                 int len) {
  securec::copy_string(text, text_size, title, text_size - 1);
  if (securec::append_string(text, text_size, "[") != EOK) return;
  SecretBytes<kScratchSize> scratch;
  for (int i = 0; i < len; ++i) {
    const char* format = i < len - 1 ? "%02X " : "%02X";
    securec::format_text(scratch.text(), kScratchSize, kScratchSize - 1, format, data[i]);
    if (securec::append_string(text, text_size, scratch.text()) != EOK) return;
  }
  securec::append_string(text, text_size, "]");
}

}  // namespace plx::cipher

extern "C" void printUnsignedCharArray(const char* title, const unsigned char* data, int len) {
  if (title == nullptr || data == nullptr) return;
  const plx::cipher::SecretArray text = plx::cipher::make_secret_array(plx::cipher::kDumpSize);
  if (text == nullptr) return;
  // Nothing is printed: a key could be in it.
  plx::cipher::format_dump(text_of(text), plx::cipher::kDumpSize, title, data, len);
}
