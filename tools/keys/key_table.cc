#include "keys/key_table.h"

#include <errno.h>
#include <fmt/core.h>
#include <plx/key_store.h>
#include <plx/securec.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "support/failure.h"

namespace plx::tool {
namespace {

// The table points into these for the rest of the run.
KeyPaths paths_below_root[kKeyCount];

}  // namespace

const char* key_name(int index) { return g_stKeyMap[index].pszKeyName; }

int key_index(const std::string& name) {
  const int index = getIndexValueSetByName(name);
  if (index >= 0) return index;
  std::string known;
  for (int i = 0; i < kKeyCount; ++i) known += fmt::format("{}{}", i == 0 ? "" : ", ", key_name(i));
  wrong_use(fmt::format("no key is called '{}'", name), "the keys are " + known);
}

std::vector<int> key_indexes(const std::vector<std::string>& names) {
  std::vector<int> indexes;
  if (names.empty()) {
    for (int i = 0; i < kKeyCount; ++i) indexes.push_back(i);
  }
  for (const std::string& name : names) indexes.push_back(key_index(name));
  std::sort(indexes.begin(), indexes.end());
  indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
  return indexes;
}

void use_root(const std::string& root) {
  std::string prefix = root;
  while (!prefix.empty() && prefix.back() == '/') prefix.pop_back();
  if (prefix.empty()) return;
  struct stat info;
  if (stat(prefix.c_str(), &info) != 0) system_failure(root, errno);
  if (!S_ISDIR(info.st_mode)) system_failure(root, ENOTDIR, "give the folder that stands for /");
  for (int i = 0; i < kKeyCount; ++i) {
    paths_below_root[i] = {prefix + g_stKeyMap[i].pszFactorPath,
                           prefix + g_stKeyMap[i].pszWorkKeyPath};
    g_stKeyMap[i].pszFactorPath = paths_below_root[i].factor.c_str();
    g_stKeyMap[i].pszWorkKeyPath = paths_below_root[i].work_key.c_str();
  }
}

KeyPaths key_paths(int index) {
  return {g_stKeyMap[index].pszFactorPath, g_stKeyMap[index].pszWorkKeyPath};
}

void use_box(const std::string& id) {
  if (id.size() >= kBoxIdLimit || id.find('\0') != std::string::npos) {
    wrong_use(fmt::format("a box identifier of {} bytes", id.size()),
              fmt::format("identifiers have at most {} bytes", kBoxIdLimit - 1));
  }
  memset_s(g_szStbId, kBoxIdLimit, 0, kBoxIdLimit);
  memcpy_s(g_szStbId, kBoxIdLimit, id.data(), id.size());
}

RepointedKey::RepointedKey(int index, KeyPaths paths)
    : index_(index),
      paths_(std::move(paths)),
      factor_before_(g_stKeyMap[index].pszFactorPath),
      work_key_before_(g_stKeyMap[index].pszWorkKeyPath) {
  g_stKeyMap[index].pszFactorPath = paths_.factor.c_str();
  g_stKeyMap[index].pszWorkKeyPath = paths_.work_key.c_str();
}

RepointedKey::~RepointedKey() {
  g_stKeyMap[index_].pszFactorPath = factor_before_;
  g_stKeyMap[index_].pszWorkKeyPath = work_key_before_;
}

}  // namespace plx::tool
