// Bounds-checked memory and strings beside the C library's own calls of the same effect.
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/support.h"

namespace {

constexpr size_t kArena = 64 * 1024;
alignas(64) char from[kArena];
alignas(64) char to[kArena];

// Calls `call(size)` for each of the sizes, none of which the compiler knows.
template <typename Call>
auto over_sizes(std::vector<size_t> sizes, Call call) {
  return [sizes = std::move(sizes), call] {
    for (size_t size : sizes) {
      benchmark::DoNotOptimize(size);
      call(size);
      benchmark::ClobberMemory();
    }
  };
}

template <typename Ours, typename Peer>
void compare_sizes(const std::string& row, const std::vector<size_t>& sizes, Ours ours, Peer peer) {
  size_t bytes = 0;
  for (size_t size : sizes) bytes += size;
  plx_bench::compare(row, over_sizes(sizes, ours), over_sizes(sizes, peer), bytes);
}

std::vector<size_t> each_size_to_64() {
  std::vector<size_t> sizes(64);
  for (size_t i = 0; i < 64; ++i) sizes[i] = i + 1;
  return sizes;
}

std::vector<size_t> random_sizes_to_64() {
  std::mt19937 random(1);
  std::vector<size_t> sizes(4096);
  for (size_t& size : sizes) size = 1 + random() % 64;
  return sizes;
}

void register_memory() {
  struct Row {
    const char* name;
    std::vector<size_t> sizes;
  };
  std::vector<Row> rows = {{"1-64", each_size_to_64()}, {"random-1-64", random_sizes_to_64()}};
  for (const auto& [name, size] : {std::pair<const char*, size_t>{"16", 16},
                                   {"64", 64},
                                   {"256", 256},
                                   {"1K", 1024},
                                   {"4K", 4096},
                                   {"16K", 16384},
                                   {"64K", 65536}}) {
    rows.push_back({name, {size}});
  }
  for (const Row& row : rows) {
    const std::string name = std::string("/") + row.name;
    compare_sizes(
        "memcpy_s" + name, row.sizes,
        [](size_t n) { benchmark::DoNotOptimize(memcpy_s(to, kArena, from, n)); },
        [](size_t n) { benchmark::DoNotOptimize(memcpy(to, from, n)); });
    compare_sizes(
        "memmove_s" + name, row.sizes,
        [](size_t n) { benchmark::DoNotOptimize(memmove_s(to, kArena, from, n)); },
        [](size_t n) { benchmark::DoNotOptimize(memmove(to, from, n)); });
    compare_sizes(
        "memset_s" + name, row.sizes,
        [](size_t n) { benchmark::DoNotOptimize(memset_s(to, kArena, 'x', n)); },
        [](size_t n) { benchmark::DoNotOptimize(memset(to, 'x', n)); });
    plx_bench::add("memcpy_s" + name, "plx:opt-asm", over_sizes(row.sizes, [](size_t n) {
                     benchmark::DoNotOptimize(memcpy_sOptAsm(to, kArena, from, n));
                   }));
    plx_bench::add("memset_s" + name, "plx:opt-asm", over_sizes(row.sizes, [](size_t n) {
                     benchmark::DoNotOptimize(memset_sOptAsm(to, kArena, 'x', n));
                   }));
  }
}

// Up to the largest size that is accepted.
void register_large() {
  constexpr size_t kMost = SECURE_MEM_LIMIT;
  static char* const src = plx_bench::repeated_room(kMost);
  static char* const dst = plx_bench::repeated_room(kMost);
  for (const auto& [name, size] : {std::pair<const char*, size_t>{"1M", size_t{1} << 20},
                                   {"64M", size_t{64} << 20},
                                   {"2G", kMost}}) {
    plx_bench::compare(
        std::string("memcpy_s/") + name,
        [size = size] { benchmark::DoNotOptimize(memcpy_s(dst, kMost, src, size)); },
        [size = size] { benchmark::DoNotOptimize(memcpy(dst, src, size)); }, size);
    plx_bench::compare(
        std::string("memset_s/") + name,
        [size = size] { benchmark::DoNotOptimize(memset_s(dst, kMost, 'x', size)); },
        [size = size] { benchmark::DoNotOptimize(memset(dst, 'x', size)); }, size);
  }
}

// A text of `length` characters at a place of its own, in the middle of a page.
const char* text_of(size_t length) {
  constexpr size_t kPage = 4096;
  alignas(kPage) static char texts[9][4 * kPage + kPage];
  static size_t used = 0;
  char* const text = texts[used++] + 192;
  std::fill_n(text, length, 'a');
  return text;
}

void register_strings() {
  for (size_t length : {4u, 8u, 16u, 31u, 64u, 128u, 1000u, 16000u}) {
    const std::string name = "/" + std::to_string(length);
    const char* const src = text_of(length);
    plx_bench::compare(
        "strcpy_s" + name, [src] { benchmark::DoNotOptimize(strcpy_s(to, kArena, src)); },
        [src] {
          const size_t n = strnlen(src, kArena);
          benchmark::DoNotOptimize(n);
          benchmark::DoNotOptimize(memcpy(to, src, n + 1));
        },
        length);
    plx_bench::compare(
        "strncpy_s" + name,
        [src, length] { benchmark::DoNotOptimize(strncpy_s(to, kArena, src, length)); },
        [src, length] { benchmark::DoNotOptimize(strncpy(to, src, length)); }, length);
  }
  const char* const src = text_of(16);
  plx_bench::compare(
      "strcat_s/after-16",
      [src] {
        to[16] = 0;
        benchmark::DoNotOptimize(strcat_s(to, kArena, src));
      },
      [src] {
        to[16] = 0;
        benchmark::DoNotOptimize(strcat(to, src));
      });
}

}  // namespace

void plx_bench::register_benchmarks() {
  std::fill_n(from, kArena - 1, 'a');
  std::fill_n(to, kArena - 1, 'b');
  register_memory();
  register_large();
  register_strings();
}
