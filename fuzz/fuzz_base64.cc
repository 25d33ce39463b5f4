// Both decoders on any text against a decoder that takes one character at a time; every kernel
// against the portable core; and decoding what was encoded.
#include <plx/digest.h>
#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "digest/arch/kernels.h"

namespace {

using namespace plx::digest;

void check(bool holds) {
  if (!holds) __builtin_trap();
}

bool same(const void* a, const void* b, size_t size) {
  return size == 0 || memcmp(a, b, size) == 0;
}

// The bytes of `text`, or empty when a character is no digit or the length is of the form 4k+1.
std::string decode_slowly(const std::string& text, const std::string& digits, bool pad_is_zero) {
  std::string bytes;
  uint32_t bits = 0;
  size_t count = 0;
  for (char c : text) {
    size_t value = c == '\0' ? std::string::npos : digits.find(c);
    if (c == '=' && pad_is_zero) value = 0;
    if (value == std::string::npos) return "";
    bits = bits << 6 | static_cast<uint32_t>(value);
    if (++count % 4 != 1) bytes += static_cast<char>(bits >> (6 - 2 * ((count - 1) % 4)) & 0xFF);
  }
  return count % 4 == 1 ? "" : bytes;
}

std::string digits_of(const char* last_two) {
  return std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789") + last_two;
}

// Heap blocks of exact size, so that a sanitizer sees one byte too far.
std::vector<uint8_t> block(size_t size) { return std::vector<uint8_t>(size); }

void check_standard(const std::string& text) {
  std::string stripped = text;
  while (!stripped.empty() && stripped.back() == '=') stripped.pop_back();
  std::string expected;
  if (text.size() % 4 == 0 && text.size() - stripped.size() < 3) {
    expected = decode_slowly(stripped, digits_of("+/"), true);
  }
  std::vector<uint8_t> out = block(text.size());
  const std::vector<char> in(text.begin(), text.end());
  const unsigned size = PLX_b64_decode(in.data(), static_cast<unsigned>(in.size()), out.data());
  check(size == expected.size() && same(out.data(), expected.data(), size));
  check(size == 0 || out[size] == 0);
  std::string in_place = text;
  auto* const at = reinterpret_cast<uint8_t*>(&in_place[0]);
  check(size == PLX_b64_decode(in_place.data(), static_cast<unsigned>(text.size()), at));
  check(same(at, expected.data(), size));
}

void check_url(const std::string& text) {
  const std::string cut = text.substr(0, text.find('\0'));
  const std::string expected = decode_slowly(cut, digits_of("-_"), false);
  const std::vector<char> in(text.begin(), text.end());
  const int length = static_cast<int>(text.size());
  std::vector<uint8_t> out = block(cut.size() * 3 / 4);
  const unsigned room = static_cast<unsigned>(out.size());
  const unsigned size = PLX_base64UrlDecode(out.data(), room, in.data(), length);
  check(size == expected.size() && same(out.data(), expected.data(), size));
  if (size > 0) check(PLX_base64UrlDecode(out.data(), size - 1, in.data(), length) == 0);
  std::string in_place = text;
  auto* const at = reinterpret_cast<uint8_t*>(&in_place[0]);
  check(size == PLX_base64UrlDecode(at, room, in_place.data(), length));
  check(same(at, expected.data(), size));
}

void check_kernels(const Base64Alphabet& alphabet, const std::string& text) {
  const size_t groups = text.size() / 4;
  std::vector<uint8_t> expected = block(3 * groups);
  const size_t good = decode_groups_portable(alphabet, expected.data(), text.data(), groups);
  for (const Base64Kernel& kernel : kBase64Kernels) {
    if (!kernel.supported()) continue;
    std::vector<uint8_t> out = block(3 * groups);
    const size_t taken = kernel.decode_groups(alphabet, out.data(), text.data(), groups);
    check(taken <= good);
    check(same(out.data(), expected.data(), 3 * taken));
  }
}

void check_round_trip(const std::string& bytes) {
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  const unsigned size = static_cast<unsigned>(bytes.size());
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const unsigned room = static_cast<unsigned>(text.size());
  check(PLX_b64_encode(data, size, &text[0], room) == (size != 0 ? room - 1 : 0));
  if (size == 0) return;
  check(PLX_b64_encode(data, size, &text[0], room - 1) == 0);
  std::vector<uint8_t> out = block(text.size());
  check(PLX_b64_decode(text.data(), room - 1, out.data()) == size);
  check(same(out.data(), data, size));
  check(PLX_base64UrlEncoder(&text[0], room, data, size) == 0);
  check(PLX_base64UrlDecode(out.data(), size, text.data(), static_cast<int>(room)) == size);
  check(same(out.data(), data, size));
  // In place, with the terminator before the given length.
  auto* const at = reinterpret_cast<uint8_t*>(&text[0]);
  check(PLX_base64UrlDecode(at, size, text.data(), static_cast<int>(room)) == size);
  check(same(at, data, size));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  check_standard(input);
  check_url(input);
  check_kernels(kStandardAlphabet, input);
  check_kernels(kUrlAlphabet, input);
  check_round_trip(input);
  return 0;
}
