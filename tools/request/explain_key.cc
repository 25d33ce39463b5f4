// Where the key of a request comes from and how it is completed.
#include <fmt/core.h>

#include <algorithm>

#include "keys/key_material.h"
#include "keys/key_table.h"
#include "keys/verdict.h"
#include "request/explain.h"
#include "request/probe.h"
#include "support/output.h"

namespace plx::tool {
namespace {

constexpr size_t kKeyRoom = 32;  // of the field that takes prefix, suffix and terminator
constexpr size_t kSuffixSize = 4;
const char kName[] = "cipherPrefix";

std::string shown(const std::string& secret, const Explanation& out) {
  return out.show_secret ? fmt::format(" '{}'", printable(secret)) : "";
}

// What the append of the suffix does to a prefix of this many characters.
void explain_suffix(size_t prefix, Explanation* out) {
  const size_t needed = static_cast<size_t>(out->bits) / 8;
  if (prefix >= kKeyRoom) {
    out->odd("key",
             "a prefix of 32 characters and more is dropped: the key is the suffix and zeros");
    return;
  }
  if (prefix + kSuffixSize >= kKeyRoom) {
    out->odd("key",
             "prefix and suffix leave no room for the terminator, so that the first byte "
             "of the key becomes zero");
    return;
  }
  const size_t length = prefix + kSuffixSize;
  if (prefix >= needed) {
    out->odd("key", fmt::format("the prefix alone fills the {} bytes; {}the suffix is not used",
                                needed, prefix > needed ? "its rest and " : ""));
  } else if (length > needed) {
    out->odd("key",
             fmt::format("only {} of the 4 characters of the suffix are used", needed - prefix));
  } else if (length < needed) {
    out->odd("key", fmt::format("prefix and suffix have {} characters; zeros fill the other {}",
                                length, needed - length));
  }
}

bool explain_stored_key(Explanation* out) {
  Secret work_key;
  if (!load_work_key(kPrefixKey, &work_key)) {
    const KeyVerdict verdict = judge_key(kPrefixKey, true);
    return out->stop("key", fmt::format("no {}, so that {} of the key store is asked, which does "
                                        "not load: {}: {} ({})",
                                        kName, key_name(kPrefixKey), verdict.finding.file,
                                        verdict.finding.problem, verdict.finding.detail));
  }
  const std::string text(work_key.begin(), work_key.end());
  out->say("key", fmt::format("from the key store: {}, {} characters{}, and the library's suffix",
                              key_name(kPrefixKey), text.size(), shown(text, *out)));
  explain_suffix(text.size(), out);
  return true;
}

}  // namespace

bool explain_key(const PLX_JsonValue* tree, Explanation* out) {
  const Member member = find_member(tree, kName, kKeyRoom);
  note_member(kName, member, out);
  out->key_prefix = member.text;
  if (member.text.empty()) {
    if (!explain_stored_key(out)) return false;
  } else {
    const size_t wanted = static_cast<size_t>(out->bits) / 8 - kSuffixSize;
    if (member.text.size() != wanted) {
      return out->stop(kName, fmt::format("{} characters, and {} bits take exactly {}",
                                          member.text.size(), out->bits, wanted));
    }
    out->say("key", fmt::format("{}, {} characters{}, and the library's suffix", kName, wanted,
                                shown(member.text, *out)));
    explain_suffix(wanted, out);
  }
  out->say("key", fmt::format("check value {}", probe_key(out->key_prefix, out->bits)));
  return true;
}

}  // namespace plx::tool
