// Buffers that end at an inaccessible page, so that one byte too far is a crash and not a guess.
#ifndef PLX_TESTS_SUPPORT_GUARDED_H
#define PLX_TESTS_SUPPORT_GUARDED_H

#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

namespace plx_test {

// `count` elements whose end touches an inaccessible page, with another such page below.
template <typename T>
class Guarded {
 public:
  explicit Guarded(size_t count) : count_(count) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t body = (count * sizeof(T) + page - 1) / page * page;
    mapped_ = body + 2 * page;
    base_ = static_cast<unsigned char*>(
        mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED) abort();
    if (body != 0 && mprotect(base_ + page, body, PROT_READ | PROT_WRITE) != 0) abort();
    data_ = reinterpret_cast<T*>(base_ + page + body - count * sizeof(T));
  }

  // A copy of `source`.
  Guarded(const T* source, size_t count) : Guarded(count) {
    if (count != 0) memcpy(data_, source, count * sizeof(T));
  }

  ~Guarded() { munmap(base_, mapped_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  T* data() { return data_; }
  size_t size() const { return count_; }
  T& operator[](size_t i) { return data_[i]; }

 private:
  size_t count_;
  size_t mapped_;
  unsigned char* base_;
  T* data_;
};

}  // namespace plx_test

#endif
