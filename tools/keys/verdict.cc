#include "keys/verdict.h"

#include <errno.h>
#include <fmt/core.h>
#include <plx/cipher.h>
#include <plx/key_store.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "keys/key_material.h"
#include "keys/key_table.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/secret.h"

namespace plx::tool {
namespace {

using TRUX::CIPHER::CCipher;

constexpr size_t kFactorRead = 32;  // as much of a factor file as the library reads
const char kWriteAnew[] = "write both files anew with 'plxutil keys provision --force'";

// Bytes of a key file, decoded as the library decodes them.
Secret decode(Secret text) {
  int size = 0;
  struct DeleteArray {
    void operator()(unsigned char* block) const { deleteArrayPoint_s(block); }
  };
  const std::unique_ptr<unsigned char, DeleteArray> bytes(CCipher::UnBase64(
      reinterpret_cast<char*>(text.data()), static_cast<int>(text.size()), &size));
  if (bytes == nullptr || size <= 0) return {};
  Secret decoded(bytes.get(), bytes.get() + size);
  wipe(bytes.get(), static_cast<size_t>(size));
  return decoded;
}

Finding judge_access(const std::string& path, const char* advice_if_missing) {
  struct stat info;
  if (stat(path.c_str(), &info) != 0) {
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR) {
      return {path, "missing", error_text(error), advice_if_missing};
    }
    return {path, "unreadable", error_text(error), "check owner and mode of file and folders"};
  }
  if (!S_ISREG(info.st_mode)) {
    return {path, "no file", S_ISDIR(info.st_mode) ? "it is a folder" : "it is no regular file",
            "move it away and provision the key"};
  }
  if (access(path.c_str(), R_OK) != 0) {
    return {path, "unreadable", error_text(errno),
            "check owner and mode; the reading process is another user on a box"};
  }
  if (info.st_size == 0) return {path, "empty", "it holds no byte", kWriteAnew};
  return {};
}

Finding judge_base64(const std::string& path, const Secret& text) {
  const Base64Fault fault =
      find_base64_fault({reinterpret_cast<const char*>(text.data()), text.size()});
  if (!fault.found) return {};
  return {path, "not Base64", fmt::format("{} at byte {}", fault.what, fault.byte),
          "copy the file anew, or write both anew with 'plxutil keys provision --force'"};
}

Finding judge_factor(const std::string& path) {
  Finding finding = judge_access(path, "provision the key, or copy the file from its source");
  if (finding.found()) return finding;
  Secret text = read_secret(path, "factor", kLargestInput - 1);
  if (text.size() > kFactorRead) text.resize(kFactorRead);
  return judge_base64(path, text);
}

// What the blob of a work-key file lacks, up to the point where only the key can tell.
Finding judge_blob(const std::string& path, size_t size) {
  if (size < kIvSize) {
    return {path, "too short",
            fmt::format("{} bytes decoded, and the IV alone has {}", size, kIvSize), kWriteAnew};
  }
  const size_t cipher_text = size - kIvSize;
  if (cipher_text == 0 || cipher_text % 16 != 0) {
    return {path, "wrong length",
            fmt::format("{} bytes of cipher text behind the IV, and blocks have 16", cipher_text),
            "copy the file anew; it may have been cut"};
  }
  return {};
}

Finding judge_work_key(int index, const std::string& path, bool box_given) {
  Finding finding = judge_access(path, "provision the key, or copy the file from its source");
  if (finding.found()) return finding;
  const Secret text = read_secret(path, "work key", kLargestInput - 1);
  finding = judge_base64(path, text);
  if (finding.found()) return finding;
  const Secret blob = decode(text);
  finding = judge_blob(path, blob.size());
  if (finding.found()) return finding;
  if (blob.size() > longest_work_key(index) + 2 * kIvSize) {
    return {path, "too long",
            fmt::format("its readers take {} characters", longest_work_key(index)),
            "provision a shorter work key"};
  }
  std::string why = "factor, work-key file and the secrets of this build do not belong together";
  if (index == kBoxKey) {
    why += box_given ? ", or the box identifier is another" : "; no box identifier was given";
  }
  return {path, "does not open", why,
          index == kBoxKey && !box_given
              ? "give the identifier with --stb-id"
              : "compare the fingerprint of 'plxutil version' with that of the maker"};
}

// The factor file as the library takes it, where that may not be as meant.
void warn_about_factor(const std::string& path, KeyVerdict* verdict) {
  Secret text = read_secret(path, "factor", kLargestInput - 1);
  if (text.size() > kFactorRead) {
    text.resize(kFactorRead);
    verdict->warnings.push_back(
        fmt::format("{}: only the first {} bytes are read", path, kFactorRead));
  }
  const Finding fault = judge_base64(path, text);
  if (fault.found()) verdict->warnings.push_back(fmt::format("{}: {}", path, fault.detail));
  const size_t size = decode(text).size();
  if (size > kFactorSize) {
    verdict->warnings.push_back(
        fmt::format("{}: decodes to {} bytes, so that the factor counts as zeros", path, size));
  } else if (size < kFactorSize) {
    verdict->warnings.push_back(
        fmt::format("{}: decodes to {} bytes; zeros fill it up to {}", path, size, kFactorSize));
  }
}

void warn_about_work_key(const Secret& work_key, KeyVerdict* verdict) {
  const size_t size = work_key.size();
  if (size == 0) verdict->warnings.push_back("the work key is empty");
  if (size != 0 && (work_key.back() == '\n' || work_key.back() == '\r')) {
    verdict->warnings.push_back("the work key ends in a line end, which is part of the key");
  }
  if (verdict->index == kPrefixKey && size >= 28) {
    verdict->warnings.push_back(
        "a prefix of 28 characters and more leaves no room for the suffix: requests get a key "
        "whose first byte is zero");
  }
}

}  // namespace

KeyVerdict judge_key(int index, bool box_given) {
  const KeyPaths paths = key_paths(index);
  KeyVerdict verdict;
  verdict.index = index;
  // Files that are none are seen beforehand, for the library would wait for a pipe to be filled.
  verdict.finding = judge_access(paths.factor, "provision the key, or copy the file");
  if (!verdict.finding.found()) {
    verdict.finding = judge_access(paths.work_key, "provision the key, or copy the file");
  }
  if (verdict.finding.problem == "no file") return verdict;
  Secret work_key;
  verdict.loads = load_work_key(index, &work_key);
  if (verdict.loads) {
    verdict.finding = {};
    verdict.length = work_key.size();
    warn_about_factor(paths.factor, &verdict);
    warn_about_work_key(work_key, &verdict);
    return verdict;
  }
  verdict.finding = judge_factor(paths.factor);
  if (!verdict.finding.found()) {
    verdict.finding = judge_work_key(index, paths.work_key, box_given);
  }
  return verdict;
}

}  // namespace plx::tool
