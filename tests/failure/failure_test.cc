// Every call of the table with the first, second, ... step of each kind refused, once and from then
// on, until a run meets no refusal.
#include <dlfcn.h>
#include <execinfo.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "failure/calls.h"
#include "failure/faults.h"
#include "support/allocation.h"

namespace {

using namespace plx_test;

struct Run {
  Answer answer;
  bool hit;
  bool leaked;
  bool libcrypto_crashed;
};

constexpr int kLibcryptoCrashed = 16;  // an exit code

// libcrypto crashes when it is set up without memory, itself or in what it asks of the C library. A
// crash of ours ends the process by its signal.
void on_crash(int) {
  void* frames[16];
  const int depth = backtrace(frames, 16);
  for (int i = 1; i < depth; ++i) {  // behind this function
    Dl_info place;
    if (dladdr(frames[i], &place) == 0 || strstr(place.dli_fname, "/libc.so") != nullptr) continue;
    if (strstr(place.dli_fname, "/libcrypto.so") != nullptr) _exit(kLibcryptoCrashed);
    break;
  }
  signal(SIGSEGV, SIG_DFL);
}

int lowest_free_descriptor() {
  const int descriptor = dup(STDIN_FILENO);
  close(descriptor);
  return descriptor;
}

Run run_once(const Call& call, Step step, size_t fail_at, bool all_later) {
  const int descriptor = lowest_free_descriptor();
  AllocationFault memory(step == Step::kMemory ? fail_at : 0, all_later);
  StepFault other(step, fail_at, all_later);
  Run run = {call.run(), memory.hit() || other.hit(), false, false};
  run.leaked = memory.live_blocks() != 0 || lowest_free_descriptor() != descriptor;
  return run;
}

// The same in a child process.
Run run_apart(const Call& call, Step step, size_t fail_at, bool all_later) {
  const pid_t child = fork();
  if (child == 0) {
    signal(SIGSEGV, on_crash);
    const Run run = run_once(call, step, fail_at, all_later);
    _exit(static_cast<int>(run.answer) | run.hit << 2 | run.leaked << 3);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) abort();
  if (WIFSIGNALED(status)) return {Answer::kWrong, true, false, false};
  const int code = WEXITSTATUS(status);
  if (code == kLibcryptoCrashed) return {Answer::kRefused, true, false, true};
  return {static_cast<Answer>(code & 3), (code & 4) != 0, (code & 8) != 0, false};
}

bool is_allowed(const Call& call, Step step, Answer answer) {
  if (answer == Answer::kRefused) return true;
  if (answer == Answer::kWrong || step == Step::kOpen || step == Step::kRandom) return false;
  return step != Step::kMemory || call.bears_short_memory;
}

using RunCall = Run (*)(const Call&, Step, size_t, bool);

// Refuses the steps `first`, `first + stride`, ... Returns how many refusals there were.
size_t sweep(const Call& call, Step step, RunCall run_call, size_t first = 1, size_t stride = 1) {
  size_t injected = 0, crashed = 0;
  for (bool all_later : {false, true}) {
    for (size_t n = first;; n += stride) {
      const Run run = run_call(call, step, n, all_later);
      injected += run.hit;
      crashed += run.libcrypto_crashed;
      EXPECT_FALSE(run.leaked) << call.name << ": " << kStepNames[static_cast<int>(step)] << " "
                               << n;
      if (!run.hit) {
        EXPECT_EQ(Answer::kDone, run.answer) << call.name;
        break;
      }
      EXPECT_TRUE(is_allowed(call, step, run.answer))
          << call.name << ": " << kStepNames[static_cast<int>(step)] << " " << n
          << (all_later ? " and later" : "") << " gives " << static_cast<int>(run.answer);
      if (testing::Test::HasFailure()) return injected;
    }
  }
  if (crashed != 0) printf("crashes inside libcrypto: %zu in %s\n", crashed, call.name);
  return injected;
}

size_t sweep_all(Step step, RunCall run_call) {
  size_t injected = 0;
  for (const Call& call : kCalls) injected += sweep(call, step, run_call);
  printf("injected: %zu %s\n", injected, kStepNames[static_cast<int>(step)]);
  return injected;
}

void expect_success() {
  for (const Call& call : kCalls) {
    ASSERT_EQ(Answer::kDone, run_once(call, Step::kMemory, 0, false).answer) << call.name;
  }
}

TEST(Failure, EveryStepOfThePlatform) {
  expect_success();
  for (Step step : {Step::kMemory, Step::kOpen, Step::kRead, Step::kShortRead, Step::kPosition,
                    Step::kRandom}) {
    EXPECT_LT(0u, sweep_all(step, run_once));
  }
}

// What libcrypto keeps for later it may allocate in the first round; nothing grows in the second.
TEST(Failure, MemoryOfLibcrypto) {
  expect_success();
  EXPECT_LT(0u, sweep_all(Step::kLibcryptoMemory, run_once));
  const long live = live_libcrypto_blocks();
  sweep_all(Step::kLibcryptoMemory, run_once);
  EXPECT_EQ(live, live_libcrypto_blocks());
}

// Takes minutes: not one of scripts/test, but of scripts/verify. Each run is a process of its own.
// Setting libcrypto up takes thousands of steps, mostly the same ones: the calls share them out.
TEST(Failure, MemoryOfLibcryptoAtItsFirstUse) {
  constexpr size_t kStride = 19;
  size_t first = 0, injected = 0;
  for (const Call& call : kCalls) {
    injected += sweep(call, Step::kLibcryptoMemory, run_apart, 1 + first++ % kStride, kStride);
  }
  printf("injected: %zu %s\n", injected, kStepNames[static_cast<int>(Step::kLibcryptoMemory)]);
  EXPECT_LT(0u, injected);
}

}  // namespace

int main(int argc, char** argv) {
  plx_test::control_libcrypto_memory();
  testing::InitGoogleTest(&argc, argv);
  plx_test::prepare_calls();
  return RUN_ALL_TESTS();
}
