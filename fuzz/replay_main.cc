// Runs a fuzz target over files and folders of inputs, so that the corpus is a test with any
// compiler and on any machine; with --random COUNT over so many random inputs instead, and with
// --spoilt COUNT FOLDER over so many inputs of the folder with pieces of each other put in.
// Folders of a 64-bit machine have numbers that a 32-bit program must be ready for.
#define _FILE_OFFSET_BITS 64

#include <dirent.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Input = std::vector<uint8_t>;

Input read_file(const std::string& path) {
  FILE* file = fopen(path.c_str(), "rb");
  if (file == nullptr) {
    perror(path.c_str());
    exit(1);
  }
  Input input;
  int c;
  while ((c = fgetc(file)) != EOF) input.push_back(static_cast<uint8_t>(c));
  fclose(file);
  return input;
}

// A copy of exactly its size, so that a sanitizer sees a read behind it; and with an address for an
// empty input too, as libFuzzer has.
void run(const Input& input) {
  Input exact(input);
  exact.reserve(1);
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

// Inputs that are random, and the same in every run.
size_t run_random_inputs(size_t count) {
  constexpr size_t kLongest = 600;
  std::mt19937 random(1);
  for (size_t i = 0; i < count; ++i) {
    Input input(random() % kLongest);
    for (uint8_t& byte : input) byte = static_cast<uint8_t>(random());
    run(input);
  }
  return count;
}

// Up to three times a few bytes of an input give way to a piece of another, or of itself.
size_t run_spoilt_inputs(size_t count, const std::vector<Input>& all) {
  std::mt19937 random(1);
  const auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
  for (size_t i = 0; i < count && !all.empty(); ++i) {
    Input input = all[below(all.size())];
    for (size_t spoils = 1 + below(3); spoils > 0; --spoils) {
      const Input& other = all[below(all.size())];
      const auto from = other.begin() + static_cast<long>(below(other.size() + 1));
      const auto piece = static_cast<long>(std::min<size_t>(below(9), other.end() - from));
      const auto at = input.begin() + static_cast<long>(below(input.size() + 1));
      const auto gone = static_cast<long>(std::min<size_t>(below(3), input.end() - at));
      input.insert(input.erase(at, at + gone), from, from + piece);
    }
    run(input);
  }
  return all.empty() ? 0 : count;
}

std::vector<std::string> files_below(const std::string& path) {
  struct stat info;
  if (stat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return {path};
  std::vector<std::string> files;
  DIR* folder = opendir(path.c_str());
  if (folder == nullptr) return {path};
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] != '.') files.push_back(path + "/" + entry->d_name);
  }
  closedir(folder);
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 2 ? argv[1] : "";
  const size_t count = argc > 2 ? strtoul(argv[2], nullptr, 10) : 0;
  size_t replayed = 0;
  if (mode == "--random") {
    replayed = run_random_inputs(count);
  } else {
    std::vector<Input> all;
    for (int i = mode == "--spoilt" ? 3 : 1; i < argc; ++i) {
      for (const std::string& file : files_below(argv[i])) all.push_back(read_file(file));
    }
    if (mode == "--spoilt") {
      replayed = run_spoilt_inputs(count, all);
    } else {
      for (const Input& input : all) run(input);
      replayed = all.size();
    }
  }
  printf("%zu inputs replayed\n", replayed);
  return replayed != 0 ? 0 : 1;  // a missing corpus is no success
}
