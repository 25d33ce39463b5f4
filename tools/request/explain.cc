#include "request/explain.h"

#include <fmt/core.h>
#include <stdlib.h>
#include <string.h>

#include <utility>

#include "support/output.h"

namespace plx::tool {
namespace {

constexpr size_t kModeRoom = 16, kSizeRoom = 8, kPaddingRoom = 16;

bool explain_text(const std::string& request, std::string* copy, Explanation* out) {
  size_t start = 0;
  const auto cut = cut_to_braces(request, &start);
  if (!cut) return out->stop("request", "holds no '{' with a '}' behind it");
  if (cut->size() != request.size()) {
    out->say("request", fmt::format("taken from the first '{{' at byte {} to the last '}}', {} of "
                                    "{} bytes",
                                    start, cut->size(), request.size()));
  }
  const JsonRefusal refusal = walk_json(cut->c_str());
  if (refusal.refused) {
    return out->stop("request", fmt::format("does not parse: {} at byte {} (line {} of the object)",
                                            refusal.rule, start + refusal.byte, refusal.line));
  }
  *copy = *cut;
  return true;
}

bool explain_cipher_size(const PLX_JsonValue* tree, Explanation* out) {
  const char* name = "cipherSize";
  const Member member = find_member(tree, name, kSizeRoom);
  note_member(name, member, out);
  if (member.text.empty()) {
    return out->stop(name, fmt::format("{}, and there is no default: it must be 128, 192 or 256",
                                       member.found ? "empty" : "absent"));
  }
  out->bits = atoi(member.text.c_str());
  if (out->bits != 128 && out->bits != 192 && out->bits != 256) {
    return out->stop(name, fmt::format("'{}' counts as {}, and it must be 128, 192 or 256",
                                       printable(member.text), out->bits));
  }
  if (member.text != std::to_string(out->bits)) {
    out->odd(name, fmt::format("'{}' counts as {}: only the number it begins with is read",
                               printable(member.text), out->bits));
  } else {
    out->say(name, fmt::format("{} bits", out->bits));
  }
  return true;
}

bool explain_padding(const PLX_JsonValue* tree, Explanation* out) {
  const char* name = "paddingMode";
  const Member member = find_member(tree, name, kPaddingRoom);
  note_member(name, member, out);
  if (!member.found) return out->stop(name, "absent; it must be present, in ECB as well");
  if (member.text.empty()) {
    out->padding = 2;
    out->say(name, "empty: no padding");
    return true;
  }
  if (member.text != "PKCS5Padding") {
    return out->stop(name,
                     fmt::format("'{}' is neither PKCS5Padding nor empty", printable(member.text)));
  }
  out->padding = 1;
  out->say(name, "PKCS5Padding");
  return true;
}

}  // namespace

void Explanation::say(const char* subject, std::string finding) {
  steps.push_back({Step::Kind::kPlain, subject, std::move(finding)});
}

void Explanation::odd(const char* subject, std::string finding) {
  steps.push_back({Step::Kind::kOddity, subject, std::move(finding)});
}

bool Explanation::stop(const char* subject, std::string finding) {
  steps.push_back({Step::Kind::kStop, subject, std::move(finding)});
  result = 0;
  produced = false;
  return false;
}

void Explanation::come_to_nothing(const char* subject, std::string finding) {
  odd(subject, std::move(finding));
  result = 1;
  produced = false;
  output = 0;
}

void note_member(const char* name, const Member& member, Explanation* out) {
  if (!member.found) return;
  if (member.path != fmt::format(".{}", name)) {
    out->odd(name, fmt::format("found at {}: the whole tree is searched, and the first member of "
                               "the name counts",
                               member.path));
  }
  if (member.container) {
    out->odd(name, "is an object or array, which counts as present with an empty text");
  }
  if (member.cut()) {
    out->odd(name,
             fmt::format("cut from {} to {} characters", member.full_length, member.text.size()));
  }
}

bool explain_mode(const PLX_JsonValue* tree, Explanation* out) {
  const char* name = "encryptMode";
  const Member member = find_member(tree, name, kModeRoom);
  note_member(name, member, out);
  if (member.text == "CBC") {
    out->mode = 1;
  } else if (!member.text.empty() && member.text != "ECB") {
    return out->stop(
        name, fmt::format("'{}' is neither ECB nor CBC, in capitals", printable(member.text)));
  }
  out->say(name, out->mode == 1 ? "CBC"
                 : member.text == "ECB"
                     ? "ECB"
                     : fmt::format("{}: ECB", member.found ? "empty" : "absent"));
  return true;
}

Explanation explain_request(const std::string& request, bool decrypting, bool show_secret) {
  Explanation out;
  out.decrypting = decrypting;
  out.show_secret = show_secret;
  std::string copy;
  if (!explain_text(request, &copy, &out)) return out;
  const JsonTree tree(PLX_ParseJsonString(copy.c_str()));
  if (tree == nullptr) {
    out.stop("request", "the library could not build the tree");
    return out;
  }
  if (!explain_mode(tree.get(), &out) || !explain_cipher_size(tree.get(), &out) ||
      !explain_padding(tree.get(), &out) || !explain_key(tree.get(), &out) ||
      !explain_iv(tree.get(), &out)) {
    return out;
  }
  if (decrypting) {
    explain_decryption(tree.get(), &out);
  } else {
    explain_encryption(tree.get(), &out);
  }
  return out;
}

}  // namespace plx::tool
