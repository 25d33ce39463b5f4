#include "bench/support.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace plx_bench {

char* repeated_room(size_t size) {
  constexpr size_t kPiece = size_t{64} << 20;  // more than the caches hold
  const int file = memfd_create("room", 0);
  if (file < 0 || ftruncate(file, kPiece) != 0) abort();
  void* const room = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) abort();
  for (size_t at = 0; at < size; at += kPiece) {
    char* const piece = static_cast<char*>(room) + at;
    if (mmap(piece, std::min(kPiece, size - at), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED,
             file, 0) == MAP_FAILED) {
      abort();
    }
  }
  close(file);
  return static_cast<char*>(room);
}

void add_absent(const std::string& row, const std::string& variant) {
  benchmark::RegisterBenchmark((row + "@" + variant).c_str(), [](benchmark::State& state) {
    state.SkipWithError("the processor lacks the instructions");
  });
}

PrivateLibrary::PrivateLibrary(const char* file) : handle_(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    fprintf(stderr, "%s\n", dlerror());
    abort();
  }
}

void* PrivateLibrary::find(const char* name) const {
  void* const symbol = dlsym(handle_, name);
  if (symbol == nullptr) {
    fprintf(stderr, "%s\n", dlerror());
    abort();
  }
  return symbol;
}

}  // namespace plx_bench

int main(int argc, char** argv) {
  plx_bench::register_benchmarks();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
