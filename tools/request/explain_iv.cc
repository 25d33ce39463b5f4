// The bytes that form the IV of a request.
#include <fmt/core.h>
#include <plx/digest.h>

#include "request/explain.h"
#include "request/probe.h"
#include "support/output.h"

namespace plx::tool {
namespace {

constexpr size_t kIvRoom = 32;
constexpr size_t kIvBytes = 16;
constexpr size_t kSuffixSize = 4;
const char kName[] = "IVPrefix";

std::string composition(size_t prefix) {
  if (prefix == 0) return "the library's default prefix and its suffix";
  if (prefix >= kIvBytes) return fmt::format("the first 16 of {} characters; no suffix", prefix);
  const size_t suffix = prefix + kSuffixSize > kIvBytes ? kIvBytes - prefix : kSuffixSize;
  const size_t zeros = kIvBytes - prefix - suffix;
  return fmt::format("{} characters, {} of the library's suffix{}", prefix, suffix,
                     zeros == 0 ? "" : fmt::format(", {} zero bytes", zeros));
}

std::string bytes_shown(const Secret& iv, const Explanation& out) {
  const std::string_view bytes(reinterpret_cast<const char*>(iv.data()), iv.size());
  if (out.show_secret) return to_hex(bytes);
  unsigned char digest[32];
  sha256_get(digest, iv.data(), static_cast<unsigned>(iv.size()));
  return "sha256 " + to_hex({reinterpret_cast<const char*>(digest), 8}) + "...";
}

}  // namespace

bool explain_iv(const PLX_JsonValue* tree, Explanation* out) {
  const Member member = find_member(tree, kName, kIvRoom);
  if (out->mode != 1) {
    if (member.found) out->say("IV", fmt::format("{} is read and not used in ECB", kName));
    return true;
  }
  note_member(kName, member, out);
  if (!member.found) {
    return out->stop(kName, "absent; CBC asks for it, and an empty one gives the default");
  }
  out->iv_prefix = member.text;
  const std::string finding = fmt::format("{}: {}", composition(member.text.size()),
                                          bytes_shown(probe_iv(member.text), *out));
  // 12 characters and the suffix make 16; every other length is likely to be a slip.
  if (member.text.empty() || member.text.size() == kIvBytes - kSuffixSize) {
    out->say("IV", finding);
  } else {
    out->odd("IV", finding);
  }
  return true;
}

}  // namespace plx::tool
