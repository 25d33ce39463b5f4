#include "support/file.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <grp.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/failure.h"

namespace plx::tool {
namespace {

void write_all(int fd, const std::string& path, std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = ::write(fd, data.data(), data.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) system_failure(path, errno);
    data.remove_prefix(static_cast<size_t>(written));
  }
}

void set_access(int fd, const std::string& path, const Access& access) {
  const uid_t no_user = static_cast<uid_t>(-1);
  const gid_t no_group = static_cast<gid_t>(-1);
  if ((access.user != no_user || access.group != no_group) &&
      fchown(fd, access.user, access.group) != 0) {
    system_failure(fmt::format("{}: cannot change the owner", path), errno);
  }
  // After the owner, for a change of owner may take mode bits away.
  if (fchmod(fd, access.mode) != 0) system_failure(path, errno);
}

// A number that fits an identifier of a user or a group; false when the text is none.
bool parse_id(const std::string& text, unsigned* out) {
  if (text.empty() || text.size() > 9) return false;
  unsigned value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  *out = value;
  return true;
}

}  // namespace

mode_t parse_mode(const std::string& text) {
  unsigned value = 0;
  bool valid = !text.empty() && text.size() <= 5;
  for (const char c : text) {
    valid = valid && c >= '0' && c <= '7';
    value = value * 8 + static_cast<unsigned>(c - '0');
  }
  if (!valid || value > 0777) {
    wrong_use(fmt::format("'{}' is no file mode", text), "give an octal mode such as 0640");
  }
  return value;
}

void parse_owner(const std::string& text, Access* access) {
  const size_t colon = text.find(':');
  const std::string user = text.substr(0, colon);
  const std::string group = colon == std::string::npos ? "" : text.substr(colon + 1);
  if (user.empty() && group.empty()) wrong_use("an owner is USER, USER:GROUP or :GROUP");
  if (!user.empty() && !parse_id(user, &access->user)) {
    const passwd* entry = getpwnam(user.c_str());
    if (entry == nullptr) {
      wrong_use(fmt::format("no user '{}' on this machine", user), "give the number instead");
    }
    access->user = entry->pw_uid;
  }
  if (!group.empty() && !parse_id(group, &access->group)) {
    const struct group* entry = getgrnam(group.c_str());
    if (entry == nullptr) {
      wrong_use(fmt::format("no group '{}' on this machine", group), "give the number instead");
    }
    access->group = entry->gr_gid;
  }
}

AtomicFile::AtomicFile(const std::string& path, const Access& access) : path_(path) {
  const size_t slash = path.rfind('/');
  const size_t name = slash == std::string::npos ? 0 : slash + 1;
  temporary_ = fmt::format("{}.{}.XXXXXX", path.substr(0, name), path.substr(name));
  fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
  if (fd_ < 0) {
    temporary_.clear();
    system_failure(fmt::format("{}: cannot write into its folder", path), errno);
  }
  try {
    set_access(fd_, path, access);
  } catch (...) {  // no destructor runs for an object that was not made
    close(fd_);
    unlink(temporary_.c_str());
    throw;
  }
}

AtomicFile::~AtomicFile() {
  if (fd_ >= 0) close(fd_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void AtomicFile::write(std::string_view data) { write_all(fd_, path_, data); }

void AtomicFile::finish() {
  if (fd_ < 0) return;
  const bool synchronised = fsync(fd_) == 0;
  const int error = errno;
  const bool closed = close(fd_) == 0;
  fd_ = -1;
  if (!synchronised) system_failure(path_, error);
  if (!closed) system_failure(path_, errno);
}

void AtomicFile::commit() {
  finish();
  move_into_place(temporary_, path_);
  temporary_.clear();
}

void write_new_file(const std::string& path, std::string_view data, const Access& access) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) system_failure(path, errno);
  try {
    set_access(fd, path, access);
    write_all(fd, path, data);
  } catch (...) {
    close(fd);
    throw;
  }
  if (close(fd) != 0) system_failure(path, errno);
}

void make_folders(const std::string& path) {
  for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string folder = path.substr(0, end);
    if (mkdir(folder.c_str(), 0755) != 0 && errno != EEXIST) {
      const int error = errno;
      if (error != EROFS || !exists(folder)) system_failure(folder, error);
    }
    if (end == std::string::npos) break;
  }
  struct stat info;
  if (stat(path.c_str(), &info) != 0) system_failure(path, errno);
  if (!S_ISDIR(info.st_mode)) system_failure(path, ENOTDIR, "choose another folder");
}

std::string folder_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

void sync_folder(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;  // a folder that may be entered but not read; the rename stands all the same
  fsync(fd);
  close(fd);
}

void move_into_place(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) != 0) system_failure(to, errno);
  sync_folder(folder_of(to));
}

bool exists(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) == 0;
}

std::string read_whole(const std::string& source, size_t limit) {
  const int fd =
      source == "-" ? STDIN_FILENO : open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) system_failure(source, errno);
  std::string data;
  int error = 0;
  size_t used = 0;
  while (used <= limit) {
    data.resize(used + (used < 65536 ? 65536 : used));
    const ssize_t got = read(fd, data.data() + used, data.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = errno;
    if (got <= 0) break;
    used += static_cast<size_t>(got);
  }
  if (fd != STDIN_FILENO) close(fd);
  if (error != 0) system_failure(name_of(source), error);
  if (used > limit) {
    wrong_use(fmt::format("{}: larger than {} bytes", name_of(source), limit),
              "the library takes it in one piece; divide it");
  }
  data.resize(used);
  return data;
}

std::string name_of(const std::string& source) { return source == "-" ? "standard input" : source; }

}  // namespace plx::tool
