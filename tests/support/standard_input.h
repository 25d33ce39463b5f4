// Puts a file on standard input for as long as it lives.
#ifndef PLX_TESTS_SUPPORT_STANDARD_INPUT_H
#define PLX_TESTS_SUPPORT_STANDARD_INPUT_H

#include <stdio.h>
#include <unistd.h>

#include <string>

namespace plx_test {

// A file that holds `bytes`, at its start. The stream has no orientation yet.
inline FILE* file_of(const std::string& bytes) {
  FILE* writer = tmpfile();
  fwrite(bytes.data(), 1, bytes.size(), writer);
  rewind(writer);
  FILE* reader = fdopen(dup(fileno(writer)), "r");
  fclose(writer);
  return reader;
}

// Takes the stream over. The C library's variable is set, so that every test begins with a stream
// of no orientation and an empty buffer.
class StandardInput {
 public:
  explicit StandardInput(FILE* file) : saved_(stdin) { stdin = file; }
  explicit StandardInput(const std::string& bytes) : StandardInput(file_of(bytes)) {}
  ~StandardInput() {
    fclose(stdin);
    stdin = saved_;
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  FILE* saved_;
};

}  // namespace plx_test

#endif
