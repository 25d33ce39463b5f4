// What becomes of the text of a request, and how much room it needs.
#include <ctype.h>
#include <fmt/core.h>

#include <algorithm>

#include "request/explain.h"
#include "request/probe.h"

namespace plx::tool {
namespace {

constexpr size_t kBlock = 16;
constexpr size_t kTextRoom = 1024;

size_t round_down(size_t size) { return size / kBlock * kBlock; }

Member read_text(const PLX_JsonValue* tree, const char* name, Explanation* out) {
  const Member member = find_member(tree, name, kTextRoom);
  note_member(name, member, out);
  out->say(name, member.found ? fmt::format("{} characters", member.text.size())
                              : std::string("absent, which counts as empty"));
  return member;
}

bool is_hex(unsigned char c) { return isxdigit(c) != 0; }

// The number of padding bytes at the end of a padded text; 0 when the padding is not right.
size_t padding_of(const Secret& text) {
  if (text.empty()) return 0;
  const size_t count = text.back();
  if (count < 1 || count > kBlock) return 0;
  const bool uniform = std::all_of(text.end() - static_cast<long>(count), text.end(),
                                   [&](unsigned char c) { return c == count; });
  return uniform ? count : 0;
}

void note_digits(const std::string& digits, Explanation* out) {
  const auto bad =
      std::count_if(digits.begin(), digits.end(), [](unsigned char c) { return !is_hex(c); });
  if (bad != 0) {
    out->odd("cipherText",
             fmt::format("{} characters that are no hexadecimal digits count as 0", bad));
  }
  if (digits.size() % 2 != 0) {
    out->odd("cipherText",
             "an odd number of digits: the last one is taken as the upper half of a "
             "byte");
  }
}

void explain_padded_decryption(const std::string& digits, size_t bytes, Explanation* out) {
  const Secret raw =
      probe_raw_plain_text(out->mode, out->bits, out->key_prefix, out->iv_prefix, digits);
  const size_t padding = raw.size() == bytes ? padding_of(raw) : 0;
  if (padding == 0) {
    out->come_to_nothing("output",
                         "the padding is not right (another key, another text): the call "
                         "answers 1, writes no plain text and zeroes the byte before the "
                         "caller's buffer");
    return;
  }
  out->output = bytes - padding;
  if (out->output == 0) {
    out->stop("output", "an empty plain text, which the call cannot tell from a failure: 0");
    return;
  }
  out->say("output", fmt::format("{} bytes and a terminator", out->output));
}

}  // namespace

void explain_encryption(const PLX_JsonValue* tree, Explanation* out) {
  const size_t length = read_text(tree, "plainText", out).text.size();
  const size_t key_bytes = static_cast<size_t>(out->bits) / 8;
  const size_t buffer = key_bytes * (1 + length / key_bytes);
  const size_t needed = round_down(length) + kBlock;
  out->room = 2 * needed;
  out->say("room",
           fmt::format("the caller's buffer needs {} bytes; no terminator is written", out->room));
  if (needed > buffer) {
    out->come_to_nothing("output",
                         fmt::format("{} characters under a {}-bit key: the library's own buffer "
                                     "has {} bytes where {} are asked for, so the call answers 1 "
                                     "and writes nothing",
                                     length, out->bits, buffer, needed));
  } else if (out->padding == 1) {
    out->output = 2 * needed;
  } else if (length == 0) {
    out->stop("output", "nothing to encrypt and no padding: 0");
  } else if (length % kBlock != 0) {
    out->come_to_nothing("output", fmt::format("without padding {} characters are no whole blocks: "
                                               "the call answers 1 and writes nothing",
                                               length));
  } else {
    out->output = 2 * length;
  }
  if (out->output != 0) out->say("output", fmt::format("{} hexadecimal digits", out->output));
}

void explain_decryption(const PLX_JsonValue* tree, Explanation* out) {
  const Member member = read_text(tree, "cipherText", out);
  note_digits(member.text, out);
  const size_t digits = member.text.size();
  const size_t bytes = (digits + 1) / 2;
  out->room = round_down(digits) + kBlock;
  out->say("room",
           fmt::format("outSize must be at least {}: the digits are measured, not the bytes",
                       out->room));
  if (bytes == 0 && out->padding == 2) {
    out->stop("output", "nothing to decrypt and no padding: 0");
  } else if (bytes % kBlock != 0 || bytes == 0) {
    out->come_to_nothing("output", fmt::format("{} bytes are no whole blocks: the call answers 1, "
                                               "writes no plain text and zeroes the byte before "
                                               "the caller's buffer",
                                               bytes));
  } else if (out->padding == 2) {
    out->output = bytes;
    out->say("output", fmt::format("{} bytes and a terminator", bytes));
  } else {
    explain_padded_decryption(member.text, bytes, out);
  }
}

}  // namespace plx::tool
