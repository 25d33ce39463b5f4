// Formatted input against the C library's.
#include <plx/securec.h>
#include <stdio.h>
#include <wchar.h>

#include <string>

#include "bench/support.h"

namespace plx_bench {
namespace {

// Both functions on one text. `scan(function)` makes the call; the sizes that ours takes are the
// caller's to add.
template <typename Ours, typename Peer>
void add_scan(const std::string& row, Ours ours, Peer peer, size_t bytes = 0) {
  compare(
      row, [ours] { benchmark::DoNotOptimize(ours()); },
      [peer] { benchmark::DoNotOptimize(peer()); }, bytes);
}

char word[1 << 20];
int a, b, c;
unsigned hex;
double number;

void add_numbers() {
  static const char kThree[] = "12 -345 67890";
  add_scan(
      "sscanf_s/three-%d", [] { return sscanf_s(kThree, "%d %d %d", &a, &b, &c); },
      [] { return sscanf(kThree, "%d %d %d", &a, &b, &c); });
  static const wchar_t kWide[] = L"12 -345 67890";
  add_scan(
      "swscanf_s/three-%d", [] { return swscanf_s(kWide, L"%d %d %d", &a, &b, &c); },
      [] { return swscanf(kWide, L"%d %d %d", &a, &b, &c); });
  // A short decimal, one with all its digits, and one that needs exact arithmetic.
  static const char* const kDecimals[][2] = {{"sscanf_s/%lf", "3.14159"},
                                             {"sscanf_s/%lf-17-digits", "0.30000000000000004"},
                                             {"sscanf_s/%lf-e-100", "1.2345678901234567e-100"}};
  for (const auto& [row, text] : kDecimals) {
    add_scan(
        row, [text = text] { return sscanf_s(text, "%lf", &number); },
        [text = text] { return sscanf(text, "%lf", &number); });
  }
}

void add_words() {
  static const char kPair[] = "temperature 0x1f40";
  add_scan(
      "sscanf_s/%s-%x", [] { return sscanf_s(kPair, "%s %x", word, 64u, &hex); },
      [] { return sscanf(kPair, "%s %x", word, &hex); });
  static const char kLetters[] = "temperature";
  add_scan(
      "sscanf_s/%[a-z]", [] { return sscanf_s(kLetters, "%[a-z]", word, 64u); },
      [] { return sscanf(kLetters, "%[a-z]", word); });
  // Growth with the length of one word.
  static const std::pair<const char*, size_t> kLengths[] = {
      {"16", 16}, {"256", 256}, {"4K", 4096}, {"64K", 65536}, {"1M", (1 << 20) - 1}};
  for (const auto& [name, length] : kLengths) {
    for (const char* format : {"%s", "%[^\n]"}) {
      const std::string text(length, 'x');
      add_scan(
          std::string("sscanf_s-") + (format[1] == 's' ? "word/" : "line/") + name,
          [=] { return sscanf_s(text.c_str(), format, word, static_cast<unsigned>(sizeof word)); },
          [=] { return sscanf(text.c_str(), format, word); }, length);
    }
  }
}

}  // namespace

void register_benchmarks() {
  add_numbers();
  add_words();
}

}  // namespace plx_bench
