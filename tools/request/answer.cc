#include "request/answer.h"

#include <plx/cipher.h>

#include <algorithm>

namespace plx::tool {
namespace {

// The library takes at most 1022 characters of a text. Encrypted they are at most 1024 bytes, in
// hexadecimal 2048 digits; hexadecimal text to decrypt asks for room of at most 1024 bytes.
constexpr size_t kCipherTextRoom = 2 * 1024;
constexpr size_t kPlainTextRoom = 1024;
constexpr size_t kMargin = 64;

bool is_upper_hex(unsigned char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

// Runs one decryption into a buffer full of `pattern`, with one byte before it that the library
// zeroes when a step of the cipher failed.
int decrypt_over(const std::string& request, unsigned char pattern, Secret* out, bool* failed) {
  Secret buffer(1 + kPlainTextRoom + kMargin, pattern);
  const int result = PLX_AesDecry(request.c_str(), reinterpret_cast<char*>(buffer.data()) + 1,
                                  static_cast<int>(kPlainTextRoom));
  *failed = buffer[0] != pattern;
  out->assign(buffer.begin() + 1, buffer.end());
  return result;
}

}  // namespace

Answer encrypt_request(const std::string& request) {
  constexpr unsigned char kPattern = '.';  // no digit, so that the end of the digits shows
  Answer answer;
  answer.text.assign(kCipherTextRoom + kMargin, kPattern);
  answer.result = PLX_AesEncry(request.c_str(), reinterpret_cast<char*>(answer.text.data()));
  const auto end = std::find_if_not(answer.text.begin(), answer.text.end(), is_upper_hex);
  answer.text.erase(end, answer.text.end());
  answer.produced = answer.result == 1 && !answer.text.empty();
  return answer;
}

Answer decrypt_request(const std::string& request) {
  Answer answer;
  bool failed = false;
  answer.result = decrypt_over(request, 0xFE, &answer.text, &failed);
  answer.produced = answer.result == 1 && !failed;
  if (!answer.produced) {
    answer.text.clear();
    return answer;
  }
  // The length is told by nobody: bytes that follow the pattern were not written, and the last one
  // written is the terminator.
  Secret second;
  decrypt_over(request, 0x01, &second, &failed);
  size_t written = answer.text.size();
  while (written > 0 && answer.text[written - 1] != second[written - 1]) --written;
  answer.text.resize(written > 0 ? written - 1 : 0);
  return answer;
}

}  // namespace plx::tool
