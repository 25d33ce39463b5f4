#include "support/secret.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>

#include "support/failure.h"

namespace plx::tool {
namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP};
volatile sig_atomic_t caught_signal = 0;

// Switches the terminal's echo off for the time of one answer. Signals that would end or stop the
// program are put off until the terminal is as it was.
class SilentTerminal {
 public:
  explicit SilentTerminal(int fd) : fd_(fd) {
    caught_signal = 0;
    sigset_t put_off;
    sigemptyset(&put_off);
    struct sigaction note = {};
    note.sa_handler = [](int number) { caught_signal = number; };
    for (size_t i = 0; i < kCount; ++i) {
      sigaddset(&put_off, kEndingSignals[i]);
      sigaction(kEndingSignals[i], &note, &actions_[i]);
      if (actions_[i].sa_handler == SIG_IGN) sigaction(kEndingSignals[i], &actions_[i], nullptr);
    }
    sigprocmask(SIG_BLOCK, &put_off, &mask_);
    known_ = tcgetattr(fd, &before_) == 0;
    if (!known_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(fd, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() {
    if (known_) tcsetattr(fd_, TCSAFLUSH, &before_);
    for (size_t i = 0; i < kCount; ++i) sigaction(kEndingSignals[i], &actions_[i], nullptr);
    sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  // Waits for a line; false when a signal comes first. Only here are signals let in.
  bool wait() const {
    pollfd input = {fd_, POLLIN, 0};
    while (ppoll(&input, 1, nullptr, &mask_) < 0 && caught_signal == 0) {
    }
    return caught_signal == 0;
  }

 private:
  static constexpr size_t kCount = sizeof kEndingSignals / sizeof kEndingSignals[0];
  int fd_;
  bool known_;
  termios before_;
  sigset_t mask_;
  struct sigaction actions_[kCount];
};

struct Descriptor {
  int fd;
  ~Descriptor() {
    if (fd > STDERR_FILENO) close(fd);
  }
};

// Reads to the end, or for a terminal to the end of the line.
Secret read_all(int fd, const std::string& name, size_t limit, bool one_line) {
  Secret secret;
  size_t used = 0;
  while (used <= limit) {
    if (used == secret.size()) {
      secret.resize(std::min(limit + 1, std::max<size_t>(4096, 2 * used)));
    }
    const ssize_t got = read(fd, secret.data() + used, secret.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) system_failure(name, errno);
    if (got == 0) break;
    used += static_cast<size_t>(got);
    if (one_line && secret[used - 1] == '\n') break;
  }
  if (used > limit) {
    wrong_use(fmt::format("{}: longer than {} bytes", name, limit), "give the right file");
  }
  secret.resize(used);
  return secret;
}

Secret ask(const char* what, size_t limit) {
  Secret secret;
  do {
    fmt::print(stderr, "{}: ", what);
    fflush(stderr);
    {
      const SilentTerminal silent(STDIN_FILENO);
      if (silent.wait()) secret = read_all(STDIN_FILENO, "the answer", limit, true);
    }
    fmt::print(stderr, "\n");
    // Now it may do what it does; who comes back from being stopped is asked again.
    if (caught_signal != 0) raise(caught_signal);
  } while (caught_signal != 0);
  drop_line_end(&secret);
  return secret;
}

int hex_digit(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c |= 0x20;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

bool is_space(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

Secret read_secret(const std::string& source, const char* what, size_t limit) {
  if (source == "-") {
    return isatty(STDIN_FILENO) != 0 ? ask(what, limit)
                                     : read_all(STDIN_FILENO, "standard input", limit, false);
  }
  const Descriptor file{open(source.c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.fd < 0) system_failure(source, errno);
  return read_all(file.fd, source, limit, false);
}

void drop_line_end(Secret* secret) {
  if (!secret->empty() && secret->back() == '\n') secret->pop_back();
  if (!secret->empty() && secret->back() == '\r') secret->pop_back();
}

bool decode_hex(const Secret& digits, Secret* out) {
  out->clear();
  out->reserve(digits.size() / 2);
  int high = -1;
  for (const unsigned char c : digits) {
    if (is_space(c)) continue;
    const int value = hex_digit(c);
    if (value < 0) return false;
    if (high < 0) {
      high = value;
    } else {
      out->push_back(static_cast<unsigned char>(high << 4 | value));
      high = -1;
    }
  }
  return high < 0;
}

Secret read_key(const std::string& source, const char* what, size_t size) {
  Secret given = read_secret(source, what, 4096);
  if (given.size() == size) return given;
  Secret text = given;
  drop_line_end(&text);
  if (text.size() == size) return text;
  Secret bytes;
  if (decode_hex(given, &bytes) && bytes.size() == size) return bytes;
  wrong_use(fmt::format("the {} holds {} bytes", what, given.size()),
            fmt::format("give {} raw bytes, or {} hexadecimal digits", size, 2 * size));
}

}  // namespace plx::tool
