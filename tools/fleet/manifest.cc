#include "fleet/manifest.h"

#include <fmt/core.h>

#include "digest/check_list.h"

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
  move_into_place(unfinished_, path);
}

}  // namespace plx::tool
