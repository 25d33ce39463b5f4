#include "fleet/work_folder.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

#include "support/failure.h"
#include "support/file.h"

namespace plx::tool {

namespace fs = std::filesystem;

WorkFolder::WorkFolder(const std::string& path) : path_(path) {
  make_folders(path);
  const std::string name = path + "/lock";
  lock_ = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock_ < 0) system_failure(path + ": cannot write into this folder", errno);
  if (!lock_patiently()) {
    const int error = errno;
    close(lock_);
    if (error != EWOULDBLOCK) system_failure(name, error);
    throw Failure(Exit::kSystemError,
                  fmt::format("{}: another run of the same work is going on", path),
                  "wait for it, or give each run its own --shard");
  }
  remove_leftovers();
}

// The workers of a run that was killed hold its lock until they have ended too, a moment later.
bool WorkFolder::lock_patiently() const {
  for (int attempt = 0; attempt < 20; ++attempt) {
    if (flock(lock_, LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK) return false;
    usleep(100 * 1000);
  }
  errno = EWOULDBLOCK;
  return false;
}

WorkFolder::~WorkFolder() { close(lock_); }

void WorkFolder::remove_leftovers() {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(path_, error)) {
    if (entry.path().filename() != "lock") fs::remove_all(entry.path(), error);
    if (error) system_failure(entry.path().string(), error.value());
  }
  if (error) system_failure(path_, error.value());
}

void WorkFolder::remove() {
  std::error_code error;  // a folder that stays behind does no harm
  fs::remove_all(path_, error);
}

}  // namespace plx::tool
