// MD5 of a stream. The library digests a buffer or the file of a path, and nothing in between: a
// short input goes to it as a buffer, a long one through a pipe that it opens by its path. So the
// progress shows, and a read error is seen, which the library would take for the end of the file.
#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <plx/digest.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "digest/compute.h"
#include "support/failure.h"
#include "support/stream.h"

namespace plx::tool {
namespace {

// More than a pipe takes in unread: when as much has been written, the library has opened it.
constexpr size_t kShort = size_t{4} << 20;
constexpr int kTextSize = 33;

class Pipe {
 public:
  Pipe() {
    if (pipe2(ends_, O_CLOEXEC) != 0) system_failure("a pipe", errno);
  }
  ~Pipe() {
    close_end(0);
    close_end(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  std::string path() const { return fmt::format("/proc/self/fd/{}", ends_[0]); }
  void close_end(int end) {
    if (ends_[end] >= 0) close(ends_[end]);
    ends_[end] = -1;
  }
  bool write(const unsigned char* data, size_t size) {
    while (size != 0) {
      const ssize_t written = ::write(ends_[1], data, size);
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      data += written;
      size -= static_cast<size_t>(written);
    }
    return true;
  }

 private:
  int ends_[2];
};

}  // namespace

std::string md5_of(const std::string& source) {
  InputStream input(source);
  std::vector<unsigned char> piece(kShort);
  char text[kTextSize] = {};
  size_t size = input.read(piece.data(), piece.size());
  if (size < piece.size()) {
    if (PLX_md5_encoder_buf(piece.data(), static_cast<unsigned>(size), text, kTextSize) != 0) {
      return {};
    }
    return text;
  }
  Pipe pipe;
  const std::string path = pipe.path();
  std::thread reader([&] {
    if (PLX_md5_encoder_file(path.c_str(), text, kTextSize) != 0) text[0] = '\0';
    pipe.close_end(0);  // a writer that still waits is told so
  });
  Exit exit = Exit::kDone;
  std::string message;
  try {
    while (size != 0 && pipe.write(piece.data(), size)) {
      size = input.read(piece.data(), piece.size());
    }
  } catch (const Failure& failure) {
    exit = failure.exit();
    message = failure.what();
  }
  pipe.close_end(1);
  reader.join();
  if (exit != Exit::kDone) throw Failure(exit, message);
  if (text[0] == '\0') system_failure("/proc", ENOENT, "mount it: the library reads through it");
  return text;
}

}  // namespace plx::tool
