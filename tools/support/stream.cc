#include "support/stream.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/failure.h"
#include "support/file.h"

namespace plx::tool {

InputStream::InputStream(const std::string& source)
    : name_(name_of(source)),
      fd_(source == "-" ? STDIN_FILENO : open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
  struct stat info;
  if (fd_ < 0 || fstat(fd_, &info) != 0) system_failure(name_, errno);
  const uint64_t size = S_ISREG(info.st_mode) ? static_cast<uint64_t>(info.st_size) : 0;
  progress_ = std::make_unique<Progress>(name_, size, Progress::Unit::kBytes, size > kLongFile);
}

InputStream::~InputStream() {
  if (fd_ > STDERR_FILENO) close(fd_);
}

size_t InputStream::read(unsigned char* buffer, size_t size) {
  size_t filled = 0;
  while (filled < size) {
    const ssize_t got = ::read(fd_, buffer + filled, size - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) system_failure(name_, errno);
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  done_ += filled;
  progress_->update(done_);
  return filled;
}

}  // namespace plx::tool
