// Runs a fuzz target over files and folders of inputs, so that the corpus is a test with any
// compiler and on any machine; with --random COUNT over so many random inputs instead.
// Folders of a 64-bit machine have numbers that a 32-bit program must be ready for.
#define _FILE_OFFSET_BITS 64

#include <dirent.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool replay_file(const std::string& path) {
  FILE* file = fopen(path.c_str(), "rb");
  if (file == nullptr) {
    perror(path.c_str());
    return false;
  }
  std::vector<uint8_t> input;
  int c;
  while ((c = fgetc(file)) != EOF) input.push_back(static_cast<uint8_t>(c));
  fclose(file);
  // A copy of exactly its size, so that a sanitizer sees a read behind it.
  LLVMFuzzerTestOneInput(std::vector<uint8_t>(input).data(), input.size());
  return true;
}

// Inputs that are random, and the same in every run.
size_t run_random_inputs(size_t count) {
  constexpr size_t kLongest = 600;
  std::mt19937 random(1);
  for (size_t i = 0; i < count; ++i) {
    std::vector<uint8_t> input(random() % kLongest);
    input.reserve(1);  // as libFuzzer, which has an address for an empty input too
    for (uint8_t& byte : input) byte = static_cast<uint8_t>(random());
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  return count;
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
  size_t replayed = 0;
  if (argc == 3 && strcmp(argv[1], "--random") == 0) {
    replayed = run_random_inputs(strtoul(argv[2], nullptr, 10));
    argc = 1;
  }
  for (int i = 1; i < argc; ++i) {
    for (const std::string& file : files_below(argv[i])) {
      if (!replay_file(file)) return 1;
      ++replayed;
    }
  }
  printf("%zu inputs replayed\n", replayed);
  return replayed != 0 ? 0 : 1;  // a missing corpus is no success
}
