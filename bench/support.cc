#include "bench/support.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

namespace plx_bench {

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
