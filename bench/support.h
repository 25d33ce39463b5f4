// How the benchmarks name what they measure. Each piece of work is a row; a row is measured for
// the library ("plx"), for its named peer ("peer") and, where it helps, for further variants of
// either ("plx:avx2", "peer:nettle"). bench/report.py reads the names, ROW@VARIANT, divides the
// medians by the peer's and compares with bench/goals.csv.
#ifndef PLX_BENCH_SUPPORT_H
#define PLX_BENCH_SUPPORT_H

#include <benchmark/benchmark.h>
#include <stddef.h>

#include <string>
#include <utility>

namespace plx_bench {

constexpr size_t kLarge = size_t{1} << 24;

// Room of any size that takes little memory: one piece of it stands there over and over, so that
// what is written to one place is read at others. It stays for good.
char* repeated_room(size_t size);

// Measures `work`, one call an iteration. `bytes` per call, when given, yields a rate.
template <typename Work>
void add(const std::string& row, const std::string& variant, Work work, size_t bytes = 0) {
  auto* const added = benchmark::RegisterBenchmark(
      (row + "@" + variant).c_str(),
      [work = std::move(work), bytes](benchmark::State& state) mutable {
        for (auto _ : state) {
          work();
          benchmark::ClobberMemory();
        }
        if (bytes != 0) {
          state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
        }
      });
  // What takes long by itself varies little.
  if (bytes >= kLarge) added->Repetitions(3);
}

// Says that this processor has no way to measure a variant.
void add_absent(const std::string& row, const std::string& variant);

// A peer's library, loaded so that none of its names meets one of ours.
class PrivateLibrary {
 public:
  explicit PrivateLibrary(const char* file);

  // The function that `name` names there; its type is that of the declaration `Function`.
  template <typename Function>
  Function* get(const char* name) const {
    return reinterpret_cast<Function*>(find(name));
  }

 private:
  void* find(const char* name) const;

  void* handle_;
};

// The library against its peer.
template <typename Ours, typename Peer>
void compare(const std::string& row, Ours ours, Peer peer, size_t bytes = 0) {
  add(row, "plx", std::move(ours), bytes);
  add(row, "peer", std::move(peer), bytes);
}

// Each program registers its rows here.
void register_benchmarks();

}  // namespace plx_bench

#endif
