#include "twin.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <plx/securec.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

namespace plx::twin {
namespace {

int open_log() {
  const char* path = getenv("PLX_DEBUG_LOG");
  if (path == nullptr || *path == '\0') return STDERR_FILENO;
  const int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (fd < 0) dprintf(STDERR_FILENO, "plxutility: cannot write %s: %s\n", path, strerror(errno));
  return fd < 0 ? STDERR_FILENO : fd;
}

int log_descriptor() {
  static const int descriptor = open_log();
  return descriptor;
}

// One line, put together before it is written, so that lines of several threads do not mix.
class Line {
 public:
  Line& text(const char* text) {
    while (*text != '\0' && used_ + 2 < sizeof bytes_) bytes_[used_++] = *text++;
    return *this;
  }
  Line& number(long long value) {
    char digits[24];
    size_t at = sizeof digits - 1;
    digits[at] = '\0';
    unsigned long long rest = value < 0 ? 0 - static_cast<unsigned long long>(value)
                                        : static_cast<unsigned long long>(value);
    do {
      digits[--at] = static_cast<char>('0' + rest % 10);
      rest /= 10;
    } while (rest != 0);
    if (value < 0) digits[--at] = '-';
    return text(digits + at);
  }
  Line& address(const void* value) {
    text("0x");
    const auto bits = reinterpret_cast<uintptr_t>(value);
    for (int shift = sizeof bits * 8 - 4; shift >= 0; shift -= 4) {
      const char digit[2] = {"0123456789abcdef"[bits >> shift & 15], '\0'};
      text(digit);
    }
    return *this;
  }
  void write_to(int fd) {
    bytes_[used_++] = '\n';
    ssize_t ignored = write(fd, bytes_, used_);
    static_cast<void>(ignored);
  }

 private:
  char bytes_[1024];
  size_t used_ = 0;
};

}  // namespace

void* find_next(const char* symbol) {
  void* next = dlsym(RTLD_NEXT, symbol);
  if (next == nullptr) {
    Line()
        .text("plxutility: no library with ")
        .text(symbol)
        .text(" behind the twin")
        .write_to(STDERR_FILENO);
    abort();
  }
  return next;
}

void log_refusal(const void* caller, const char* function, const char* code,
                 std::initializer_list<Size> sizes) {
  const int error = errno;  // a refused call leaves it alone, and so do we
  Line line;
  line.text("plxutility: ").text(function).text(" refused: ").text(code);
  for (const Size& size : sizes) line.text(", ").text(size.name).text("=").number(size.value);
  line.text(", caller ").address(caller);
  Dl_info info;
  if (dladdr(caller, &info) != 0) {
    if (info.dli_sname != nullptr) {
      line.text(" ")
          .text(info.dli_sname)
          .text("+")
          .number(static_cast<const char*>(caller) - static_cast<const char*>(info.dli_saddr));
    }
    if (info.dli_fname != nullptr) line.text(" (").text(info.dli_fname).text(")");
  }
  line.write_to(log_descriptor());
  errno = error;
}

const char* code_name(long long code) {
  switch (code) {
    case EINVAL:
      return "EINVAL";
    case ERANGE:
      return "ERANGE";
    case EINVAL_CLEARED:
      return "EINVAL_CLEARED";
    case ERANGE_CLEARED:
      return "ERANGE_CLEARED";
    case EOVERLAP_CLEARED:
      return "EOVERLAP_CLEARED";
    case 0:
      return "0";
    case -1:
      return "-1";
    case -2:
      return "-2";
    case -3:
      return "-3";
    default:
      return "another code";
  }
}

const char* code_name(const volatile void* result) {
  return result == nullptr ? "null" : "a result";
}

bool fills() {
  static const bool fills = [] {
    const char* value = getenv("PLX_DEBUG_FILL");
    return value != nullptr && strcmp(value, "1") == 0;
  }();
  return fills;
}

void fill_bytes(void* dest, size_t size, size_t used) {
  // A size above the limit is one that nobody has tested.
  if (dest == nullptr || used >= size || size > SECURE_MEM_LIMIT) return;
  memset(static_cast<char*>(dest) + used, kFill, size - used);
}

void fill_text(char* dest, size_t size) {
  if (dest != nullptr && size <= SECURE_MEM_LIMIT) fill_bytes(dest, size, strnlen(dest, size) + 1);
}

void fill_wide_bytes(wchar_t* dest, size_t count, size_t used) {
  if (count > SECURE_WCHAR_LIMIT || used >= count) return;
  fill_bytes(dest, count * sizeof(wchar_t), used * sizeof(wchar_t));
}

void fill_wide_text(wchar_t* dest, size_t count) {
  if (dest == nullptr || count > SECURE_WCHAR_LIMIT) return;
  fill_wide_bytes(dest, count, wcsnlen(dest, count) + 1);
}

}  // namespace plx::twin
