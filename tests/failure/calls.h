// The calls that are made to fail.
#ifndef PLX_TESTS_FAILURE_CALLS_H
#define PLX_TESTS_FAILURE_CALLS_H

#include <vector>

namespace plx_test {

enum class Answer {
  kDone,
  kRefused,     // the documented failure result, and outputs as documented
  kPassedOver,  // documented as well: a success that did less
  kWrong,
};

struct Call {
  const char* name;
  Answer (*run)();
  // Memory failing may give kDone or kPassedOver; libcrypto's or the platform's steps always may.
  bool bears_short_memory = false;
};

extern const std::vector<Call> kCalls;

// Makes the files, keys and texts that the calls work on. To be called once, before any of them;
// this process does not use libcrypto for it.
void prepare_calls();

}  // namespace plx_test

#endif
