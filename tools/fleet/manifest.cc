#include "fleet/manifest.h"

#include <errno.h>
#include <fmt/core.h>
#include <stdio.h>

#include "digest/check_list.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

Access readable_by_all() {
  Access access;
  access.mode = 0644;  // it holds nothing secret
  return access;
}

}  // namespace

Manifest::Manifest(const std::string& folder, const std::string& fingerprint)
    : unfinished_(folder + "/manifest"),
      file_(unfinished_, readable_by_all()),
      lines_(fmt::format("# secrets {}\n", fingerprint)) {}

void Manifest::add(const std::string& digest, const std::string& name) {
  lines_ += list_line(digest, name);
  if (lines_.size() < 65536) return;
  file_.write(lines_);
  lines_.clear();
}

void Manifest::publish(const std::string& path) {
  file_.write(lines_);
  file_.commit();
  if (rename(unfinished_.c_str(), path.c_str()) != 0) system_failure(path, errno);
  sync_folder(folder_of(path));
}

}  // namespace plx::tool
